// `roofline loop`: the library's details of the loops that a request names.
#include "cli/answer.h"
#include "cli/json.h"
#include "cli/session.h"
#include "cli/unplaced_rows.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <set>

namespace cli {
namespace {

std::string requestText(const LoopRequest& request, Console& console) {
    if (!request.ids.empty())
        return fmt::format(R"({{"arrayOf":"item","item":["{}"]}})", fmt::join(request.ids, R"(",")"));
    if (request.request != "-") return request.request;
    if (!console.in) return {};
    return {std::istreambuf_iterator<char>(*console.in), {}};
}

void checkRequest(const std::string& text) {
    try {
        if (json::parse(text, "--request").IsObject()) return;
    } catch (const std::runtime_error& error) {
        throw UsageError(error.what());
    }
    throw UsageError(R"(--request: expected a JSON object such as {"item":["3"]})");
}

// Tells which loops of --id have no answer: there is no such row, or it takes no part in a chart.
void tellMissing(const json::Value& answers, const LoopRequest& request, Console& console) {
    std::set<std::string> answered;
    for (const auto& answer : answers.GetArray()) answered.insert(json::text(answer, "id"));
    for (const auto id : request.ids)
        if (!answered.count(std::to_string(id)))
            console.err << fmt::format("{}: there is no loop {}\n", request.source.file, id);
}

}  // namespace

int runLoop(const LoopRequest& request, Console& console) {
    if (request.ids.empty() == request.request.empty())
        throw UsageError("loops are named by --id or by --request, one of the two");
    const auto text = requestText(request, console);
    checkRequest(text);
    const auto session = openSession(request.source);
    const auto configuration = chooseConfiguration(session, request.configuration);
    const auto details = session.engine->getLoopAdditionalInfo(text, nullptr, configuration);
    if (details.empty()) throw std::runtime_error("the library has no details for this request");
    Answer answer;
    answer.json = [&] { return details; };
    answer.jsonByDefault = true;
    deliver(answer, {}, console);
    const auto answers = json::parse(details, "the library's answer");
    if (!answers.IsArray() || answers.Empty())
        throw std::runtime_error("none of the loops asked for is in the chart");
    tellMissing(answers, request, console);
    return kDone;
}

}  // namespace cli
