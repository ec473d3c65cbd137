// `roofline rows`: which roof limits each row, and how far below it the row stands.
#include "cli/answer.h"
#include "cli/row_rooflines.h"
#include "cli/row_tables.h"

#include <fmt/format.h>

#include <array>
#include <string_view>
#include <utility>

namespace cli {
namespace {

constexpr std::array<std::pair<std::string_view, RowOrder>, 3> kOrders{
    {{"time", RowOrder::Time}, {"distance", RowOrder::Distance}, {"performance", RowOrder::Performance}}};

RowOrder orderOf(const std::string& name) {
    for (const auto& [each, order] : kOrders)
        if (each == name) return order;
    throw UsageError("--sort: there is no order '" + name + "'");
}

// Of a configuration only the choice of self or total data matters to a row.
bool choosesMore(const std::string& configuration) {
    return !configuration.empty() && configuration != "0" && configuration != "1";
}

void explainChoices(const Session& session, const RowRooflines& rooflines, const RowsRequest& request,
                    const RowTableRequest& table, Console& console) {
    warnOfOddThreads(session, request.roofs, console);
    if (choosesMore(request.configuration.value_or("")))
        console.err << fmt::format(
            "note: {}: each is taken by the operations that it has most of, and with all of its traffic\n",
            session.kind->rowConfig);
    if (table.levels && rooflines.levelCount() < 2)
        console.err << "note: this result was measured at one memory level only\n";
    if (session.result->machineName().empty())
        console.err
            << "hint: this result knows no machine, so there are no roofs: give one with --machine FILE\n";
}

}  // namespace

int runRows(const RowsRequest& request, Console& console) {
    const auto order = orderOf(request.sort);
    const auto session = openSession(request.source);
    const auto configuration =
        completeConfiguration(session, chooseConfiguration(session, request.configuration));
    const RowRooflines rooflines(session, configuration, request.roofs);

    RowTableRequest table;
    table.lines = readRows(session, rooflines);
    sortLines(table.lines, order);
    table.top = static_cast<std::size_t>(request.top);
    table.levels = request.level == "all";
    table.configuration = configuration;
    table.isTotal = rooflines.isTotal();
    table.threads = request.roofs.threads;
    table.packages = rooflines.threading().packageCount;
    table.single = request.roofs.single;

    Answer answer;
    answer.json = [&] { return rowsJson(table); };
    answer.csv = [&] { return rowsCsv(table); };
    answer.table = [&] { return rowsText(table); };
    deliver(answer, request.outputs, console);
    explainChoices(session, rooflines, request, table, console);
    return table.lines.empty() ? kNoAnswer : kDone;
}

}  // namespace cli
