// The template of a report: everything that a saved report tells of a program but its loops.
#pragma once

#include "roofline_model/engine_core.h"

#include <string>

namespace data_models2 {

struct ReportRequest {
    const EngineCore& core;
    int memoryLevels;  // as measured, 1 when only the core's traffic was
    ThreadsInfo threads;
    const roofline::RoofIds& dominating;  // roofs, of the program as a whole
};

// A JSON object; what isn't known is an empty list or object in it. The operations types of the program's
// points and roofs each stand at the defaults of all other options; of a type that the options lack, the
// library answers with their default, as it does for charts.
std::string makeReportTemplate(const ReportRequest& request);

}  // namespace data_models2
