// `roofline roofs`: the machine's roofs for a thread set-up or for each that a chart can offer, the choice of
// a chart among them, and own values for them.
#include "cli/answer.h"
#include "cli/json.h"
#include "cli/own_roofs.h"
#include "cli/session.h"
#include "cli/table.h"
#include "cli/text.h"

#include <map>
#include <string>

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

// The library names roofs by their short form here.
Table selectedRoofsTable(const Session& session, const std::string& text) {
    std::map<std::string, std::string> names;
    for (auto roof = session.models.all->getRoofManager(session.kind->rows)->getRoofs({}); !roof.isEnd();
         ++roof)
        names.emplace(roofKey((*roof).name), (*roof).name);
    const auto nameOf = [&](const std::string& shortName) {
        const auto found = names.find(shortName);
        return found == names.end() ? shortName : found->second;
    };
    const auto yesOrNo = [](bool flag) { return std::string(flag ? "yes" : "no"); };

    Table table{{{"roof", "roof"}, {"selected", "selected"}, {"hidden", "hidden"}}, {}};
    const auto answer = json::parse(text, "the library's selected roofs");
    if (const auto* const roofs = json::member(answer, "roofsState"); roofs && roofs->IsObject())
        for (const auto& [name, state] : roofs->GetObject())
            table.rows.push_back({nameOf(name.GetString()), yesOrNo(json::flag(state, "selected")),
                                  yesOrNo(json::flag(state, "hidden"))});
    return table;
}

std::string askLibrary(const Session& session, const RoofsRequest& request,
                       const std::string& configuration) {
    const auto& engine = *session.engine;
    const auto perspective = perspectiveOf(request.roofs);
    if (request.all) return engine.getAllRoofs(configuration);
    if (!request.selected)
        return engine.getRoofs(configuration, threadingOf(session, request.roofs), perspective);
    waitForTasks();  // what dominates the program is selected too
    return engine.getSelectedRoofs(configuration, perspective);
}

}  // namespace

int runRoofs(const RoofsRequest& request, Console& console) {
    const auto session = openSession(request.source);
    if (request.all) needSurvey(session, request.source.file, "list of thread set-ups");
    const auto configuration = chooseConfiguration(session, request.configuration);
    if (!request.set.empty()) setOwnRoofs(session, request, console);
    if (request.clear) clearOwnRoofs(session, request, console);
    const auto text = askLibrary(session, request, configuration);
    if (request.all && json::items(json::parse(text, "the library's roofs")).Empty())
        throw std::runtime_error(request.source.file + ": there are no thread set-ups to list: " +
                                 (session.result->machineName().empty()
                                      ? "the result knows no machine; give one with --machine FILE"
                                      : "its machine tells of no cores"));
    const auto table = [&] {
        return request.selected ? selectedRoofsTable(session, text)
               : request.all    ? allRoofsTable(text)
                                : roofTable(text);
    };
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
