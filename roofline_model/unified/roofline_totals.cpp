#include "roofline_model/unified/roofline_totals.h"

#include <cmath>

namespace data_models2 {

namespace roofline::helpers {

namespace {
double log10IfPositive(double value) { return value > 0.0 ? std::log10(value) : value; }
}  // namespace

SRooflineTotal getRooflineTotal(const CMemoryLevelMetrics& metrics, OperationsType operations,
                                const std::string& level, double elapsedTime) {
    SRooflineTotal total;
    total.name = level;
    total.elapsedTime = elapsedTime > 0.0 ? elapsedTime : metrics.getTotalElapsedTime();
    total.time = metrics.getTotalTime();
    total.gigabytes = metrics.getTotalGBs(level);
    total.logAI = log10IfPositive(metrics.getTotalAI(operations, level));
    if (total.elapsedTime > 0.0)
        total.logPerf = log10IfPositive(metrics.getTotalOpCount(operations) / total.elapsedTime);
    return total;
}

SRooflineTotal getRooflineTotal(const sptr_t<IDataset>& dataset, OperationsType operations,
                                const std::string& level, const MetricRecipe& recipe) {
    const auto metrics = makeMemoryMetrics(dataset, recipe);
    return getRooflineTotal(metrics ? *metrics : CMemoryLevelMetrics(), operations, level, 0.0);
}

}  // namespace roofline::helpers

RooflineAttrsTotal::RooflineAttrsTotal(const roofline::helpers::SRooflineTotal& total)
    : name(total.name),
      x(total.logAI),
      y(total.logPerf),
      values{{"selfElapsedTime", total.elapsedTime},
             {"totalElapsedTime", total.elapsedTime},
             {"selfTime", total.time},
             {"totalTime", total.time},
             {"selfMem", total.gigabytes},
             {"totalMem", total.gigabytes}} {}

}  // namespace data_models2
