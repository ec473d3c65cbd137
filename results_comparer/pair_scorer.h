// Scores the pairs of one run, block by block.
#pragma once

#include "results_comparer/checks.h"
#include "results_comparer/match_indicator.h"

#include <array>
#include <limits>
#include <memory>
#include <span>
#include <vector>

namespace data_models2::results_comparer_algs {

using ComparabilityChecks = std::vector<std::shared_ptr<IComparabilityCheck>>;
using MatchIndicators = std::vector<std::shared_ptr<IMatchIndicator>>;

class PairScorer {
public:
    // Reads all rows for the checks and indicators; keeps references to the arguments. Must not be used when
    // `progress` is cancelled meanwhile. A null check closes every pair, a null indicator says nothing.
    PairScorer(const RowLists& rows, const ComparabilityChecks& checks, const MatchIndicators& indicators,
               const IProgress& progress);

    // The scores in percent of a row of the first list beside the second's from `begin` on, as many as a
    // block holds or are left. NaN, which reaches no threshold, for a pair that may not be compared or of
    // which nothing agrees. Valid until the next call; of no meaning when `progress` is cancelled meanwhile.
    std::span<const double> score(std::size_t first, std::size_t begin);

    // Whether scores come of readings made beforehand, and so are cheap to work out twice.
    bool isPrepared() const { return m_isPrepared; }

private:
    static constexpr double kNoScore = std::numeric_limits<double>::quiet_NaN();
    // Verdicts and their score. A run has few different ones: most are found where they were put.
    struct Known {
        PairBlock::Verdicts verdicts = 0;
        double score = kNoScore;  // as nothing was said
    };
    static constexpr unsigned kKnownBits = 10;

    void scoreByVerdicts();
    void scoreOneByOne();
    double scoreOf(PairBlock::Verdicts verdicts) const;
    double scorePair(std::size_t first, std::size_t second) const;

    const RowLists& m_rows;
    const ComparabilityChecks& m_checks;
    const MatchIndicators& m_indicators;
    const IProgress& m_progress;
    std::vector<std::unique_ptr<IPreparedCheck>> m_preparedChecks;          // null for what can't be prepared
    std::vector<std::unique_ptr<IPreparedIndicator>> m_preparedIndicators;  // the same
    std::vector<double> m_weights;                                          // of the opinions of a block
    bool m_isPrepared = true;  // all are, and their opinions fit a block
    PairBlock m_block;
    std::array<double, PairBlock::kSize> m_scores;
    std::array<Known, 1U << kKnownBits> m_known;
};

}  // namespace data_models2::results_comparer_algs
