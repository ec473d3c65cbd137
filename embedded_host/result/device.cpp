// Reads what a file says of a device.
#include "embedded_host/result/device.h"

#include <algorithm>

namespace embedded_host {
namespace {
using namespace data_models2;

constexpr auto kMembers = std::to_array<std::string_view>(
    {"name", "vendor", "architecture", "memory", "subDevices", "computeUnits", "integrated", "matrixUnits"});
constexpr auto kMemoryNames =
    std::to_array<std::string_view>({"DRAM", "HBM", "XLI", "GDDR6", "EDRAM", "LLC"});
constexpr auto kMemoryLevels =
    std::to_array<MemoryLevel>({MemoryLevel::Dram, MemoryLevel::Hbm, MemoryLevel::Xli, MemoryLevel::Gddr6,
                                MemoryLevel::Edram, MemoryLevel::Llc});
static_assert(kMemoryNames.size() == kMemoryLevels.size());
constexpr auto kTargetMembers = std::to_array<std::string_view>({"name", "memory"});
// Deliberate: more than those of a device. A target's last level may be a cache.
constexpr auto kTargetMemories =
    std::to_array<std::string_view>({"L1", "L3", "DRAM", "SLM", "XLI", "GDDR6", "HBM", "EDRAM", "LLC"});
constexpr std::uint64_t kMostParts = 1'000'000;

}  // namespace

GpuDeviceProperties readDevice(const JsonFile& file, const JsonValue& value) {
    const auto [name, vendor, architecture, memory, subDevices, computeUnits, integrated, matrixUnits] =
        file.members(value, kMembers);
    GpuDeviceProperties device;
    if (name) device.name = file.text(*name);
    if (vendor) device.vendor = file.text(*vendor);
    if (architecture) device.architecture = file.text(*architecture);
    device.memoryType =
        static_cast<std::uint64_t>(kMemoryLevels[memory ? file.choice(*memory, kMemoryNames) : 0]);
    if (subDevices) device.subDeviceCount = file.integer(*subDevices, 1, kMostParts);
    if (computeUnits) device.computeUnitCount = file.integer(*computeUnits, 1, kMostParts);
    if (integrated) device.isIntegrated = file.boolean(*integrated);
    if (matrixUnits) device.hasMatrixUnits = file.boolean(*matrixUnits);
    return device;
}

std::string memoryNameOf(const GpuDeviceProperties& device) {
    const auto* const found =
        std::find(kMemoryLevels.begin(), kMemoryLevels.end(), static_cast<MemoryLevel>(device.memoryType));
    if (found == kMemoryLevels.end()) return {};
    return std::string(kMemoryNames[static_cast<std::size_t>(found - kMemoryLevels.begin())]);
}

Target readTarget(const JsonFile& file, const JsonValue& value) {
    const auto [name, memory] = file.members(value, kTargetMembers);
    Target target;
    if (name) target.name = file.text(*name);
    if (memory) target.memory = kTargetMemories[file.choice(*memory, kTargetMemories)];
    return target;
}

}  // namespace embedded_host
