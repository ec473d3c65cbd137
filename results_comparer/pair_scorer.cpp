#include "results_comparer/pair_scorer.h"

#include <algorithm>

namespace data_models2::results_comparer_algs {
namespace {

// The weight that can judge a pair, and the part of it that agrees.
struct Sums {
    double applicable = 0.0;
    double matched = 0.0;

    void add(bool counts, bool agrees, double weight) {
        if (counts) applicable += weight;
        if (agrees) matched += weight;
    }
    double percent(double none) const {
        return matched > 0.0 && applicable > 0.0 ? matched * 100.0 / applicable : none;
    }
};

}  // namespace

PairScorer::PairScorer(const RowLists& rows, const ComparabilityChecks& checks,
                       const MatchIndicators& indicators, const IProgress& progress)
    : m_rows(rows), m_checks(checks), m_indicators(indicators), m_progress(progress) {
    for (const auto& check : checks) {
        const auto* const preparable = dynamic_cast<const AComparabilityCheck*>(check.get());
        m_preparedChecks.push_back(preparable ? preparable->prepare(rows) : nullptr);
        m_isPrepared &= preparable != nullptr;
    }
    for (const auto& indicator : indicators) {
        const auto* const preparable = dynamic_cast<const AMatchIndicator*>(indicator.get());
        m_preparedIndicators.push_back(preparable ? preparable->prepare(rows, progress) : nullptr);
        m_isPrepared &= preparable || !indicator;
        if (!preparable) continue;
        const auto& weights = m_preparedIndicators.back()->weights();
        m_weights.insert(m_weights.end(), weights.begin(), weights.end());
    }
    m_isPrepared &= m_weights.size() <= PairBlock::kOpinions;
}

std::span<const double> PairScorer::score(std::size_t first, std::size_t begin) {
    m_block.first = first;
    m_block.begin = begin;
    m_block.count = std::min(PairBlock::kSize, m_rows.second.size() - begin);
    m_isPrepared ? scoreByVerdicts() : scoreOneByOne();
    return {m_scores.data(), m_block.count};
}

void PairScorer::scoreByVerdicts() {
    m_block.verdicts.fill(0);
    for (const auto& check : m_preparedChecks) check->closePairs(m_block);
    unsigned opinion = 0;
    for (const auto& indicator : m_preparedIndicators) {
        if (!indicator) continue;
        indicator->judgeBlock(m_block, opinion);
        opinion += static_cast<unsigned>(indicator->weights().size());
    }
    for (std::size_t i = 0; i < m_block.count; ++i) {
        const auto verdicts = m_block.verdicts[i];
        // The upper bits of a product depend on all bits of its factor.
        auto& known = m_known[(verdicts * 0x9E3779B1U) >> (32 - kKnownBits)];
        if (known.verdicts != verdicts) known = {verdicts, scoreOf(verdicts)};
        m_scores[i] = known.score;
    }
}

double PairScorer::scoreOf(PairBlock::Verdicts verdicts) const {
    if (verdicts & PairBlock::kClosed) return kNoScore;
    Sums sums;
    for (const double weight : m_weights) {
        sums.add(verdicts & PairBlock::kCounts, verdicts & PairBlock::kAgrees, weight);
        verdicts >>= 2;
    }
    return sums.percent(kNoScore);
}

void PairScorer::scoreOneByOne() {
    for (std::size_t i = 0; i < m_block.count && !m_progress.isCancelled(); ++i)
        m_scores[i] = scorePair(m_block.first, m_block.begin + i);
}

double PairScorer::scorePair(std::size_t first, std::size_t second) const {
    const auto &a = m_rows.first[first], &b = m_rows.second[second];
    const auto allows = [&](const auto& check) { return check && (*check)(a, b); };
    if (!std::all_of(m_checks.begin(), m_checks.end(), allows)) return kNoScore;
    Sums sums;
    for (std::size_t i = 0; i < m_indicators.size() && !m_progress.isCancelled(); ++i) {
        if (!m_indicators[i]) continue;
        const auto& prepared = m_preparedIndicators[i];
        const auto [status, weight] = prepared ? prepared->judge(first, second) : (*m_indicators[i])(a, b);
        sums.add(status != MatchStatus::Invalid, status == MatchStatus::Match, weight);
    }
    return sums.percent(kNoScore);
}

}  // namespace data_models2::results_comparer_algs
