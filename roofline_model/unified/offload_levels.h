// The memory levels of a projection's target: one record each for rows, options, metrics and charts.
#pragma once

#include "host_interfaces/ids.h"

#include "roofline_model/unified/value_getters.h"

#include <array>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace data_models2 {

struct OffloadLevel {
    MemoryLevel level;
    unsigned position;        // from the core; one for levels that take each other's place
    const char* name;         // as options, metrics and configurations have it; null off the charts
    const char* explanation;  // message id
    FieldId traffic;          // bytes; None: isn't projected
    FieldId bandwidth;        // bytes per second
};

// In the order of the chart's parameters; those that charts offer come first.
inline constexpr auto kOffloadLevels = [] {
    using Level = MemoryLevel;
    using enum FieldId;
    return std::to_array<OffloadLevel>({
        {Level::L3, 4, "L3gpu", "roofline_options_l3_desc", OffloadL3Bytes, OffloadL3Bandwidth},
        {Level::L1, 2, "L1gpu", "roofline_options_l1_desc", OffloadL1Bytes, OffloadL1Bandwidth},
        {Level::Slm, 1, "SLMgpu", "roofline_options_slm_desc", OffloadSlmBytes, OffloadSlmBandwidth},
        // Deliberate: what may stand at the end of the path to memory shares an explanation.
        {Level::Xli, 6, "XLIgpu", "roofline_options_xli_desc", OffloadXliBytes, OffloadXliBandwidth},
        {Level::Dram, 8, "DRAMgpu", "roofline_options_xli_desc", OffloadDramBytes, OffloadDramBandwidth},
        {Level::Edram, 7, "EDRAMgpu", "roofline_options_edram_desc", OffloadEdramBytes,
         OffloadEdramBandwidth},
        {Level::Gddr6, 8, "GDDR6gpu", "roofline_options_xli_desc", OffloadGddr6Bytes, OffloadGddr6Bandwidth},
        {Level::Llc, 6, "LLCgpu", "roofline_options_xli_desc", OffloadLlcBytes, OffloadLlcBandwidth},
        {Level::Hbm, 8, "HBMgpu", "roofline_options_xli_desc", OffloadHbmBytes, OffloadHbmBandwidth},
        {Level::L2, 3, nullptr, nullptr, OffloadL2Bytes, None},
        {Level::L4, 5, nullptr, nullptr, None, None},
    });
}();
inline constexpr std::span kOffloadChartLevels = std::span(kOffloadLevels).first<9>();

// Null for a level without a record; by name, of the charts' levels.
const OffloadLevel* findOffloadLevel(std::string_view name);
const OffloadLevel* findOffloadLevel(MemoryLevel level);

// The level of a target's memory, by the name that its view model gives.
std::string getOffloadTargetLevel(std::string_view memoryName);
// The names of a target's three levels, that of its memory last; a name may stand twice or lack a record.
std::vector<std::string> getOffloadMemoryLevels(const std::string& targetLevel);

// A field of bytes in gigabytes, or of bytes per second in gigabytes per second.
ValueGetter gigabytesGetter(FieldId bytes);

}  // namespace data_models2
