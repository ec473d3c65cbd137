// `roofline options`: what can be chosen for a chart of a result.
#include "cli/answer.h"
#include "cli/json.h"
#include "cli/session.h"
#include "cli/table.h"

#include <algorithm>

namespace cli {
namespace {

Table optionTable(const std::string& text) {
    Table table{{{"group", "group"},
                 {"value", "value"},
                 {"caption", "caption"},
                 {"", "default"},
                 {"explanation", "explanation"}},
                {}};
    const auto options = json::parse(text, "the library's options");
    for (const auto& group : json::items(options, "groups")) {
        std::vector<std::string> defaults;
        for (const auto& each : json::items(group, "defRooflineTypes"))
            if (each.IsString()) defaults.emplace_back(each.GetString());
        // A group that names no default starts with its first value.
        const auto values = json::items(group, "options");
        if (defaults.empty() && values.Size() > 0) defaults.push_back(json::text(values[0], "value"));
        for (const auto& option : values) {
            const auto value = json::text(option, "value");
            const bool isDefault = std::find(defaults.begin(), defaults.end(), value) != defaults.end();
            table.rows.push_back({json::text(group, "caption"), value, json::text(option, "caption"),
                                  std::string(isDefault ? "default" : ""), json::text(option, "expl")});
        }
    }
    return table;
}

}  // namespace

int runOptions(const OptionsRequest& request, Console& console) {
    const auto session = openSession(request.source);
    const auto text = session.engine->getRooflineOptions();
    Answer answer;
    answer.json = [&] { return text; };
    answer.csv = [&] { return toCsv(optionTable(text)); };
    answer.table = [&] { return toText(optionTable(text)); };
    answer.jsonByDefault = true;
    deliver(answer, request.outputs, console);
    return text.empty() ? kNoAnswer : kDone;
}

}  // namespace cli
