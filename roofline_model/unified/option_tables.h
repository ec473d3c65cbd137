// The option trees of the kinds of analysis.
#pragma once

#include "roofline_model/memory_metrics.h"
#include "roofline_model/unified/roofline_options.h"

#include <memory>

namespace data_models2 {

// The CPU tree. `memoryLevelsCount`: caches and main memory that were measured, 1 when only the core's
// traffic was. Without metrics the default type is float.
std::shared_ptr<CRooflineOptions> initRooflineOptions(
    int memoryLevelsCount, const std::shared_ptr<const CMemoryLevelMetrics>& metrics);

}  // namespace data_models2
