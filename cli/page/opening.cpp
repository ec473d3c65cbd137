#include "cli/page/opening.h"

#include <utility>

namespace cli::page {

std::vector<Result> openResults(const ResultSource& source, const std::string& compare) {
    std::vector<Result> results;
    if (compare.empty()) {
        results.emplace_back(openSession(source), source.file);
        return results;
    }
    auto [base, other] = openSessions(source, compare);
    results.emplace_back(std::move(base), source.file);
    results.emplace_back(std::move(other), compare);
    return results;
}

ModelRequest requestOf(const std::vector<Result>& results, data_models2::IProgress& progress) {
    ModelRequest request;
    for (const auto& result : results) request.results.push_back(&result);
    if (results.size() < 2) return request;
    const CompareRequest defaults;
    const auto &base = results[0].session(), &other = results[1].session();
    const auto matched = matchRows(base, other, defaults.threshold, false, progress);
    request.comparison = makeComparison(base, other, matched, defaults.noise);
    return request;
}

std::string titleOf(const std::vector<Result>& results) {
    std::string title;
    for (const auto& result : results) {
        if (!title.empty()) title += " - ";
        title += programOf(result.session(), result.fileName());
    }
    return title;
}

}  // namespace cli::page
