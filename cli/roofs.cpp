// `roofline roofs`: the machine's roofs for a thread set-up, or for each that a chart can offer.
#include "cli/answer.h"
#include "cli/json.h"
#include "cli/session.h"
#include "cli/table.h"

namespace cli {
namespace {

using Kind = Column::Kind;

std::vector<Column> roofColumns() {
    return {{"roof", "roof"},
            {"kind", "kind"},
            {"value", "value", Kind::Number},
            {"measure", "measure"},
            {"id", "id", Kind::Number}};
}

std::vector<Cell> roofCells(const json::Value& roof) {
    constexpr double kGiga = 1e9;
    const auto value = json::number(roof, "val"), id = json::number(roof, "id");
    return {json::text(roof, "name"), std::string(json::flag(roof, "isMem") ? "memory" : "compute"),
            value ? Cell(*value / kGiga) : Cell(), json::text(roof, "measure"), id ? Cell(*id) : Cell()};
}

Table roofTable(const std::string& text) {
    const auto roofs = json::parse(text, "the library's roofs");
    Table table{roofColumns(), {}};
    for (const auto& roof : json::items(roofs)) table.rows.push_back(roofCells(roof));
    return table;
}

Table allRoofsTable(const std::string& text) {
    const auto sets = json::parse(text, "the library's roofs");
    Table table{{{"threads", "threads", Kind::Number},
                 {"packages", "packages", Kind::Number},
                 {"strategy", "strategy"}},
                {}};
    for (auto& column : roofColumns()) table.columns.push_back(std::move(column));
    for (const auto& set : json::items(sets))
        for (const auto& roof : json::items(set, "roofs")) {
            std::vector<Cell> row{json::number(set, "threadCount").value_or(0),
                                  json::number(set, "packageCount").value_or(0),
                                  json::text(set, "strategyId")};
            for (auto& cell : roofCells(roof)) row.push_back(std::move(cell));
            table.rows.push_back(std::move(row));
        }
    return table;
}

}  // namespace

int runRoofs(const RoofsRequest& request, Console& console) {
    const auto session = openSession(request.source);
    const auto configuration = chooseConfiguration(session, request.configuration);
    const auto text = request.all
                          ? session.engine->getAllRoofs(configuration)
                          : session.engine->getRoofs(configuration, threadingOf(session, request.roofs),
                                                     perspectiveOf(request.roofs));
    const auto table = [&] { return request.all ? allRoofsTable(text) : roofTable(text); };
    Answer answer;
    answer.json = [&] { return text; };
    answer.csv = [&] { return toCsv(table()); };
    answer.table = [&] { return toText(table()); };
    answer.jsonByDefault = true;
    deliver(answer, request.outputs, console);
    if (session.result->machineName().empty())
        console.err << "this result knows no machine, so there are no roofs: give one with --machine FILE\n";
    return text.empty() ? kNoAnswer : kDone;
}

}  // namespace cli
