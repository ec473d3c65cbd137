// The option trees of the kinds of analysis.
#pragma once

#include "roofline_model/memory_metrics.h"
#include "roofline_model/unified/roofline_options.h"

#include <memory>

namespace data_models2 {

// The CPU tree. `memoryLevelsCount`: the number of measured levels; n > 1 offers the first n - 1 caches (at
// most 4) and DRAM, 1 or less offers no levels. Without metrics the default type is float.
std::shared_ptr<CRooflineOptions> initRooflineOptions(
    int memoryLevelsCount, const std::shared_ptr<const CMemoryLevelMetrics>& metrics);

}  // namespace data_models2
