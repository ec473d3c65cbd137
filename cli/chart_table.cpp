// Tables of the chart.
#include "cli/chart_table.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <numeric>

namespace cli {
namespace {

using Kind = Column::Kind;

std::string captioned(const std::string& name, const std::string& measure) {
    return measure.empty() ? name : fmt::format("{} [{}]", name, measure);
}

Cell optionalCell(const std::optional<double>& value) { return value ? Cell(*value) : Cell(); }

Table readableTable(const ChartDocument& document) {
    const bool severalLevels = document.levels().size() > 1, severalTotals = document.totals.size() > 1;
    Table table{{{"name", ""}}, {}};
    if (severalLevels) table.columns.push_back({"level", ""});
    table.columns.push_back({captioned("intensity", document.measureX), "", Kind::Number});
    table.columns.push_back({captioned("performance", document.measureY), "", Kind::Number});
    table.columns.push_back({"share of time", "", Kind::Percent});
    const auto add = [&](const std::string& name, const std::string& level, double x, double y, Cell share) {
        std::vector<Cell> row{name};
        if (severalLevels) row.emplace_back(level);
        row.insert(row.end(), {Cell(std::pow(10.0, x)), Cell(std::pow(10.0, y)), std::move(share)});
        table.rows.push_back(std::move(row));
    };
    for (const auto& point : document.points)
        add(point.name, point.level, point.x, point.y, optionalCell(point.share));
    for (const auto& total : document.totals)
        add(severalTotals ? fmt::format("(program total, {})", total.name) : "(program total)", total.name,
            total.x, total.y, std::string("total"));
    return table;
}

}  // namespace

std::string countSentence(std::size_t drawn, const std::vector<UnplacedRows>& unplaced) {
    const auto missing = std::accumulate(unplaced.begin(), unplaced.end(), std::size_t{0},
                                         [](std::size_t sum, const auto& each) { return sum + each.count; });
    const auto rows = drawn + missing;
    auto sentence = fmt::format("{} row{}: {} drawn", rows, rows == 1 ? "" : "s", drawn);
    if (missing == 0) return sentence;
    std::vector<std::string> causes;
    for (const auto& each : unplaced) causes.push_back(fmt::format("{} {}", each.count, each.cause));
    return fmt::format("{}, {} not: {}", sentence, missing, fmt::join(causes, ", "));
}

std::string chartText(const ChartDocument& document, const RowCount& count) {
    auto text = toText(readableTable(document)) + '\n' + countSentence(count.drawn, count.unplaced) + '\n';
    const bool isOver = std::any_of(document.points.begin(), document.points.end(),
                                    [](const ChartPoint& point) { return point.share.value_or(0) > 1.0; });
    if (isOver) text += "! more than the program's own time\n";
    return text;
}

std::string chartCsv(const ChartDocument& document) {
    Table table{{{"", "id"},
                 {"", "name"},
                 {"", "location"},
                 {"", "type"},
                 {"", "level"},
                 {"", "intensity", Kind::Number},
                 {"", "performance", Kind::Number},
                 {"", "elapsed_time", Kind::Number},
                 {"", "share_of_time", Kind::Number}},
                {}};
    for (const auto& point : document.points)
        table.rows.push_back({point.id, point.name, point.location, point.type, point.level,
                              std::pow(10.0, point.x), std::pow(10.0, point.y), optionalCell(point.seconds),
                              optionalCell(point.share)});
    return toCsv(table);
}

}  // namespace cli
