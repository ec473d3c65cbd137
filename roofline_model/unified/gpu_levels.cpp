#include "roofline_model/unified/gpu_levels.h"

#include "host_interfaces/host_functions.h"

#include <algorithm>

namespace data_models2 {

const GpuLevel* findGpuLevel(std::string_view name) {
    const auto* const found = std::find_if(kGpuLevels.begin(), kGpuLevels.end(),
                                           [name](const GpuLevel& level) { return level.name == name; });
    return found == kGpuLevels.end() ? nullptr : found;
}

std::vector<std::string> getGpuMemoryLevels(const GpuDeviceProperties& device) {
    return {"CARMgpu", "L3gpu", "SLMgpu", roofline_helpers::getGpuMemoryRooflineType(device.memoryType)};
}

}  // namespace data_models2
