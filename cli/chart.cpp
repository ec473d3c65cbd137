// `roofline chart`: the chart as document, table, CSV and picture.
#include "cli/answer.h"
#include "cli/chart_document.h"
#include "cli/chart_table.h"
#include "cli/picture/picture.h"
#include "cli/rows_above.h"
#include "cli/session.h"
#include "cli/text.h"
#include "cli/unplaced_rows.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>

namespace cli {
namespace {

struct Chart {
    Session session;
    std::string configuration;  // as asked for
    std::string complete;       // every group written out
    std::string json;
    std::string roofs;
    std::string selectedRoofs;
    ChartDocument document;
    RowCount count;
    std::string above;  // the sentence on rows above their roofs
};

Chart makeChart(const ChartRequest& request) {
    Chart chart;
    chart.session = openSession(request.source);
    auto& engine = *chart.session.engine;
    chart.configuration = chooseConfiguration(chart.session, request.configuration);
    chart.complete = completeConfiguration(chart.session, chart.configuration);
    chart.json = engine.getRooflineData(chart.session.rows, chart.session.tree, chart.configuration);
    if (chart.json.empty())
        throw std::runtime_error(
            fmt::format("the library has no chart for configuration '{}'", chart.configuration));
    chart.roofs = engine.getRoofs(chart.configuration, threadingOf(chart.session, request.roofs),
                                  perspectiveOf(request.roofs));
    waitForTasks();
    chart.selectedRoofs = engine.getSelectedRoofs(chart.configuration, perspectiveOf(request.roofs));
    chart.document = parseChartDocument(chart.json);
    chart.count = countRows(chart.session, chart.document, chart.complete);
    chart.above = aboveSentence(rowsAbove(chart.session, chart.document, chart.roofs, chart.complete));
    return chart;
}

std::string draw(const Chart& chart) {
    PictureOptions options;
    options.title = chart.session.models.all->getProgramInfo().name;
    if (options.title.empty()) options.title = "Roofline";
    const auto machine = chart.session.result->machineName();
    options.subtitle = machine.empty() ? chart.complete : fmt::format("{}  |  {}", machine, chart.complete);
    options.selectedRoofs = chart.selectedRoofs;
    options.note = chart.above;
    return drawChart(chart.json, chart.roofs, chart.count.unplaced, options);
}

// Where a newcomer would be stuck, and what helps.
struct Hint {
    bool (*applies)(const Chart&);
    std::string_view text;
};

bool onlyOther(const Chart& chart, const char* asked, const char* other) {
    return !chart.document.hasData() && operationsOf(*chart.session.kind, chart.complete).option == asked &&
           !hasOperations(chart.session, asked) && hasOperations(chart.session, other);
}

bool hasStacks(const Chart& chart) { return (chart.complete + '-').find("-0-") != std::string::npos; }

bool lacksTraffic(const Chart& chart) {
    const auto& causes = chart.count.unplaced;
    const bool isMissing = std::any_of(causes.begin(), causes.end(),
                                       [](const UnplacedRows& each) { return each.cause == "no traffic"; });
    return !chart.document.hasData() && isMissing;
}

constexpr std::array<Hint, 7> kHints{{
    {[](const Chart& chart) { return onlyOther(chart, "f", "i"); },
     "no float operations here: try --config i"},
    {[](const Chart& chart) { return onlyOther(chart, "i", "f"); },
     "no integer operations here: try --config f"},
    {[](const Chart& chart) { return lacksTraffic(chart) && !hasStacks(chart); },
     "rows lack traffic at that memory level: `roofline options RESULT --table` lists the levels"},
    {[](const Chart& chart) { return lacksTraffic(chart) && chart.session.result->isProjected(); },
     "a projection has the levels that were measured: `roofline project --fill-levels` adds the others"},
    {[](const Chart& chart) { return lacksTraffic(chart) && hasStacks(chart); },
     "with call stacks every caller needs the total traffic of its level (fields such as TotalL1Load): "
     "try --config 1"},
    {[](const Chart& chart) { return chart.count.rows == 0; },
     "the result has no rows that a chart could draw"},
    {[](const Chart& chart) { return chart.session.result->machineName().empty(); },
     "this result knows no machine, so the chart has no roofs: give one with --machine FILE"},
}};

}  // namespace

int runChart(const ChartRequest& request, Console& console) {
    if (!request.with.empty()) return runProjectedChart(request, console);
    const auto chart = makeChart(request);
    Answer answer;
    answer.json = [&] { return chart.json; };
    answer.csv = [&] { return chartCsv(chart.document); };
    answer.svg = [&] { return draw(chart); };
    answer.table = [&] {
        return chartText(chart.document, chart.count) + (chart.above.empty() ? "" : chart.above + '\n');
    };
    const bool hasData = chart.document.hasData();
    hasData ? deliver(answer, request.outputs, console) : deliverFilesOnly(answer, request.outputs, console);
    if (!hasData)
        console.err << fmt::format("{}: {}\n", cleanText(chart.document.noDataTitle),
                                   cleanText(chart.document.noDataDescription));
    for (const auto& hint : kHints)
        if (hint.applies(chart)) console.err << "hint: " << hint.text << '\n';
    return hasData ? kDone : kNoAnswer;
}

}  // namespace cli
