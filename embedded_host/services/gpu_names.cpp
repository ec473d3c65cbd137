// What texts about devices call their parts, and the groups of their instructions.
#include "host_interfaces/host_functions.h"

#include <algorithm>
#include <array>
#include <utility>

namespace data_models2 {

// A device whose memory is stacked beside it is sold in stacks too.
bool gpu_helpers::useNewGpuTerminology(unsigned long long memoryType) {
    return static_cast<MemoryLevel>(memoryType) == MemoryLevel::Hbm;
}

std::string gpu_roofline_helpers::getInstructionType(int instruction) {
    using enum GpuInstruction;
    static constexpr auto kGroups = std::to_array<std::pair<GpuInstruction, std::string_view>>({
        {Basic, "compute"},
        {Fma, "compute"},
        {Div, "compute"},
        {Power, "compute"},
        {Math, "compute"},
        {Mad, "compute"},
        {Vector, "compute"},
        {Bit, "compute"},
        {Load, "memory"},
        {Store, "memory"},
        {SlmLoad, "memory"},
        {SlmStore, "memory"},
        {SlmAtomic, "atomic"},
        {GlobalAtomic, "atomic"},
    });
    const auto* const found = std::find_if(kGroups.begin(), kGroups.end(), [&](const auto& row) {
        return static_cast<int>(row.first) == instruction;
    });
    return std::string(found == kGroups.end() ? "other" : found->second);
}

}  // namespace data_models2
