// Brings the rows of two results together and sums them up.
#include "cli/comparison.h"

#include "results_comparer/factories.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <unordered_map>
#include <utility>

namespace cli {
namespace {

using Lines = std::vector<RowLine>;

bool isTime(const std::optional<double>& seconds) {
    return seconds && std::isfinite(*seconds) && *seconds >= 0.0;
}

double sumOf(const Lines& lines) {
    double sum = 0.0;
    for (const auto& line : lines)
        if (isTime(line.seconds)) sum += *line.seconds;
    return sum;
}

Lines readSide(const Session& session) {
    constexpr auto kSelfData = "1";
    return readAllRows(session, RowRooflines(session, kSelfData, {}));
}

// The lines that no pair took.
Lines leftOver(Lines lines, const std::vector<bool>& isTaken) {
    Lines rest;
    for (std::size_t i = 0; i < lines.size(); ++i)
        if (!isTaken[i]) rest.push_back(std::move(lines[i]));
    sortLines(rest, RowOrder::Time);
    return rest;
}

std::unordered_map<std::string, std::size_t> placesById(const Lines& lines) {
    std::unordered_map<std::string, std::size_t> places;
    for (std::size_t i = 0; i < lines.size(); ++i) places.emplace(lines[i].id, i);
    return places;
}

double keyOf(const ComparedPair& pair, PairOrder order) {
    constexpr double kLast = -1.0;
    if (order == PairOrder::Score) return pair.match;
    if (order == PairOrder::Time) return pair.before.seconds.value_or(kLast);
    const auto growth = pair.growth();
    return growth ? std::abs(std::log1p(*growth)) : kLast;
}

}  // namespace

std::optional<double> Times::speedUp() const {
    const double ratio = before / after;
    return std::isfinite(ratio) ? std::optional(ratio) : std::nullopt;
}

std::optional<Times> ComparedPair::times() const {
    if (!isTime(before.seconds) || !isTime(after.seconds)) return {};
    return Times{*before.seconds, *after.seconds};
}

std::optional<double> ComparedPair::speedUp() const {
    const auto both = times();
    return both ? both->speedUp() : std::nullopt;
}

std::optional<double> ComparedPair::growth() const {
    const auto both = times();
    if (!both) return {};
    if (both->before == both->after) return 0.0;
    return both->after / both->before - 1.0;
}

Change Comparison::changeOf(const ComparedPair& pair) const {
    const auto growth = pair.growth();
    if (!growth) return Change::Unknown;
    if (*growth == 0.0 || 100.0 * std::abs(*growth) < noise) return Change::Noise;
    return *growth > 0.0 ? Change::Slower : Change::Faster;
}

std::size_t Comparison::count(Change change) const {
    return static_cast<std::size_t>(std::count_if(
        pairs.begin(), pairs.end(), [&](const ComparedPair& pair) { return changeOf(pair) == change; }));
}

Times Comparison::pairTimes() const {
    Times sum;
    for (const auto& pair : pairs)
        if (const auto both = pair.times()) sum.before += both->before, sum.after += both->after;
    return sum;
}

std::size_t Comparison::timedPairs() const { return pairs.size() - count(Change::Unknown); }

Times Comparison::allTimes() const {
    Times sum{sumOf(beforeOnly), sumOf(afterOnly)};
    for (const auto& pair : pairs) {
        if (isTime(pair.before.seconds)) sum.before += *pair.before.seconds;
        if (isTime(pair.after.seconds)) sum.after += *pair.after.seconds;
    }
    return sum;
}

std::optional<double> Comparison::meanSpeedUp() const {
    double logarithms = 0.0;
    std::size_t number = 0;
    for (const auto& pair : pairs)
        if (const auto factor = pair.speedUp(); factor && *factor > 0.0)
            logarithms += std::log(*factor), ++number;
    if (number == 0) return {};
    return std::exp(logarithms / static_cast<double>(number));
}

data_models2::ComparisonData matchRows(const Session& before, const Session& after, double threshold,
                                       bool isRoofline, data_models2::IProgress& progress) {
    const auto comparer =
        isRoofline ? data_models2::createRooflineResultsComparer() : data_models2::createResultsComparer();
    if (!comparer) throw std::runtime_error("the library has no comparer");
    data_models2::ComparisonData data{before.models.survey, after.models.survey, before.kind->compared, {}};
    if (!comparer->compare(data, threshold, &progress)) data.matches.clear();
    return data;
}

Comparison makeComparison(const Session& before, const Session& after,
                          const data_models2::ComparisonData& matched, double noise) {
    auto first = readSide(before), second = readSide(after);
    const auto firstPlaces = placesById(first), secondPlaces = placesById(second);
    std::vector<bool> isFirstTaken(first.size()), isSecondTaken(second.size());

    std::vector<std::pair<std::size_t, ComparedPair>> found;
    for (const auto& each : matched.matches) {
        const auto a = firstPlaces.at(std::to_string(each.first->getId()));
        const auto b = secondPlaces.at(std::to_string(each.second->getId()));
        isFirstTaken[a] = isSecondTaken[b] = true;
        found.push_back({a, {each.score, first[a], second[b]}});
    }
    std::sort(found.begin(), found.end(), [](const auto& a, const auto& b) { return a.first < b.first; });

    Comparison comparison;
    for (auto& each : found) comparison.pairs.push_back(std::move(each.second));
    comparison.beforeOnly = leftOver(std::move(first), isFirstTaken);
    comparison.afterOnly = leftOver(std::move(second), isSecondTaken);
    comparison.noise = noise;
    return comparison;
}

void sortPairs(std::vector<ComparedPair>& pairs, PairOrder order) {
    std::stable_sort(pairs.begin(), pairs.end(), [order](const ComparedPair& a, const ComparedPair& b) {
        return keyOf(a, order) > keyOf(b, order);
    });
}

std::string bothOf(const std::string& before, const std::string& after) {
    if (before == after) return before;
    return (before.empty() ? "-" : before) + " -> " + (after.empty() ? "-" : after);
}

std::string nameOf(const ComparedPair& pair) {
    if (pair.before.name == pair.after.name) return pair.before.name;
    return pair.before.name + " -> " + pair.after.name;
}

}  // namespace cli
