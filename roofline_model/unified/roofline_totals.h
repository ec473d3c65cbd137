// The program's own points: one a memory level, over all rows.
#pragma once

#include "roofline_model/memory_metrics.h"

#include <functional>
#include <map>
#include <memory>
#include <string>

namespace data_models2 {

namespace roofline::helpers {

struct SRooflineTotal {
    std::string name;  // memory level
    double elapsedTime = 0.0;
    double time = 0.0;
    double logAI = 0.0;
    double logPerf = 0.0;
    double gigabytes = 0.0;
};

// The point of all rows at a level; `elapsedTime` above 0 is the program's own, else the rows' sum stands in.
// A quantity that isn't above 0 has no logarithm and stays as it is.
SRooflineTotal getRooflineTotal(const CMemoryLevelMetrics& metrics, OperationsType operations,
                                const std::string& level, double elapsedTime);
// The same over the rows of a dataset; all 0 for a null one.
SRooflineTotal getRooflineTotal(const sptr_t<IDataset>& dataset, OperationsType operations,
                                const std::string& level, const MetricRecipe& recipe = {});

}  // namespace roofline::helpers

// A total in the form of the document. Its values are those of the kinds' tables that a program has as a
// whole: `effectiveBand`, which tables of devices have, is of single rows.
struct RooflineAttrsTotal {
    std::string name;
    double x = 0.0;  // log10 of the arithmetic intensity
    double y = 0.0;  // log10 of the performance
    std::map<std::string, double, std::less<>> values;

    RooflineAttrsTotal() = default;
    explicit RooflineAttrsTotal(const roofline::helpers::SRooflineTotal& total);
};

}  // namespace data_models2
