// The names of memory levels in options and metrics.
#include "host_interfaces/host_functions.h"

#include <algorithm>
#include <array>

namespace data_models2::roofline_helpers {
namespace {

struct LevelNames {
    MemoryLevel level;
    std::string_view cpu;
    std::string_view gpu;  // empty when devices have no such level
};

constexpr auto kLevelNames = std::to_array<LevelNames>({
    {MemoryLevel::L1, "L1", "L1gpu"},
    {MemoryLevel::L2, "L2", ""},
    {MemoryLevel::L3, "L3", "L3gpu"},
    {MemoryLevel::L4, "L4", ""},
    {MemoryLevel::PkgRam, "PKGRAM", ""},
    {MemoryLevel::Dram, "DRAM", "DRAMgpu"},
    {MemoryLevel::LastCache, "LLC", ""},
    {MemoryLevel::Slm, "SLMgpu", "SLMgpu"},
    {MemoryLevel::Xli, "XLIgpu", "XLIgpu"},
    {MemoryLevel::Hbm, "HBMgpu", "HBMgpu"},
    {MemoryLevel::Gddr6, "GDDR6gpu", "GDDR6gpu"},
    {MemoryLevel::Llc, "LLCgpu", "LLCgpu"},
    {MemoryLevel::Edram, "EDRAMgpu", "EDRAMgpu"},
});

struct LastLevelRoof {
    std::string_view name;
    RoofId roof;
};

constexpr auto kLastLevelRoofs = std::to_array<LastLevelRoof>({
    {"XLIgpu", RoofId::XliBandwidth},
    {"HBMgpu", RoofId::DeviceHbmBandwidth},
    {"DRAMgpu", RoofId::DeviceDramBandwidth},
});

template <class Table, class Predicate>
const auto* findRow(const Table& table, Predicate predicate) {
    const auto* const found = std::find_if(table.begin(), table.end(), predicate);
    return found == table.end() ? nullptr : found;
}

}  // namespace

std::string getMemoryRooflineType(MemoryLevel level, TargetDeviceType target) {
    const auto* const names = findRow(kLevelNames, [&](const auto& row) { return row.level == level; });
    if (!names) return {};
    return std::string(target == TargetDeviceType::Gpu ? names->gpu : names->cpu);
}

std::string getGpuMemoryRooflineType(unsigned long long memoryType) {
    const auto name = getMemoryRooflineType(static_cast<MemoryLevel>(memoryType), TargetDeviceType::Gpu);
    return name.empty() ? getMemoryRooflineType(MemoryLevel::Xli, TargetDeviceType::Gpu) : name;
}

RoofId getGpuLastMemLevelRoofId(const std::string& name) {
    const auto* const roof = findRow(kLastLevelRoofs, [&](const auto& row) { return row.name == name; });
    return roof ? roof->roof : RoofId::XliBandwidth;
}

}  // namespace data_models2::roofline_helpers
