// Tables and JSON of projections.
#include "cli/projection_tables.h"

#include "cli/row_columns.h"
#include "cli/table.h"
#include "cli/text.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <string_view>

namespace cli {
namespace {

using Kind = Column::Kind;
using json::Writer;

constexpr std::size_t kNameWidth = 48;

std::string remarkOf(const ComparedPair& pair) { return bothOf(pair.before.cause, pair.after.cause); }

Table readableTable(const Projection& projection) {
    const auto& pairs = projection.rows.pairs;
    Table table{{{"id", ""},
                 {"name", ""},
                 {"time: measured [s]", "", Kind::Number},
                 {"projected [s]", "", Kind::Number},
                 {"speed-up", "", Kind::Number},
                 {"GOP/s: measured", "", Kind::Number},
                 {"projected", "", Kind::Number},
                 {"OP/byte: measured", "", Kind::Number},
                 {"projected", "", Kind::Number},
                 {"bound", ""}},
                {}};
    const bool hasRemarks = std::any_of(pairs.begin(), pairs.end(),
                                        [](const ComparedPair& pair) { return !remarkOf(pair).empty(); });
    if (hasRemarks) table.columns.push_back({"remark", ""});
    for (const auto& pair : pairs) {
        const auto& [match, before, after] = pair;
        auto& cells = table.rows.emplace_back(
            std::vector<Cell>{before.id, shorten(cleanText(nameOf(pair)), kNameWidth), cellOf(before.seconds),
                              cellOf(after.seconds), cellOf(pair.speedUp()), cellOf(before.performance),
                              cellOf(after.performance), cellOf(before.intensity), cellOf(after.intensity),
                              cleanText(boundText(projection.boundOf(after)))});
        if (hasRemarks) cells.emplace_back(remarkOf(pair));
    }
    return table;
}

// "bound by HBM bandwidth 52, compute 4", the most frequent first.
std::string boundsSentence(const Projection& projection) {
    std::vector<std::string> texts;
    for (const auto& [bound, count] : projection.boundCounts())
        texts.push_back(fmt::format("{} {}", cleanText(boundText(bound)), count));
    return fmt::format("bound by {}", fmt::join(texts, ", "));
}

double timeOf(const std::vector<RowLine>& rows) {
    double sum = 0.0;
    for (const auto& row : rows) sum += std::max(0.0, row.seconds.value_or(0.0));
    return sum;
}

std::string countSentence(const Projection& projection) {
    const auto& [pairs, measuredOnly, targetOnly, noise] = projection.rows;
    auto text = fmt::format("{} measured rows, {} projected: {} in both", pairs.size() + measuredOnly.size(),
                            pairs.size() + targetOnly.size(), pairs.size());
    if (!measuredOnly.empty())
        text +=
            fmt::format("; measured only: {}, {} s", measuredOnly.size(), shortNumber(timeOf(measuredOnly)));
    if (!targetOnly.empty())
        text += fmt::format("; projected only: {}, {} s", targetOnly.size(), shortNumber(timeOf(targetOnly)));
    return text;
}

// What holds for one side; the same in CSV and JSON.
constexpr std::array<RowColumn, 4> kSideColumns{{
    {"elapsed_time_s", [](const RowLine& row) { return cellOf(row.seconds); }},
    {"intensity_op_per_byte", [](const RowLine& row) { return cellOf(row.intensity); }},
    {"performance_gop_per_s", [](const RowLine& row) { return cellOf(row.performance); }},
    {"cause", [](const RowLine& row) { return cellOf(row.cause); }},
}};
// What names a row.
constexpr std::array<RowColumn, 3> kNameColumns{{
    {"id", [](const RowLine& row) { return Cell(row.id); }},
    {"name", [](const RowLine& row) { return Cell(row.name); }},
    {"location", [](const RowLine& row) { return cellOf(row.location); }},
}};

template <class Columns>
void writeColumns(Writer& writer, const Columns& columns, const RowLine& row) {
    for (const auto& each : columns) writeMember(writer, each.key, each.cell(row));
}

void writeRest(Writer& writer, const char* key, const std::vector<RowLine>& rows) {
    json::writeObjects(writer, key, rows, [&](const RowLine& row) {
        writeColumns(writer, kNameColumns, row);
        writeColumns(writer, kSideColumns, row);
    });
}

void writePair(Writer& writer, const ComparedPair& pair, const std::string& bound) {
    writeColumns(writer, kNameColumns, pair.before);
    writeMember(writer, "projected_name", cellOf(pair.after.name));
    writeMember(writer, "speedup_factor", cellOf(pair.speedUp()));
    writeMember(writer, "bounded_by", cellOf(bound));
    json::writeObject(writer, "measured", [&] { writeColumns(writer, kSideColumns, pair.before); });
    json::writeObject(writer, "projected", [&] { writeColumns(writer, kSideColumns, pair.after); });
}

}  // namespace

std::string timesSentence(const Projection& projection) {
    const auto sum = projection.rows.pairTimes();
    const auto factor = sum.speedUp();
    const auto rows = projection.rows.timedPairs();
    return fmt::format("{} row{} with {} s measured, {} s projected{}", rows, rows == 1 ? "" : "s",
                       shortNumber(sum.before), shortNumber(sum.after),
                       factor ? fmt::format(", {} times as fast", shortNumber(*factor)) : std::string());
}

std::string projectionText(const ProjectionTableRequest& request) {
    const auto& projection = request.projection;
    const auto& device = request.targetDevice.empty() ? request.targetMachine : request.targetDevice;
    return fmt::format("{}{}{}; {}\n\n{}\n{}\n{}\n", cleanText(request.measuredProgram),
                       device.empty() ? "" : " on ", cleanText(device), timesSentence(projection),
                       toText(readableTable(projection)), boundsSentence(projection),
                       countSentence(projection));
}

std::string projectionCsv(const ProjectionTableRequest& request) {
    const auto& projection = request.projection;
    Table table{{{"", "side"}}, {}};
    for (const auto& each : kNameColumns) table.columns.push_back({"", each.key});
    table.columns.insert(table.columns.end(), {{"", "speedup_factor"}, {"", "bounded_by"}});
    for (const std::string_view side : {"measured_", "projected_"})
        for (const auto& each : kSideColumns)
            table.columns.push_back({"", fmt::format("{}{}", side, each.key)});
    const auto add = [&](const char* side, Cell speedUp, const RowLine* measured, const RowLine* projected) {
        auto& cells = table.rows.emplace_back(std::vector<Cell>{std::string(side)});
        const auto& any = measured ? *measured : *projected;
        for (const auto& each : kNameColumns) cells.push_back(each.cell(any));
        cells.push_back(std::move(speedUp));
        cells.push_back(projected ? cellOf(projection.boundOf(*projected)) : Cell());
        for (const auto* const row : {measured, projected})
            for (const auto& each : kSideColumns) cells.push_back(row ? each.cell(*row) : Cell());
    };
    for (const auto& pair : projection.rows.pairs)
        add("both", cellOf(pair.speedUp()), &pair.before, &pair.after);
    for (const auto& row : projection.rows.beforeOnly) add("measured", {}, &row, nullptr);
    for (const auto& row : projection.rows.afterOnly) add("projected", {}, nullptr, &row);
    return toCsv(table);
}

std::string projectionJson(const ProjectionTableRequest& request) {
    const auto& projection = request.projection;
    return json::objectText([&](Writer& writer) {
        writeCells(writer, "measured",
                   {{"file", cellOf(request.measuredFile)},
                    {"program", cellOf(request.measuredProgram)},
                    {"machine", cellOf(request.measuredMachine)}});
        writeCells(writer, "target",
                   {{"file", cellOf(request.targetFile)},
                    {"device", cellOf(request.targetDevice)},
                    {"machine", cellOf(request.targetMachine)}});
        writeMember(writer, "operations", cellOf(request.operations));
        json::writeObjects(writer, "rows", projection.rows.pairs, [&](const ComparedPair& pair) {
            writePair(writer, pair, projection.boundOf(pair.after));
        });
        writeRest(writer, "measured_only", projection.rows.beforeOnly);
        writeRest(writer, "projected_only", projection.rows.afterOnly);
        const auto sum = projection.rows.pairTimes();
        writeCells(writer, "totals",
                   {{"timed_rows", static_cast<double>(projection.rows.timedPairs())},
                    {"measured_time_s", sum.before},
                    {"projected_time_s", sum.after},
                    {"speedup_factor", cellOf(sum.speedUp())}});
    });
}

}  // namespace cli
