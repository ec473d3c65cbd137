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

Table threadTable(const std::string& text) {
    const auto info = json::parse(text, "the library's thread counts");
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
    const auto text = session.engine->getThreadsInfo();
    Answer answer;
    answer.json = [&] { return text; };
    answer.csv = [&] { return toCsv(threadTable(text)); };
    answer.table = [&] { return toText(threadTable(text)); };
    answer.jsonByDefault = true;
    deliver(answer, request.outputs, console);
    return text.empty() ? kNoAnswer : kDone;
}

}  // namespace cli
