// Tables and JSON of comparisons.
#include "cli/comparison_tables.h"

#include "cli/row_columns.h"
#include "cli/table.h"
#include "cli/text.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>

namespace cli {
namespace {

using Kind = Column::Kind;
using json::Writer;

constexpr std::size_t kNameWidth = 48;
constexpr std::array<std::string_view, 2> kSides{"base", "new"};

Cell roofOf(const RowLine& row) {
    if (row.limit) return row.limit->name;
    return row.underMemory ? "above " + row.underMemory->name : std::string("N/A");
}

Cell shortName(const std::string& name) { return shorten(cleanText(name), kNameWidth); }

// Why there is no point or no roof, or what to mind of them.
std::string remarkOf(const RowLine& row) { return row.cause.empty() ? row.doubt : row.cause; }

std::string remarkOf(const ComparedPair& pair) { return bothOf(remarkOf(pair.before), remarkOf(pair.after)); }

struct PairColumn {
    Column column;
    Cell (*cell)(const ComparedPair& pair);
};

const std::array<PairColumn, 12> kPairColumns{{
    {{"id", ""}, [](const ComparedPair& pair) { return Cell(pair.before.id); }},
    {{"name", ""}, [](const ComparedPair& pair) { return shortName(nameOf(pair)); }},
    {{"match", "", Kind::Percent},
     [](const ComparedPair& pair) { return Cell(std::min(1.0, pair.match / 100.0)); }},
    {{"time: base [s]", "", Kind::Number},
     [](const ComparedPair& pair) { return cellOf(pair.before.seconds); }},
    {{"new [s]", "", Kind::Number}, [](const ComparedPair& pair) { return cellOf(pair.after.seconds); }},
    {{"speed-up", "", Kind::Number}, [](const ComparedPair& pair) { return cellOf(pair.speedUp()); }},
    {{"GOP/s: base", "", Kind::Number},
     [](const ComparedPair& pair) { return cellOf(pair.before.performance); }},
    {{"new", "", Kind::Number}, [](const ComparedPair& pair) { return cellOf(pair.after.performance); }},
    {{"OP/byte: base", "", Kind::Number},
     [](const ComparedPair& pair) { return cellOf(pair.before.intensity); }},
    {{"new", "", Kind::Number}, [](const ComparedPair& pair) { return cellOf(pair.after.intensity); }},
    {{"limiting roof: base", ""}, [](const ComparedPair& pair) { return roofOf(pair.before); }},
    {{"new", ""}, [](const ComparedPair& pair) { return roofOf(pair.after); }},
}};
constexpr std::size_t kSpeedUp = 5;  // of these columns

std::string pairsText(const Comparison& comparison) {
    Table table;
    for (const auto& each : kPairColumns) table.columns.push_back(each.column);
    const bool hasRemarks = std::any_of(comparison.pairs.begin(), comparison.pairs.end(),
                                        [](const ComparedPair& pair) { return !remarkOf(pair).empty(); });
    if (hasRemarks) table.columns.push_back({"remark", ""});
    for (const auto& pair : comparison.pairs) {
        auto& cells = table.rows.emplace_back();
        for (const auto& each : kPairColumns) cells.push_back(each.cell(pair));
        if (comparison.changeOf(pair) == Change::Noise) cells[kSpeedUp] = "~";
        if (hasRemarks) cells.emplace_back(remarkOf(pair));
    }
    return toText(table);
}

std::string restText(const Comparison& comparison) {
    Table table{{{"no partner", ""},
                 {"id", ""},
                 {"name", ""},
                 {"time [s]", "", Kind::Number},
                 {"GOP/s", "", Kind::Number},
                 {"OP/byte", "", Kind::Number},
                 {"limiting roof", ""},
                 {"remark", ""}},
                {}};
    const auto add = [&](std::string_view side, const std::vector<RowLine>& rows) {
        for (const auto& row : rows)
            table.rows.push_back({std::string(side), row.id, shortName(row.name), cellOf(row.seconds),
                                  cellOf(row.performance), cellOf(row.intensity), roofOf(row),
                                  remarkOf(row)});
    };
    add(kSides[0], comparison.beforeOnly);
    add(kSides[1], comparison.afterOnly);
    return table.rows.empty() ? std::string() : toText(table) + '\n';
}

std::string totalsText(const Comparison& comparison) {
    Table table{{{"total", ""},
                 {"time: base [s]", "", Kind::Number},
                 {"new [s]", "", Kind::Number},
                 {"speed-up", "", Kind::Number}},
                {}};
    const auto add = [&](const char* what, const Times& times) {
        table.rows.push_back({std::string(what), times.before, times.after, cellOf(times.speedUp())});
    };
    if (comparison.timedPairs() > 0) add("pairs, SUM/SUM", comparison.pairTimes());
    add("all rows, SUM/SUM", comparison.allTimes());
    if (const auto mean = comparison.meanSpeedUp())
        table.rows.push_back(
            {std::string("pairs, geometric mean"), std::string(), std::string(), cellOf(mean)});
    return toText(table);
}

// "67 pairs: 14 faster, 19 slower, 34 changed by less than 5 % (~); without a partner: 2 of the
// base's rows, 1 of the new ones".
std::string countSentence(const Comparison& comparison) {
    const auto pairs = comparison.pairs.size();
    auto text =
        fmt::format("{} pair{}: {} faster, {} slower, {} changed by less than {} % (~)", pairs,
                    pairs == 1 ? "" : "s", comparison.count(Change::Faster), comparison.count(Change::Slower),
                    comparison.count(Change::Noise), shortNumber(comparison.noise));
    if (const auto unknown = comparison.count(Change::Unknown))
        text += fmt::format(", {} without time on one side", unknown);
    return text + fmt::format("; without a partner: {} of the base's rows, {} of the new ones\n",
                              comparison.beforeOnly.size(), comparison.afterOnly.size());
}

std::string describe(const ComparedResult& result) {
    const auto machine = result.machine.empty() ? std::string() : ", " + cleanText(result.machine);
    return fmt::format("{} ({}{})\n", cleanText(result.program), cleanText(result.file), machine);
}

void writeResult(Writer& writer, const char* key, const ComparedResult& result) {
    writeCells(writer, key,
               {{"file", cellOf(result.file)},
                {"program", cellOf(result.program)},
                {"machine", cellOf(result.machine)}});
}

Cell changeCell(Change change) { return std::string(kChangeNames.at(static_cast<std::size_t>(change))); }

void writePair(Writer& writer, const ComparedPair& pair, Change change) {
    writeMember(writer, "match_percent", pair.match);
    writeMember(writer, "speedup_factor", cellOf(pair.speedUp()));
    writeMember(writer, "change", changeCell(change));
    json::writeObject(writer, "base", [&] { writeMembers(writer, pair.before); });
    json::writeObject(writer, "new", [&] { writeMembers(writer, pair.after); });
}

void writeTotals(Writer& writer, const Comparison& comparison) {
    for (const auto change : {Change::Faster, Change::Slower, Change::Noise, Change::Unknown}) {
        const auto name = fmt::format("{}_count", kChangeNames.at(static_cast<std::size_t>(change)));
        writer.Key(name.c_str()), writer.Uint64(comparison.count(change));
    }
    const auto add = [&](const char* key, const Times& times) {
        writeCells(writer, key,
                   {{"base_elapsed_time_s", times.before},
                    {"new_elapsed_time_s", times.after},
                    {"speedup_factor", cellOf(times.speedUp())}});
    };
    add("pairs", comparison.pairTimes());
    add("all_rows", comparison.allTimes());
    writeMember(writer, "geometric_mean_speedup_factor", cellOf(comparison.meanSpeedUp()));
}

void appendCells(std::vector<Cell>& cells, const RowLine* row) {
    for (const auto columns : {rowColumns(), verdictColumns()})
        for (const auto& each : columns) cells.push_back(row ? each.cell(*row) : Cell());
}

}  // namespace

std::string comparisonText(const ComparisonTableRequest& request) {
    const auto& comparison = request.comparison;
    auto text = "base: " + describe(request.base) + "new:  " + describe(request.other) + '\n';
    if (!comparison.pairs.empty()) text += pairsText(comparison) + '\n';
    return text + restText(comparison) + totalsText(comparison) + '\n' + countSentence(comparison);
}

std::string comparisonCsv(const ComparisonTableRequest& request) {
    const auto& comparison = request.comparison;
    Table table{{{"", "side"}, {"", "match_percent"}, {"", "speedup_factor"}, {"", "change"}}, {}};
    for (const auto side : kSides)
        for (const auto columns : {rowColumns(), verdictColumns()})
            for (const auto& each : columns)
                table.columns.push_back({"", fmt::format("{}_{}", side, each.key)});
    const auto add = [&](std::vector<Cell> cells, const RowLine* before, const RowLine* after) {
        appendCells(cells, before);
        appendCells(cells, after);
        table.rows.push_back(std::move(cells));
    };
    for (const auto& pair : comparison.pairs)
        add({std::string("both"), pair.match, cellOf(pair.speedUp()), changeCell(comparison.changeOf(pair))},
            &pair.before, &pair.after);
    for (const auto& row : comparison.beforeOnly) add({std::string("base"), {}, {}, {}}, &row, nullptr);
    for (const auto& row : comparison.afterOnly) add({std::string("new"), {}, {}, {}}, nullptr, &row);
    return toCsv(table);
}

std::string comparisonJson(const ComparisonTableRequest& request) {
    const auto& comparison = request.comparison;
    return json::objectText([&](Writer& writer) {
        const auto writeRow = [&](const RowLine& row) { writeMembers(writer, row); };
        writeResult(writer, "base", request.base);
        writeResult(writer, "new", request.other);
        writer.Key("comparer"), writer.String(request.roofline ? "roofline" : "default");
        writeMember(writer, "threshold_percent", request.threshold);
        writeMember(writer, "noise_percent", comparison.noise);
        json::writeObjects(writer, "pairs", comparison.pairs, [&](const ComparedPair& pair) {
            writePair(writer, pair, comparison.changeOf(pair));
        });
        json::writeObjects(writer, "base_only", comparison.beforeOnly, writeRow);
        json::writeObjects(writer, "new_only", comparison.afterOnly, writeRow);
        json::writeObject(writer, "totals", [&] { writeTotals(writer, comparison); });
    });
}

}  // namespace cli
