#include "cli/rows_above.h"

#include "host_interfaces/host_functions.h"

#include "cli/json.h"
#include "cli/text.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <optional>

namespace cli {
namespace {

using namespace data_models2;

struct LevelRoof {
    std::string name;
    double value = 0.0;  // bytes per second
};

// The highest one of the level.
LevelRoof findRoof(const Session& session, const json::Value& roofs, MemoryLevel level) {
    LevelRoof highest;
    const auto table = session.models.all->getRoofManager(session.kind->rows);
    if (!table) return highest;
    for (auto known = table->getRoofs({}); !known.isEnd(); ++known) {
        if (!roof::hasType(*known, RoofItem::Memory) || (*known).memoryLevel != level) continue;
        for (const auto& each : json::items(roofs)) {
            const auto value = json::number(each, "val").value_or(0.0);
            if (json::number(each, "id") == static_cast<double>((*known).id) && value > highest.value)
                highest = {json::text(each, "name"), value};
        }
    }
    return highest;
}

// Whether "L1+DRAM" holds "DRAM"; a "+" is no part of a level's name.
bool holds(const std::string& levels, const std::string& level) {
    return ('+' + levels + '+').find('+' + level + '+') != std::string::npos;
}

void add(std::vector<RowsAbove>& all, const std::string& roof, double fraction) {
    if (!(fraction > 1.0)) return;
    auto found =
        std::find_if(all.begin(), all.end(), [&](const RowsAbove& each) { return each.roof == roof; });
    if (found == all.end()) found = all.insert(found, {roof, 0, 1.0});
    ++found->count;
    found->most = std::max(found->most, fraction);
}

}  // namespace

std::vector<RowsAbove> rowsAbove(const Session& session, const ChartDocument& document,
                                 const std::string& roofs, const std::string& configuration) {
    std::vector<RowsAbove> all;
    const auto root = json::parse(roofs, "the roofs");
    for (const auto& [option, caption] : optionCaptions(session)) {
        if (('-' + configuration + '-').find('-' + option + '-') == std::string::npos) continue;
        for (const auto& level : session.kind->traffic) {
            if (level.option != option) continue;
            const auto roof = findRoof(session, root, level.level);
            for (const auto& point : document.points)
                if (roof.value > 0.0 && holds(point.level, caption))
                    add(all, roof.name, std::pow(10.0, point.y - point.x) * 1e9 / roof.value);
        }
    }
    return all;
}

std::vector<RowsAbove> rowsAbove(const std::vector<RowLine>& lines) {
    std::vector<RowsAbove> all;
    for (const auto& line : lines)
        for (const auto& level : line.levels)
            if (level.roof) add(all, level.roof->name, level.roof->fraction);
    return all;
}

std::string aboveSentence(const std::vector<RowsAbove>& above) {
    std::vector<std::string> texts;
    for (const auto& each : above)
        texts.push_back(fmt::format("{} row{} above {}, by up to {} %", each.count,
                                    each.count == 1 ? "" : "s", each.roof,
                                    shortNumber((each.most - 1.0) * 100.0)));
    return fmt::format("{}", fmt::join(texts, "; "));
}

}  // namespace cli
