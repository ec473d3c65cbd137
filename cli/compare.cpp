// `roofline compare`: which rows of two results are the same, and what became of them.
#include "cli/answer.h"
#include "cli/comparison_tables.h"
#include "cli/picture/comparison_picture.h"
#include "cli/progress.h"
#include "cli/text.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <optional>
#include <utility>

namespace cli {
namespace {

using data_models2::ComparisonData;

struct Sessions {
    Session base, other;
};

constexpr std::array<std::pair<std::string_view, PairOrder>, 3> kOrders{
    {{"delta", PairOrder::Delta}, {"score", PairOrder::Score}, {"time", PairOrder::Time}}};

PairOrder orderOf(const std::string& name) {
    for (const auto& [each, order] : kOrders)
        if (each == name) return order;
    throw UsageError("--sort: there is no order '" + name + "'");
}

// The percent of "slower=PERCENT"; nothing for an empty text.
std::optional<double> slowerLimit(const std::string& gate) {
    constexpr std::string_view kHead = "slower=";
    if (gate.empty()) return {};
    const auto number = gate.rfind(kHead, 0) == 0 ? gate.substr(kHead.size()) : std::string();
    char* end = nullptr;
    const double percent = std::strtod(number.c_str(), &end);
    if (number.empty() || *end != '\0' || !std::isfinite(percent) || percent < 0.0)
        throw UsageError(
            fmt::format("--fail-if: expected slower=PERCENT, such as slower=10, found '{}'", gate));
    return percent;
}

// A form of the answer that isn't written when the user has cancelled while it was made.
Answer::Form unlessCancelled(const ProgressBar& bar, Answer::Form form) {
    return [&bar, form = std::move(form)] {
        throwIfCancelled(bar);
        auto text = form();
        throwIfCancelled(bar);
        return text;
    };
}

ComparisonData findPairs(const Sessions& sessions, const CompareRequest& request, ProgressBar& bar) {
    BarProgress progress(bar);
    auto data = matchRows(sessions.base, sessions.other, request.threshold, request.roofline, progress);
    bar.clear();
    throwIfCancelled(bar);
    return data;
}

std::string noPairs(const CompareRequest& request) {
    return fmt::format("no row of {} matches one of {} by {} % or more{}; see --threshold", request.base.file,
                       request.newFile, shortNumber(request.threshold),
                       request.roofline ? ", where only rows with operations take part" : "");
}

std::string detailsOf(const Sessions& sessions, const ComparisonData& data, const CompareRequest& request) {
    const auto pair = std::find_if(data.matches.begin(), data.matches.end(),
                                   [&](const auto& each) { return each.first->getId() == *request.details; });
    if (data.matches.empty()) throw std::runtime_error(noPairs(request));
    if (pair == data.matches.end())
        throw std::runtime_error(fmt::format("{}: there is no row {} that has a partner in {}",
                                             request.base.file, *request.details, request.newFile));
    const auto objectOf = [](const Session& session, const auto& row) {
        return session.models.all->getDataset(session.kind->compared)->getObjectId(row);
    };
    const auto ids = fmt::format(R"({{"first":"{}","second":"{}"}})", objectOf(sessions.base, pair->first),
                                 objectOf(sessions.other, pair->second));
    const auto configuration = chooseConfiguration(sessions.base, request.configuration);
    auto text = sessions.base.engine->getComparisonData(data, ids, configuration);
    if (text.empty()) throw std::runtime_error("the library has no details for this pair");
    return text;
}

ComparedResult describe(const Session& session, const std::string& file) {
    return {file, programOf(session, file), session.result->machineName()};
}

// The options whose roofs hold for what the rows have: float, integer or all operations.
std::vector<std::string_view> operationsOf(const Comparison& comparison, const ResultTraits& kind) {
    bool hasFloat = false, hasInt = false;
    const auto look = [&](const RowLine& row) {
        hasFloat = hasFloat || row.operations == "float";
        hasInt = hasInt || row.operations == "int";
    };
    for (const auto& pair : comparison.pairs) look(pair.before), look(pair.after);
    for (const auto* rows : {&comparison.beforeOnly, &comparison.afterOnly})
        std::for_each(rows->begin(), rows->end(), look);
    if (hasFloat && hasInt) return {kind.allOperations.begin(), kind.allOperations.end()};
    return {hasInt ? "i" : "f"};
}

std::vector<Roof> roofsOf(const Session& session, const std::vector<std::string_view>& operations) {
    const RoofChoice choice;
    const auto perspective = perspectiveOf(choice);
    std::vector<Roof> all;
    for (const auto each : operations) {
        const auto configuration = completeConfiguration(session, std::string(each));
        const auto roofs = session.engine->getRoofs(configuration, threadingOf(session, choice), perspective);
        const auto selected = session.engine->getSelectedRoofs(configuration, perspective);
        // The memory roofs are the same for each.
        for (auto& roof : chooseRoofs(parseRoofs(roofs), selected))
            if (std::none_of(all.begin(), all.end(),
                             [&](const Roof& known) { return known.name == roof.name; }))
                all.push_back(std::move(roof));
    }
    return all;
}

// One set where both have the same roofs; else the selected ones of each.
std::vector<RoofSet> roofSets(const Sessions& sessions, const std::vector<std::string_view>& operations) {
    waitForTasks();
    const auto set = [&](const char* side, const Session& session) {
        return RoofSet{fmt::format("{}: {}", side, session.result->machineName()),
                       roofsOf(session, operations)};
    };
    auto base = set("base", sessions.base), other = set("new", sessions.other);
    const auto areAlike = [](const Roof& a, const Roof& b) { return a.name == b.name && a.value == b.value; };
    if (other.roofs.empty() ||
        std::equal(base.roofs.begin(), base.roofs.end(), other.roofs.begin(), other.roofs.end(), areAlike))
        return {std::move(base)};
    if (base.roofs.empty()) return {std::move(other)};
    for (auto* each : {&base, &other}) {
        std::erase_if(each->roofs, [](const Roof& roof) { return !roof.isSelected; });
        for (auto& roof : each->roofs) roof.name += each == &base ? " (base)" : " (new)";
    }
    return {std::move(base), std::move(other)};
}

std::string draw(const Sessions& sessions, const ComparisonTableRequest& table) {
    const auto& comparison = table.comparison;
    PictureOptions options;
    options.title = fmt::format("{} -> {}", table.base.program, table.other.program);
    const auto sum = comparison.pairTimes().speedUp(), mean = comparison.meanSpeedUp();
    const auto text = [](const std::optional<double>& value) { return value ? shortNumber(*value) : "N/A"; };
    auto machines = table.base.machine;
    if (table.other.machine != machines) machines += " -> " + table.other.machine;
    options.subtitle = fmt::format("{}{}speed-up of the pairs: {} by their sums, {} on geometric mean",
                                   machines, machines.empty() ? "" : "  |  ", text(sum), text(mean));
    return drawComparison(comparison, roofSets(sessions, operationsOf(comparison, *sessions.base.kind)),
                          options);
}

// Whether a pair trips the gate; tells which.
ExitCode checkGate(const Comparison& comparison, double limit, Console& console) {
    constexpr std::size_t kMost = 10;
    if (comparison.timedPairs() == 0)
        throw std::runtime_error("--fail-if has nothing to judge: no pair has a time on both sides");
    if (const auto unknown = comparison.count(Change::Unknown))
        console.err << fmt::format("note: --fail-if can't judge {} of {} pairs: no time on one side\n",
                                   unknown, comparison.pairs.size());
    if (!comparison.beforeOnly.empty())
        console.err << fmt::format("note: {} rows of the base have no partner to be judged by\n",
                                   comparison.beforeOnly.size());
    auto pairs = comparison.pairs;
    std::erase_if(pairs, [limit](const ComparedPair& pair) {
        const auto times = pair.times();
        return !times || times->after <= times->before * (1.0 + limit / 100.0);
    });
    if (pairs.empty()) return kDone;
    sortPairs(pairs, PairOrder::Delta);
    console.err << fmt::format("{} of {} pairs got slower by more than {} %:\n", pairs.size(),
                               comparison.pairs.size(), shortNumber(limit));
    for (std::size_t i = 0; i < std::min(kMost, pairs.size()); ++i)
        console.err << fmt::format("  {} s -> {} s  {} ({} % alike)\n", shortNumber(*pairs[i].before.seconds),
                                   shortNumber(*pairs[i].after.seconds), cleanText(nameOf(pairs[i])),
                                   shortNumber(pairs[i].match));
    if (pairs.size() > kMost) console.err << fmt::format("  and {} more\n", pairs.size() - kMost);
    return kGate;
}

int printDetails(const Sessions& sessions, const ComparisonData& data, const CompareRequest& request,
                 Console& console) {
    const auto text = detailsOf(sessions, data, request);
    Answer answer;
    answer.json = [&] { return text; };
    answer.jsonByDefault = true;
    deliver(answer, request.outputs, console);
    return kDone;
}

}  // namespace

int runCompare(const CompareRequest& request, Console& console) {
    const auto order = orderOf(request.sort);
    const auto limit = slowerLimit(request.failIf);
    const auto& outputs = request.outputs;
    if (request.details && (outputs.table || !outputs.csv.empty() || !outputs.svg.empty()))
        throw UsageError("--details: there is a JSON answer only");
    auto [base, other] = openSessions(request.base, request.newFile);
    const Sessions sessions{std::move(base), std::move(other)};

    // Lives until all is written: an interrupt leaves no file half-written.
    ProgressBar bar(console, "comparing");
    const auto data = findPairs(sessions, request, bar);
    if (request.details) return printDetails(sessions, data, request, console);

    auto comparison = makeComparison(sessions.base, sessions.other, data, request.noise);
    sortPairs(comparison.pairs, order);
    const ComparisonTableRequest table{comparison, describe(sessions.base, request.base.file),
                                       describe(sessions.other, request.newFile), request.threshold,
                                       request.roofline};
    Answer answer;
    answer.json = unlessCancelled(bar, [&] { return comparisonJson(table); });
    answer.csv = unlessCancelled(bar, [&] { return comparisonCsv(table); });
    answer.svg = unlessCancelled(bar, [&] { return draw(sessions, table); });
    answer.table = unlessCancelled(bar, [&] { return comparisonText(table); });
    throwIfCancelled(bar);
    deliver(answer, outputs, console);
    if (comparison.pairs.empty()) throw std::runtime_error(noPairs(request));
    return limit ? checkGate(comparison, *limit, console) : kDone;
}

}  // namespace cli
