// Tables and JSON of rows.
#include "cli/row_tables.h"

#include "cli/row_columns.h"
#include "cli/rows_above.h"
#include "cli/table.h"
#include "cli/text.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <map>
#include <span>

namespace cli {
namespace {

using Kind = Column::Kind;
using json::Writer;

std::span<const RowLine> shown(const RowTableRequest& request) {
    const std::span<const RowLine> lines(request.lines);
    return request.top > 0 ? lines.first(std::min(request.top, lines.size())) : lines;
}

template <class Function>
bool anyLine(const RowTableRequest& request, Function function) {
    const auto lines = shown(request);
    return std::any_of(lines.begin(), lines.end(), function);
}

std::string remarkOf(const RowLine& line, bool levels) {
    std::vector<std::string> remarks;
    const auto doubt = levels && line.doubt.empty() ? line.levelCause : line.doubt;
    for (const auto& each : {line.cause, doubt})
        if (!each.empty()) remarks.push_back(each);
    if (const auto& roof = line.underCompute)
        remarks.push_back(roof->fraction > 1.0 ? fmt::format("above {}: {} %!", roof->name,
                                                             shortNumber(roof->fraction * 100.0))
                                               : fmt::format("on {}", roof->name));
    return fmt::format("{}", fmt::join(remarks, "; "));
}

// One column of the table for people.
struct ReadableColumn {
    Column column;
    // `level` is null in a line that isn't one of a level.
    Cell (*cell)(const RowLine& row, const LevelLine* level);
};
using Readable = std::vector<ReadableColumn>;

const ReadableColumn kId{{"id", ""}, [](const RowLine& row, const LevelLine*) { return Cell(row.id); }};
const ReadableColumn kName{{"name", ""}, [](const RowLine& row, const LevelLine*) { return Cell(row.name); }};
const ReadableColumn kShare{{"share of time", "", Kind::Percent},
                            [](const RowLine& row, const LevelLine*) { return cellOf(row.share); }};
const ReadableColumn kOperations{{"operations", ""},
                                 [](const RowLine& row, const LevelLine*) { return cellOf(row.operations); }};
const ReadableColumn kRemark{{"remark", ""},
                             [](const RowLine& row, const LevelLine*) { return Cell(remarkOf(row, false)); }};
const ReadableColumn kLevelRemark{
    {"remark", ""}, [](const RowLine& row, const LevelLine*) { return Cell(remarkOf(row, true)); }};

const std::array<ReadableColumn, 5> kTotalColumns{{
    {{"intensity [OP/byte]", "", Kind::Number},
     [](const RowLine& row, const LevelLine*) { return cellOf(row.intensity); }},
    {{"performance [GOP/s]", "", Kind::Number},
     [](const RowLine& row, const LevelLine*) { return cellOf(row.performance); }},
    {{"limiting roof", ""},
     [](const RowLine& row, const LevelLine*) {
         if (row.limit) return Cell(row.limit->name);
         return Cell(row.underMemory ? "above " + row.underMemory->name : std::string("N/A"));
     }},
    {{"of that roof", "", Kind::Percent},
     [](const RowLine& row, const LevelLine*) {
         const auto& roof = row.limit ? row.limit : row.underMemory;
         return roof ? Cell(roof->fraction) : Cell();
     }},
    {{"speed-up", "", Kind::Number},
     [](const RowLine& row, const LevelLine*) { return cellOf(row.speedUp()); }},
}};

const std::array<ReadableColumn, 2> kNearestColumns{{
    {{"nearest level roof", ""},
     [](const RowLine& row, const LevelLine*) { return Cell(row.nearest ? row.nearest->name : "N/A"); }},
    {{"of that roof", "", Kind::Percent},
     [](const RowLine& row, const LevelLine*) { return row.nearest ? Cell(row.nearest->fraction) : Cell(); }},
}};

const std::array<ReadableColumn, 8> kLevelColumns{{
    {{"level", ""},
     [](const RowLine&, const LevelLine* level) { return Cell(level ? level->level : std::string("N/A")); }},
    {{"traffic [GB]", "", Kind::Number},
     [](const RowLine&, const LevelLine* level) { return level ? Cell(level->traffic) : Cell(); }},
    {{"intensity [OP/byte]", "", Kind::Number},
     [](const RowLine&, const LevelLine* level) { return level ? Cell(level->intensity) : Cell(); }},
    {{"performance [GOP/s]", "", Kind::Number},
     [](const RowLine& row, const LevelLine*) { return cellOf(row.performance); }},
    {{"level's roof", ""},
     [](const RowLine&, const LevelLine* level) {
         return Cell(level && level->roof ? level->roof->name : std::string("N/A"));
     }},
    {{"of that roof", "", Kind::Percent},
     [](const RowLine&, const LevelLine* level) {
         return level && level->roof ? Cell(level->roof->fraction) : Cell();
     }},
    {{"memory time", "", Kind::Percent},
     [](const RowLine&, const LevelLine* level) { return level ? cellOf(level->timeShare) : Cell(); }},
    {{"nearest above", ""},
     [](const RowLine& row, const LevelLine* level) {
         return Cell(level && level->isNearest && row.nearest ? row.nearest->name : std::string());
     }},
}};

Readable readableColumns(const RowTableRequest& request) {
    Readable columns{kId, kName, kShare};
    const auto append = [&](const auto& more) { columns.insert(columns.end(), more.begin(), more.end()); };
    if (anyLine(request, [](const RowLine& line) { return line.operations == "int"; }))
        columns.push_back(kOperations);
    request.levels ? append(kLevelColumns) : append(kTotalColumns);
    const auto hasNearest = [](const RowLine& line) { return line.nearest.has_value(); };
    if (!request.levels && anyLine(request, hasNearest)) append(kNearestColumns);
    if (anyLine(request, [&](const RowLine& line) { return !remarkOf(line, request.levels).empty(); }))
        columns.push_back(request.levels ? kLevelRemark : kRemark);
    return columns;
}

Table readableTable(const RowTableRequest& request) {
    const auto columns = readableColumns(request);
    Table table;
    for (const auto& each : columns) table.columns.push_back(each.column);
    const auto add = [&](const RowLine& row, const LevelLine* level) {
        auto& cells = table.rows.emplace_back();
        for (const auto& each : columns) cells.push_back(each.cell(row, level));
    };
    for (const auto& row : shown(request)) {
        if (request.levels)
            for (const auto& level : row.levels) add(row, &level);
        if (!request.levels || row.levels.empty()) add(row, nullptr);
    }
    return table;
}

// "9 rows: 4 below a roof, 1 above every memory roof, 4 neither: 3 no operations, 1 no time".
std::string countSentence(const std::vector<RowLine>& lines) {
    const auto count = [&](auto predicate) { return std::count_if(lines.begin(), lines.end(), predicate); };
    const auto below = count([](const RowLine& line) { return line.limit.has_value(); });
    const auto above = count([](const RowLine& line) { return line.underMemory.has_value(); });
    auto sentence =
        fmt::format("{} row{}: {} below a roof", lines.size(), lines.size() == 1 ? "" : "s", below);
    if (above > 0) sentence += fmt::format(", {} above every memory roof", above);
    std::map<std::string, int> causes;
    for (const auto& line : lines)
        if (!line.cause.empty()) ++causes[line.cause];
    if (causes.empty()) return sentence;
    std::vector<std::string> texts;
    for (const auto& [cause, number] : causes) texts.push_back(fmt::format("{} {}", number, cause));
    const auto others = static_cast<std::ptrdiff_t>(lines.size()) - below - above;
    return fmt::format("{}, {} neither: {}", sentence, others, fmt::join(texts, ", "));
}

struct Mark {
    bool (*occurs)(const RowLine&);
    const char* text;
    bool ofLevels = false;  // can be seen only where each level has a line
};

constexpr std::array<Mark, 4> kMarks{{
    {[](const RowLine& line) { return line.underMemory.has_value(); },
     "! above a memory roof: no memory roof stands above the row, and its percent is of the highest one"},
    {[](const RowLine& line) { return line.underCompute && line.underCompute->fraction > 1.0; },
     "! above a compute roof: the roof of the row's kind of code lies below its point, so it can't be the "
     "right one"},
    {[](const RowLine& line) {
         return std::any_of(line.levels.begin(), line.levels.end(),
                            [](const LevelLine& level) { return level.roof && level.roof->fraction > 1.0; });
     },
     "! above a level's roof: more traffic in this time than that level can carry", true},
    {[](const RowLine& line) { return line.share.value_or(0.0) > 1.0; },
     "! more than the program's own time"},
}};

void writeRow(Writer& writer, const RowLine& row, bool levels) {
    writeMembers(writer, row);
    if (!levels) return;
    json::writeObjects(writer, "levels", row.levels, [&](const LevelLine& level) {
        for (const auto& each : levelColumns()) writeMember(writer, each.key, each.cell(row, level));
    });
}

}  // namespace

std::string rowsText(const RowTableRequest& request) {
    auto text = toText(readableTable(request)) + '\n' + countSentence(request.lines) + '\n';
    if (const auto above = aboveSentence(rowsAbove(request.lines)); !above.empty())
        text += "at the memory levels: " + above + '\n';
    const auto number = shown(request).size();
    if (number < request.lines.size())
        text += fmt::format("the first {} of {} rows are shown\n", number, request.lines.size());
    for (const auto& mark : kMarks)
        if ((request.levels || !mark.ofLevels) && anyLine(request, mark.occurs))
            text.append(mark.text) += '\n';
    return text;
}

std::string rowsCsv(const RowTableRequest& request) {
    Table table;
    const auto addColumns = [&](const auto& columns) {
        for (const auto& each : columns) table.columns.push_back({"", each.key});
    };
    addColumns(rowColumns());
    request.levels ? addColumns(levelColumns()) : addColumns(verdictColumns());
    if (request.levels) table.columns.push_back({"", "cause"});
    for (const auto& row : shown(request)) {
        std::vector<Cell> head;
        for (const auto& each : rowColumns()) head.push_back(each.cell(row));
        if (!request.levels) {
            for (const auto& each : verdictColumns()) head.push_back(each.cell(row));
            table.rows.push_back(std::move(head));
            continue;
        }
        for (const auto& level : row.levels) {
            auto& cells = table.rows.emplace_back(head);
            for (const auto& each : levelColumns()) cells.push_back(each.cell(row, level));
            cells.emplace_back();
        }
        if (!row.levels.empty()) continue;
        head.resize(table.columns.size());
        head.back() = cellOf(row.cause.empty() ? row.levelCause : row.cause);
        table.rows.push_back(std::move(head));
    }
    return toCsv(table);
}

std::string rowsJson(const RowTableRequest& request) {
    return json::objectText([&](Writer& writer) {
        writer.Key("configuration"), writer.String(request.configuration.c_str());
        writer.Key("data"), writer.String(request.isTotal ? "total" : "self");
        writer.Key("thread_count");
        request.threads > 0 ? writer.Int(request.threads) : writer.Null();
        writer.Key("package_count"), writer.Int(request.packages);
        writer.Key("single_thread_roofs"), writer.Bool(request.single);
        writer.Key("row_count"), writer.Uint64(request.lines.size());
        json::writeObjects(writer, "rows", shown(request),
                           [&](const RowLine& row) { writeRow(writer, row, request.levels); });
    });
}

}  // namespace cli
