// Reading of chart documents.
#include "cli/page/charts.h"

#include "cli/page/texts.h"
#include "cli/unplaced_rows.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <set>
#include <stdexcept>
#include <string_view>
#include <utility>

namespace cli::page {
namespace {

using json::Value;

constexpr auto kFloat = "f";  // an option of the group of operations in every result
constexpr double kNothing = std::numeric_limits<double>::quiet_NaN();

// The values of a group, its default first.
std::vector<std::string> valuesOf(const Value& group) {
    std::vector<std::string> values;
    for (const auto& option : json::items(group, "options")) values.push_back(json::text(option, "value"));
    const auto defaults = json::items(group, "defRooflineTypes");
    if (defaults.Empty() || !defaults[0].IsString()) return values;
    const auto found = std::find(values.begin(), values.end(), defaults[0].GetString());
    if (found != values.end()) std::rotate(values.begin(), found, std::next(found));
    return values;
}

// Members of a record that say where it stands in the document; rows tell the rest of the texts.
bool isValue(const std::string& key, const Value& value) {
    return value.IsNumber() && key != "parent" && key != "vec";
}

// Coordinates are logarithms: five places are five digits of the value, and more only fill the file.
double valueOf(const std::string& key, const Value& value) {
    constexpr double kPlaces = 1e5;
    static const std::set<std::string> kCoordinates{"x", "y", "x1", "y1"};
    const double number = value.GetDouble();
    return kCoordinates.count(key) ? std::round(number * kPlaces) / kPlaces : number;
}

class RecordReader {
public:
    RecordReader(const Rows& rows, Chart& chart) : m_rows(rows), m_chart(chart) {
        m_chart.placed.assign(rows.size(), false);
        m_chart.parents.assign(rows.size(), kNothing);
    }

    void read(const Value& record) {
        const auto place = m_rows.places.find(json::text(record, "id"));
        m_places.push_back(place == m_rows.places.end() ? m_rows.size() : place->second);
        const auto row = m_places.back();
        if (row == m_rows.size()) return;
        m_chart.placed[row] = true;
        for (const auto& member : record.GetObject()) {
            const std::string key(member.name.GetString(), member.name.GetStringLength());
            if (isValue(key, member.value)) columnOf(key)[row] = valueOf(key, member.value);
        }
        const auto parent = json::number(record, "parent");
        if (!parent || *parent < 0.0 || *parent >= static_cast<double>(m_places.size())) return;
        m_chart.hasParents = true;
        m_chart.parents[row] = static_cast<double>(m_places[static_cast<std::size_t>(*parent)]);
    }

private:
    Column& columnOf(const std::string& key) {
        auto& column = m_chart.values[key];
        if (column.empty()) column.assign(m_rows.size(), kNothing);
        return column;
    }

    const Rows& m_rows;
    Chart& m_chart;
    std::vector<std::size_t> m_places;  // of the rows, by record
};

std::string withoutRecords(const Value& document) {
    Writer writer;
    writer.object([&] {
        for (const auto& member : document.GetObject()) {
            if (std::string_view(member.name.GetString()) == "loops") continue;
            member.name.Accept(writer);
            member.value.Accept(writer);
        }
    });
    return writer.take();
}

// The states in the library's answer, which is empty without a machine.
std::string selectedRoofsOf(const std::string& text) {
    const auto answer = json::parse(text.empty() ? "{}" : text, "the selected roofs");
    const auto* const states = json::member(answer, "roofsState");
    if (!states) return "{}";
    Writer writer;
    states->Accept(writer);
    return writer.take();
}

std::vector<std::string> causesOf(const Session& session, const Rows& rows, const Chart& chart,
                                  const std::string& configuration) {
    std::set<std::string> drawn;
    for (std::size_t row = 0; row < rows.size(); ++row)
        if (chart.placed[row]) drawn.insert(rows.lines[row].id);
    if (drawn.size() == rows.size()) return {};
    const UnplacedCauses causes(session, std::move(drawn), configuration);
    std::vector<std::string> names;
    for (const auto& name : causes.names()) names.push_back(translateWords("cause", name));
    std::vector<std::string> found(rows.size(), translateWords("cause", causes.ofUnknownRow()));
    for (std::size_t row = 0; row < rows.size(); ++row)
        if (chart.placed[row]) found[row].clear();
    forEachChartRow(causes.dataset(), [&](const Rows::Node& row) {
        const auto place = rows.places.find(std::to_string(row->getId()));
        if (place != rows.places.end() && !chart.placed[place->second])
            found[place->second] = names[causes.of(row)];
    });
    return found;
}

}  // namespace

std::vector<std::string> chartConfigurations(const Session& session) {
    const auto options = json::parse(session.engine->getRooflineOptions(), "the library's options");
    std::vector<std::string> all{""};
    for (const auto& group : json::items(options, "groups")) {
        std::vector<std::string> longer;
        for (const auto& value : valuesOf(group))
            for (const auto& head : all) longer.push_back(head.empty() ? value : head + '-' + value);
        if (!longer.empty()) all = std::move(longer);
    }
    std::vector<std::string> complete;
    for (const auto& each : all)
        if (auto whole = completeConfiguration(session, each);
            std::find(complete.begin(), complete.end(), whole) == complete.end())
            complete.push_back(std::move(whole));
    return complete;
}

std::vector<std::string> operationOptions(const Session& session) {
    const auto options = json::parse(session.engine->getRooflineOptions(), "the library's options");
    for (const auto& group : json::items(options, "groups"))
        if (auto values = valuesOf(group); std::find(values.begin(), values.end(), kFloat) != values.end())
            return values;
    return {};
}

Chart readChart(const Session& session, const Rows& rows, const std::string& configuration) {
    auto& engine = *session.engine;
    const auto text = engine.getRooflineData(session.rows, session.tree, configuration);
    if (text.empty())
        throw std::runtime_error(
            fmt::format("the library has no chart for configuration '{}'", configuration));
    const auto document = json::parse(text, "the chart document");
    Chart chart;
    RecordReader reader(rows, chart);
    for (const auto& record : json::items(document, "loops")) reader.read(record);
    chart.document = withoutRecords(document);
    chart.placedKey = chart.values.count("x1") ? "x1" : "x";
    chart.causes = causesOf(session, rows, chart, configuration);
    chart.selectedRoofs = selectedRoofsOf(engine.getSelectedRoofs(configuration, perspectiveOf({})));
    return chart;
}

void Charts::add(const std::string& configuration, Chart chart) {
    const RowMask everyRow(chart.placed.size(), true);
    Shared shared{chart.document, chart.selectedRoofs, chart.placedKey, {}, {}, {}};
    for (auto& [key, column] : chart.values)
        shared.loops[key] =
            m_columns.add(std::move(column), key == chart.placedKey ? everyRow : chart.placed);
    if (chart.hasParents) shared.parents = m_columns.add(std::move(chart.parents), chart.placed);
    for (const auto& cause : chart.causes)
        shared.causes.push_back(cause.empty() ? std::nullopt : std::optional(m_dictionary.add(cause)));
    m_charts[configuration] = std::move(shared);
}

void Charts::write(Writer& writer) const {
    const auto index = [&](const std::optional<std::size_t>& value) {
        value ? void(writer.Uint64(*value)) : void(writer.Null());
    };
    writer.key("columns");
    m_columns.write(writer);
    writer.key("charts");
    writer.object([&] {
        for (const auto& each : m_charts) {
            const auto& shared = each.second;
            writer.key(each.first);
            writer.object([&] {
                writer.key("document");
                writer.raw(shared.document);
                writer.key("loops");
                writer.object([&] {
                    for (const auto& [key, column] : shared.loops) {
                        writer.key(key);
                        writer.Uint64(column);
                    }
                });
                writer.member("placed", shared.placedKey);
                writer.key("parents");
                index(shared.parents);
                writer.key("causes");
                shared.causes.empty() ? void(writer.Null()) : writer.array(shared.causes, index);
                writer.key("selectedRoofs");
                writer.raw(shared.selectedRoofs);
            });
        }
    });
}

}  // namespace cli::page
