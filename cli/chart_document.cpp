// Reading of the chart document.
#include "cli/chart_document.h"

#include "cli/json.h"
#include "cli/text.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <set>
#include <sstream>

namespace cli {
namespace {

using json::Value;

// Beyond any logarithm of a double: no coordinate.
constexpr double kLargestLogarithm = 400.0;

std::optional<double> coordinate(const Value& record, const char* name) {
    const auto value = json::number(record, name);
    return value && std::abs(*value) <= kLargestLogarithm ? value : std::nullopt;
}

// "L1-DRAM-" as its levels.
std::vector<std::string> levelsIn(const std::string& captions) {
    std::vector<std::string> levels;
    std::istringstream stream(captions);
    for (std::string level; std::getline(stream, level, '-');)
        if (!level.empty()) levels.push_back(level);
    return levels;
}

struct Reader {
    const Value& root;
    // A GPU's document speaks of call stacks too, but has self data alone.
    bool isTotal = json::number(root, "withCallstacks").value_or(0) > 0 && root.HasMember("totalElapsedTime");
    std::vector<std::string> chartLevels = levelsIn(json::text(root, "memoryLevelPref"));
    const char* timeKey = isTotal ? "totalElapsedTime" : "selfElapsedTime";
    std::optional<double> programTime = json::number(root, timeKey);

    // Of the records of one row, which stand together.
    std::string rowId = {};
    std::set<std::string> rowLevels = {};

    bool read(const Value& record, ChartPoint& point) {
        const bool hasTotal = coordinate(record, "x1") && coordinate(record, "y1");
        const auto x = coordinate(record, hasTotal ? "x1" : "x");
        const auto y = coordinate(record, hasTotal ? "y1" : "y");
        if (!x || !y) return false;
        point.x = *x;
        point.y = *y;
        point.id = json::text(record, "id");
        point.name = json::text(record, "name");
        point.location = json::text(record, "locat");
        point.level = readLevel(record, point.id);
        if (const auto* types = json::member(root, "loopTypes"))
            point.type = json::text(*types, json::text(record, "type").c_str());
        if (const auto vectorised = json::number(record, "vec")) point.vectorised = *vectorised > 0;
        point.seconds = json::number(record, timeKey);
        if (point.seconds && programTime && *programTime > 0) point.share = *point.seconds / *programTime;
        return true;
    }

    // A record of several levels names those of its row's earlier records too: only its own are shown. A
    // record of the first configuration carries no level: it is the chart's first.
    std::string readLevel(const Value& record, const std::string& id) {
        if (id != rowId) rowLevels.clear();
        rowId = id;
        auto levels = levelsIn(json::text(record, "memoryLevelPref"));
        if (levels.empty() && !chartLevels.empty()) levels.push_back(chartLevels.front());
        std::string own;
        for (const auto& level : levels)
            if (rowLevels.insert(level).second) own += (own.empty() ? "" : "+") + level;
        return own;
    }
};

}  // namespace

std::vector<std::string> ChartDocument::levels() const {
    std::vector<std::string> found;
    for (const auto& point : points)
        if (std::find(found.begin(), found.end(), point.level) == found.end()) found.push_back(point.level);
    return found;
}

std::size_t ChartDocument::rowCount() const {
    std::set<std::string_view> ids;
    std::size_t nameless = 0;
    for (const auto& point : points) point.id.empty() ? void(++nameless) : void(ids.insert(point.id));
    return ids.size() + nameless;
}

ChartDocument parseChartDocument(const std::string& text) {
    const auto root = json::parse(text, "the chart document");
    ChartDocument document;
    if (const auto* message = json::member(root, "noDataMessage")) {
        document.noDataTitle = json::text(*message, "title");
        document.noDataDescription = json::text(*message, "descr");
        if (document.hasData()) document.noDataTitle = "no data";
    }
    document.nameX = json::text(root, "nameX");
    document.nameY = json::text(root, "nameY");
    document.measureX = json::text(root, "measureX");
    document.measureY = json::text(root, "measureY");
    const auto minX = coordinate(root, "minX"), minY = coordinate(root, "minY");
    const auto maxX = coordinate(root, "maxX"), maxY = coordinate(root, "maxY");
    if (minX && minY && maxX && maxY) document.bounds = ChartBounds{*minX, *minY, *maxX, *maxY};

    Reader reader{root};
    for (const auto& record : json::items(root, "loops")) {
        ChartPoint point;
        if (reader.read(record, point)) document.points.push_back(std::move(point));
    }
    std::stable_sort(document.points.begin(), document.points.end(),
                     [](const ChartPoint& a, const ChartPoint& b) {
                         return a.share.value_or(-1.0) > b.share.value_or(-1.0);
                     });
    for (const auto& record : json::items(root, "programTotal")) {
        const auto x = coordinate(record, "x"), y = coordinate(record, "y");
        if (x && y)
            document.totals.push_back({json::text(record, "name"), json::text(record, "descr"), *x, *y});
    }
    return document;
}

std::vector<Roof> parseRoofs(const std::string& text) {
    const auto root = json::parse(text, "the roofs");
    std::vector<Roof> roofs;
    for (const auto& item : json::items(root)) {
        const auto value = json::number(item, "val");
        if (!value || *value <= 0) continue;
        roofs.push_back(
            {json::text(item, "name"), json::text(item, "measure"), *value, json::flag(item, "isMem")});
    }
    return roofs;
}

std::vector<Roof> chooseRoofs(std::vector<Roof> roofs, const std::string& selected) {
    if (selected.empty()) {
        std::map<bool, double> top;
        for (const auto& roof : roofs) top[roof.isMemory] = std::max(top[roof.isMemory], roof.value);
        for (auto& roof : roofs) roof.isSelected = roof.value >= top[roof.isMemory];
        return roofs;
    }
    const auto root = json::parse(selected, "the selected roofs");
    const auto* const states = json::member(root, "roofsState");
    const auto has = [states](const Roof& roof, const char* what) {
        const auto* const state = states ? json::member(*states, roofKey(roof.name).c_str()) : nullptr;
        return state && json::flag(*state, what);
    };
    std::erase_if(roofs, [&](const Roof& roof) { return has(roof, "hidden"); });
    for (auto& roof : roofs) roof.isSelected = has(roof, "selected");
    return roofs;
}

}  // namespace cli
