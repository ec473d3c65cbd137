#include "roofline_model/gpu_roof_choice.h"

#include "host_interfaces/host_functions.h"

namespace data_models2::roofline {

namespace {

RoofId lastMemoryRoof(const GpuDeviceProperties& device) {
    return roofline_helpers::getGpuLastMemLevelRoofId(
        roofline_helpers::getGpuMemoryRooflineType(device.memoryType));
}

}  // namespace

DominatingRoofs getGpuDominatingRoofs(const RoofIds& roofs) {
    DominatingRoofs result;
    for (const auto perspective : kRoofPerspectives) result[perspective] = roofs;
    return result;
}

void fillDominatingMemoryRoofs(RoofIds& selected, const GpuDeviceProperties& device) {
    selected.insert(lastMemoryRoof(device));
}

RoofIds getGpuHiddenRoofs(const GpuDeviceProperties& device) {
    if (lastMemoryRoof(device) == RoofId::XliBandwidth) return {};
    return {RoofId::XliBandwidth};
}

}  // namespace data_models2::roofline
