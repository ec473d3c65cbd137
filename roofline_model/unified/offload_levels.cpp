#include "roofline_model/unified/offload_levels.h"

#include <algorithm>
#include <utility>

namespace data_models2 {

namespace {

using Name = std::pair<std::string_view, const char*>;

constexpr auto kTargetLevels = std::to_array<Name>({
    // Deliberate: such a target is charted by the traffic of its core, of which projections know nothing.
    {"L1", "CARMgpu"},
    {"L3", "L3gpu"},
    {"DRAM", "DRAMgpu"},
    {"SLM", "SLMgpu"},
    {"XLI", "XLIgpu"},
    {"GDDR6", "GDDR6gpu"},
    {"HBM", "HBMgpu"},
});

template <class Range, class Predicate>
auto findRow(const Range& table, Predicate&& matches) {
    const auto found = std::find_if(table.begin(), table.end(), matches);
    return found == table.end() ? nullptr : &*found;
}

}  // namespace

const OffloadLevel* findOffloadLevel(std::string_view name) {
    return findRow(kOffloadChartLevels, [name](const OffloadLevel& level) { return level.name == name; });
}

const OffloadLevel* findOffloadLevel(MemoryLevel level) {
    return findRow(kOffloadLevels, [level](const OffloadLevel& entry) { return entry.level == level; });
}

std::string getOffloadTargetLevel(std::string_view memoryName) {
    const auto* const found =
        findRow(kTargetLevels, [memoryName](const Name& entry) { return entry.first == memoryName; });
    return found ? found->second : "XLIgpu";
}

std::vector<std::string> getOffloadMemoryLevels(const std::string& targetLevel) {
    return {"L3gpu", "XLIgpu", targetLevel};
}

ValueGetter gigabytesGetter(FieldId bytes) { return divGetter(bytes, fakeGetter(1e9)); }

}  // namespace data_models2
