#include "results_comparer/comparison_algorithm.h"

#include "roofline_model/translation.h"

#include "results_comparer/pair_scorer.h"

#include <algorithm>
#include <span>

namespace data_models2::results_comparer_algs {
namespace {

using EligibilityChecks = std::vector<std::shared_ptr<IEligibilityCheck>>;

bool isEligible(const sptr_t<RowNode>& row, const sptr_t<IDataset>& dataset,
                const EligibilityChecks& checks) {
    return row && std::all_of(checks.begin(), checks.end(),
                              [&](const auto& check) { return check && (*check)(row, dataset); });
}

// The top rows that may take part, each before its children that may; the children of others don't count.
// Empty when cancelled.
Rows collectRows(const sptr_t<IDataset>& dataset, const EligibilityChecks& checks,
                 const IProgress& progress) {
    Rows rows;
    const auto take = [&](const sptr_t<RowNode>& row) {
        const bool isTaken = isEligible(row, dataset, checks);
        if (isTaken) rows.push_back(row);
        return isTaken;
    };
    for (auto top = dataset->getRows(0); !top.isEnd(); ++top) {
        if (progress.isCancelled()) return {};
        const auto row = *top;
        RowIterator children;
        if (!take(row) || row->getChildren(children, 0, 1) == -1) continue;
        for (; !children.isEnd(); ++children) {
            if (progress.isCancelled()) return {};
            take(*children);
        }
    }
    return rows;
}

// Says where the work stands for as long as it lives; a step is a row of the first list.
class Report {
public:
    Report(IProgress& progress, std::size_t steps) : m_progress(progress) {
        m_progress.start(roofline::translate("results_comparer_scoring"), steps);
    }
    ~Report() { m_progress.finish(); }
    Report(const Report&) = delete;
    Report& operator=(const Report&) = delete;
    void rowDone() { m_progress.advance(++m_done); }

private:
    IProgress& m_progress;
    std::uint64_t m_done = 0;
};

// Goes over all pairs once, block by block: `take(first, begin, scores)` gets the scores of those blocks of
// which `isWanted()`, asked for each in turn, says so. False once cancelled.
template <class IsWanted, class Take>
bool forEachBlock(const RowLists& rows, PairScorer& scorer, const IProgress& progress, Report& report,
                  IsWanted isWanted, Take take) {
    for (std::size_t first = 0; first < rows.first.size(); ++first) {
        for (std::size_t begin = 0; begin < rows.second.size(); begin += PairBlock::kSize) {
            if (!isWanted()) continue;
            const auto scores = scorer.score(first, begin);
            if (progress.isCancelled()) return false;
            take(first, begin, scores);
        }
        report.rowDone();
    }
    return true;
}

// Where scores are cheap it counts first, and goes a second time only over blocks with candidates: a list
// that grows holds up to twice what it needs.
bool appendCandidates(const RowLists& rows, PairScorer& scorer, double threshold,
                      std::vector<RowMatchInfo>& matches, IProgress& progress) {
    const auto isCandidate = [threshold](double score) { return threshold <= score; };
    const auto append = [&](std::size_t first, std::size_t begin, std::span<const double> scores) {
        for (std::size_t i = 0; i < scores.size(); ++i)
            if (isCandidate(scores[i]))
                matches.push_back({scores[i], rows.first[first], rows.second[begin + i]});
    };
    const auto always = [] { return true; };
    Report report(progress, rows.first.size() * (scorer.isPrepared() ? 2 : 1));
    if (!scorer.isPrepared()) return forEachBlock(rows, scorer, progress, report, always, append);

    std::vector<bool> hasCandidates;
    std::size_t candidates = 0;
    const auto count = [&](std::size_t, std::size_t, std::span<const double> scores) {
        const auto found = std::count_if(scores.begin(), scores.end(), isCandidate);
        hasCandidates.push_back(found != 0);
        candidates += static_cast<std::size_t>(found);
    };
    if (!forEachBlock(rows, scorer, progress, report, always, count)) return false;
    matches.reserve(matches.size() + candidates);
    const auto next = [block = hasCandidates.cbegin()]() mutable { return *block++; };
    return forEachBlock(rows, scorer, progress, report, next, append);
}

}  // namespace

bool CComparisonAlgorithm::run(std::shared_ptr<ISurveyingViewModel> first,
                               std::shared_ptr<ISurveyingViewModel> second, DataType dataType,
                               double threshold, std::vector<RowMatchInfo>& matches,
                               IProgress* progress) const {
    DummyProgress nobody;
    IProgress& reported = progress ? *progress : nobody;
    if (!m_configuration || !first || !second || reported.isCancelled()) return false;
    const bool isGpu = dataType == DataType::Gpu;
    const auto firstDataset = first->getDataset(dataType);
    const auto secondDataset = second->getDataset(dataType);
    if (!firstDataset || !secondDataset) return false;

    const auto eligibility = m_configuration->getEligibilityChecks(isGpu);
    const auto comparability = m_configuration->getComparabilityChecks(isGpu);
    const auto indicators = m_configuration->getMatchIndicators(first, second, isGpu);
    if (indicators.empty()) return false;

    RowLists rows;
    rows.first = collectRows(firstDataset, eligibility, reported);
    if (rows.first.empty()) return false;
    rows.second = collectRows(secondDataset, eligibility, reported);
    if (rows.second.empty()) return false;

    PairScorer scorer(rows, comparability, indicators, reported);
    if (reported.isCancelled()) return false;
    return appendCandidates(rows, scorer, threshold, matches, reported);
}

}  // namespace data_models2::results_comparer_algs
