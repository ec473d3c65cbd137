// Rows as columns.
#include "cli/page/rows.h"

#include "cli/cells.h"
#include "cli/page/texts.h"
#include "cli/unplaced_rows.h"

#include <algorithm>
#include <functional>
#include <numeric>

namespace cli::page {
namespace {

using namespace data_models2;

// What a reader of rows asks for beside their lines.
class RowCells {
public:
    explicit RowCells(const IDataset& dataset)
        : m_dataset(dataset),
          m_type(dataset.getColumn(FieldId::LoopType)),
          m_detail(dataset.getColumn(FieldId::TypeDetail)),
          m_calls(dataset.getColumn(FieldId::CallCount)),
          m_vectorised(dataset.getColumn(FieldId::Vectorized)) {}

    void read(Rows& rows, const Rows::Node& row) const {
        auto type = textIn(m_dataset, row, m_type);
        const auto detail = textIn(m_dataset, row, m_detail);
        if (!type.empty() && !detail.empty()) type += ' ';
        rows.types.push_back(type + detail);
        rows.calls.push_back(numberIn(m_dataset, row, m_calls));
        const auto vectorised = numberIn(m_dataset, row, m_vectorised);
        rows.vectorised.push_back(vectorised ? std::optional(*vectorised != 0.0) : std::nullopt);
    }

private:
    const IDataset& m_dataset;
    const sptr_t<ColumnNode> m_type, m_detail, m_calls, m_vectorised;
};

// Why a row has no verdict; empty when it has one.
std::string causeOf(const RowLine& line) {
    if (!line.limit && line.underMemory) return "above all memory roofs";
    return line.cause;
}

// A level that any row has, by what the rows call it.
struct LevelColumn {
    std::string level;
    std::string option;
    std::vector<const LevelLine*> lines;  // aligned with the rows; null where a row lacks the level
};

std::vector<LevelColumn> levelColumns(const Rows& rows, const Session& session) {
    std::vector<LevelColumn> columns;
    for (std::size_t row = 0; row < rows.size(); ++row)
        for (const auto& line : rows.lines[row].levels) {
            auto found = std::find_if(columns.begin(), columns.end(),
                                      [&](const LevelColumn& each) { return each.level == line.level; });
            if (found == columns.end())
                found = columns.insert(columns.end(), {line.level, {}, {rows.size(), nullptr}});
            found->lines[row] = &line;
        }
    for (const auto& [option, caption] : optionCaptions(session))
        for (auto& column : columns)
            if (column.level == caption || column.level == option) column.option = option;
    return columns;
}

}  // namespace

std::vector<std::size_t> Rows::longest(std::size_t most) const {
    std::vector<std::size_t> order(size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    const auto time = [this](std::size_t row) { return lines[row].seconds.value_or(-1.0); };
    std::stable_sort(order.begin(), order.end(),
                     [&](std::size_t a, std::size_t b) { return time(a) > time(b); });
    order.resize(std::min(most, order.size()));
    return order;
}

Rows readRowsOf(const Session& session) {
    Rows rows;
    const RowRooflines rooflines(session, kSelfData, {});
    rows.lines = readRows(session, rooflines);
    const auto& dataset = rooflines.dataset();
    if (!dataset) return rows;
    const RowCells cells(*dataset);
    forEachChartRow(dataset, [&](const Rows::Node& row) {
        rows.places.emplace(std::to_string(row->getId()), rows.nodes.size());
        rows.nodes.push_back(row);
        cells.read(rows, row);
    });
    return rows;
}

void writeRows(Writer& writer, const Rows& rows, Dictionary& dictionary) {
    const auto column = [&](const char* name, auto&& each) {
        writer.key(name);
        writer.array(rows.lines, each);
    };
    const auto roof = [&](const char* name, const char* fraction, std::optional<RoofOver> RowLine::*member) {
        column(name, [&](const RowLine& line) {
            dictionary.writeIndex(writer, line.*member ? (line.*member)->name : std::string());
        });
        column(fraction, [&](const RowLine& line) {
            writer.number(line.*member ? std::optional((line.*member)->fraction) : std::nullopt);
        });
    };
    const auto values = [&](const char* name, const auto& list, auto&& each) {
        writer.key(name);
        writer.array(list, each);
    };
    const auto number = [&](const std::optional<double>& value) { writer.number(value); };
    const auto text = [&](const std::string& value) { writer.text(value); };
    writer.object([&] {
        column("id", [&](const RowLine& line) { writer.text(line.id); });
        column("name", [&](const RowLine& line) { writer.text(line.name); });
        column("location", [&](const RowLine& line) { writer.text(line.location); });
        values("type", rows.types, text);
        column("time", [&](const RowLine& line) { writer.number(line.seconds); });
        column("share", [&](const RowLine& line) { writer.number(line.share); });
        values("calls", rows.calls, number);
        values("vectorised", rows.vectorised, [&](const std::optional<bool>& value) {
            value ? void(writer.Bool(*value)) : void(writer.Null());
        });
        column("operations", [&](const RowLine& line) { writer.text(line.operations); });
        column("intensity", [&](const RowLine& line) { writer.number(line.intensity); });
        column("performance", [&](const RowLine& line) { writer.number(line.performance); });
        roof("limit", "fraction", &RowLine::limit);
        column("limitKind", [&](const RowLine& line) { writer.text(line.limitKind); });
        roof("nearest", "nearestFraction", &RowLine::nearest);
        column("speedUp", [&](const RowLine& line) { writer.number(line.speedUp()); });
        column("cause", [&](const RowLine& line) {
            dictionary.writeIndex(writer, translateWords("cause", causeOf(line)));
        });
        column("doubt", [&](const RowLine& line) {
            dictionary.writeIndex(writer, translateWords("doubt", line.doubt));
        });
        column("withCallees", [&](const RowLine& line) { writer.Bool(line.doubt == kWithCallees); });
    });
}

void writeLevels(Writer& writer, const Rows& rows, const Session& session, Dictionary& dictionary) {
    using Line = const LevelLine*;
    const auto write = [&](const LevelColumn& level) {
        const auto column = [&](const char* name, auto&& each) {
            writer.key(name);
            writer.array(level.lines, [&](Line line) { line ? void(each(*line)) : void(writer.Null()); });
        };
        writer.object([&] {
            writer.member("level", level.level);
            writer.member("option", level.option);
            column("traffic", [&](const LevelLine& line) { writer.number(line.traffic); });
            column("intensity", [&](const LevelLine& line) { writer.number(line.intensity); });
            column("roof", [&](const LevelLine& line) {
                dictionary.writeIndex(writer, line.roof ? line.roof->name : std::string());
            });
            column("fraction", [&](const LevelLine& line) {
                writer.number(line.roof ? std::optional(line.roof->fraction) : std::nullopt);
            });
            column("timeShare", [&](const LevelLine& line) { writer.number(line.timeShare); });
            column("nearest", [&](const LevelLine& line) { writer.Bool(line.isNearest); });
        });
    };
    writer.array(levelColumns(rows, session), write);
}

}  // namespace cli::page
