// The option trees of the kinds of analysis.
#pragma once

#include "host_interfaces/records.h"

#include "roofline_model/memory_metrics.h"
#include "roofline_model/unified/roofline_options.h"

#include <memory>
#include <string>

namespace data_models2 {

// The CPU tree. `memoryLevelsCount`: the number of measured levels; n > 1 offers the first n - 1 caches (at
// most 4) and DRAM, 1 or less offers no levels. Without metrics the default type is float.
std::shared_ptr<CRooflineOptions> initRooflineOptions(
    int memoryLevelsCount, const std::shared_ptr<const CMemoryLevelMetrics>& metrics);

// The tree of a computing device: the operations, by default those that there are more of (float without
// metrics), and the device's levels, by default the last. A level of which nothing is known isn't offered,
// but stays the default.
std::shared_ptr<CRooflineOptions> initRooflineOptions(
    const std::shared_ptr<const CMemoryLevelMetrics>& metrics, const GpuDeviceProperties& device);

// The tree of a projection on a target: the operations, by default float whatever there are, and the target's
// levels, by default the last. `targetLevel`: that of its memory; one that is unknown or listed before stands
// twice, one of which nothing is known isn't offered, but stays the default.
std::shared_ptr<CRooflineOptions> initOffloadRooflineOptions(const std::string& targetLevel);

}  // namespace data_models2
