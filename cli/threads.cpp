// `roofline threads`: cores, packages and threads that the roofs can assume.
#include "cli/answer.h"
#include "cli/json.h"
#include "cli/session.h"
#include "cli/table.h"

#include <array>
#include <utility>

namespace cli {
namespace {

constexpr std::array<std::pair<const char*, const char*>, 3> kCounts{
    {{"physicalCoreCount", "physical cores"},
     {"processorPackageCount", "packages"},
     {"usedNumberOfThreads", "used threads"}}};

// A device offers a choice of its sub-devices in place of threads.
Table subDeviceTable(const json::Value& group) {
    Table table{{{"packages", "packages", Column::Kind::Number},
                 {"meaning", "meaning"},
                 {"", "default"},
                 {"explanation", "explanation"}},
                {}};
    const auto chosen = json::number(group, "defaultValue");
    for (const auto& option : json::items(group, "options")) {
        const auto value = json::number(option, "value");
        table.rows.push_back({value ? Cell(*value) : Cell(), json::text(option, "caption"),
                              std::string(value == chosen ? "default" : ""), json::text(option, "expl")});
    }
    return table;
}

Table threadTable(const std::string& text) {
    const auto info = json::parse(text, "the library's thread counts");
    if (const auto* const group = json::member(info, "group")) return subDeviceTable(*group);
    Table table;
    auto& row = table.rows.emplace_back();
    for (const auto& [key, title] : kCounts) {
        table.columns.push_back({title, key, Column::Kind::Number});
        const auto count = json::number(info, key);
        row.push_back(count ? Cell(*count) : Cell());
    }
    return table;
}

}  // namespace

int runThreads(const ThreadsRequest& request, Console& console) {
    const auto session = openSession(request.source);
    needSurvey(session, request.source.file, "choice of threads");
    const auto text = session.engine->getThreadsInfo();
    if (text.empty())
        throw std::runtime_error(request.source.file +
                                 ": neither the result nor its machine tells of a device");
    Answer answer;
    answer.json = [&] { return text; };
    answer.csv = [&] { return toCsv(threadTable(text)); };
    answer.table = [&] { return toText(threadTable(text)); };
    answer.jsonByDefault = true;
    deliver(answer, request.outputs, console);
    return kDone;
}

}  // namespace cli
