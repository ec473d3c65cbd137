// Reads what a file says of a device.
#include "embedded_host/result/device.h"

#include <algorithm>

namespace embedded_host {
namespace {
using namespace data_models2;

constexpr auto kMembers = std::to_array<std::string_view>(
    {"name", "vendor", "architecture", "memory", "subDevices", "computeUnits", "integrated", "matrixUnits"});
constexpr auto kMemoryNames = std::to_array<std::string_view>({"DRAM", "HBM", "XLI"});
constexpr auto kMemoryLevels =
    std::to_array<MemoryLevel>({MemoryLevel::Dram, MemoryLevel::Hbm, MemoryLevel::Xli});
static_assert(kMemoryNames.size() == kMemoryLevels.size());
constexpr auto kTargetMembers = std::to_array<std::string_view>({"name", "memory", "projected"});
// Deliberate: more than those of a device. A target's last level may be a cache.
constexpr auto kTargetMemories =
    std::to_array<std::string_view>({"L1", "L3", "DRAM", "SLM", "XLI", "GDDR6", "HBM", "EDRAM", "LLC"});
// Levels by name that charts of a device don't have: it would have neither points nor a roof there.
constexpr auto kUnchartedMemories = std::to_array<std::string_view>({"GDDR6", "EDRAM", "LLC"});
constexpr std::uint64_t kMostParts = 1'000'000;

std::size_t readMemory(const JsonFile& file, const JsonValue& value) {
    const auto& names = kUnchartedMemories;
    if (value.IsString() && std::find(names.begin(), names.end(), textOf(value)) != names.end())
        file.refuse(value, "\"DRAM\" for a memory that no chart of a device has a level for");
    return file.choice(value, kMemoryNames);
}

}  // namespace

GpuDeviceProperties readDevice(const JsonFile& file, const JsonValue& value) {
    const auto [name, vendor, architecture, memory, subDevices, computeUnits, integrated, matrixUnits] =
        file.members(value, kMembers);
    GpuDeviceProperties device;
    if (name) device.name = file.text(*name);
    if (vendor) device.vendor = file.text(*vendor);
    if (architecture) device.architecture = file.text(*architecture);
    device.memoryType = static_cast<std::uint64_t>(kMemoryLevels[memory ? readMemory(file, *memory) : 0]);
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
    const auto [name, memory, projected] = file.members(value, kTargetMembers);
    Target target;
    if (name) target.name = file.text(*name);
    if (memory) target.memory = kTargetMemories[file.choice(*memory, kTargetMemories)];
    if (projected) target.isProjected = file.boolean(*projected);
    return target;
}

}  // namespace embedded_host
