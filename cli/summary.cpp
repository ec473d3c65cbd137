// `roofline summary`: the program's rates, bandwidths and intensities against the roofs that dominate.
#include "cli/answer.h"
#include "cli/json.h"
#include "cli/session.h"
#include "cli/table.h"
#include "cli/text.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <optional>

namespace cli {
namespace {

using Kind = Column::Kind;
using json::Value;

std::optional<double> childValue(const Value& metric, std::string_view key) {
    for (const auto& child : json::items(metric, "children"))
        if (json::text(child, "key") == key) return json::number(child, "value");
    return {};
}

Cell cellOf(std::optional<double> value) { return value ? Cell(*value) : Cell(); }

// What isn't above 0 wasn't measured.
std::optional<double> measured(std::optional<double> value) {
    return value && *value > 0.0 ? value : std::nullopt;
}

std::string barOf(std::optional<double> fraction) {
    constexpr int kWidth = 20;
    const auto filled = fraction && std::isfinite(*fraction)
                            ? static_cast<int>(std::lround(std::clamp(*fraction, 0.0, 1.0) * kWidth))
                            : 0;
    return std::string(static_cast<std::size_t>(filled), '#') +
           std::string(static_cast<std::size_t>(kWidth - filled), '.');
}

std::vector<Column> summaryColumns() {
    return {{"metric", "metric"},
            {"reached", "reached", Kind::Number},
            {"unit", "unit"},
            {"of roof", "fraction_of_roof", Kind::Percent},
            {"", "bar"},
            {"roof", "roof"},
            {"height", "roof_value", Kind::Number},
            {"amount", "amount", Kind::Number},
            {"of", "amount_unit"},
            {"float AI", "float_intensity", Kind::Number},
            {"int AI", "int_intensity", Kind::Number}};
}

// The two lists of the summary run side by side: a roof, and what is reached below it.
std::vector<Cell> summaryCells(const Value& metric, const Value& roof) {
    const auto height = json::number(roof, "value");
    const auto floatCount = childValue(metric, "opFloat");
    const auto count = floatCount ? floatCount : childValue(metric, "opInt");
    const auto reached = measured(json::number(metric, "value"));
    std::optional<double> fraction;
    if (reached && height && *height > 0.0) fraction = *reached / *height;
    return {json::text(metric, "caption"),
            cellOf(reached),
            json::text(metric, "measure"),
            cellOf(fraction),
            barOf(fraction),
            json::text(roof, "caption"),
            cellOf(height),
            cellOf(count ? count : measured(childValue(metric, "traffic"))),
            std::string(count ? "GOP" : "GB"),
            cellOf(measured(childValue(metric, "aiFloat"))),
            cellOf(measured(childValue(metric, "aiInt")))};
}

Table summaryTable(const Value& summary) {
    Table table{summaryColumns(), {}};
    const auto metrics = json::items(summary, "metrics"), roofs = json::items(summary, "roofs");
    auto roof = roofs.begin();
    for (const auto& metric : metrics)
        if (roof != roofs.end()) table.rows.push_back(summaryCells(metric, *roof++));
    return table;
}

Table withoutBars(Table table) {
    const auto bar = std::find_if(table.columns.begin(), table.columns.end(),
                                  [](const Column& column) { return column.key == "bar"; }) -
                     table.columns.begin();
    for (auto& row : table.rows) row.erase(row.begin() + bar);
    table.columns.erase(table.columns.begin() + bar);
    return table;
}

std::string heading(const Session& session, const Value& summary) {
    std::string dominating;
    for (const auto& metric : json::items(summary, "metrics"))
        if (json::flag(metric, "isDominatingOps")) dominating = json::text(metric, "caption");
    const auto program = session.models.all->getProgramInfo();
    const auto machine = session.result->machineName();
    auto line = fmt::format("{}: {} s", program.name.empty() ? "program" : cleanText(program.name),
                            shortNumber(program.elapsedTime));
    if (!machine.empty()) line += " on " + cleanText(machine);
    if (!dominating.empty()) line += "; dominated by " + cleanText(dominating);
    return line + "\n\n";
}

const char* causeOf(const Session& session) {
    if (session.result->machineName().empty())
        return "this result knows no machine: give one with --machine FILE";
    if (!(session.models.all->getProgramInfo().elapsedTime > 0.0)) return "the program has no elapsed time";
    return "the library found no roofs for the program's threads";
}

}  // namespace

int runSummary(const SummaryRequest& request, Console& console) {
    const auto session = openSession(request.source);
    needSurvey(session, request.source.file, "summary");
    const auto text = loadSummary(session);
    if (!text || text->empty()) {
        console.err << "no summary: "
                    << (text ? causeOf(session) : "the search for what dominates the program failed") << '\n';
        return kNoAnswer;
    }
    const auto summary = json::parse(*text, "the library's summary");
    Answer answer;
    answer.json = [&] { return *text; };
    answer.csv = [&] { return toCsv(withoutBars(summaryTable(summary))); };
    answer.table = [&] { return heading(session, summary) + toText(summaryTable(summary)); };
    deliver(answer, request.outputs, console);
    return kDone;
}

}  // namespace cli
