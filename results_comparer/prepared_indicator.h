// Making prepared indicators of two functions: how a row is read, and how two readings are judged.
#pragma once

#include "results_comparer/match_indicator.h"
#include "results_comparer/property_ids.h"

#include <type_traits>
#include <utility>

namespace data_models2::results_comparer_algs {

// What a judge says when its weight isn't always the same.
struct WeighedStatus {
    MatchStatus status;
    unsigned weight;  // its place among the indicator's weights
};

template <class Value, class Judge>
class PreparedIndicator final : public IPreparedIndicator {
public:
    PreparedIndicator(std::vector<double> weights, Judge judge)
        : m_weights(std::move(weights)), m_judge(std::move(judge)) {}

    template <class Read>
    void read(const RowLists& rows, const IProgress& progress, Read read) {
        const auto readSide = [&](const Rows& from, Side side, std::vector<Value>& values) {
            values.resize(from.size());
            for (std::size_t i = 0; i < from.size() && !progress.isCancelled(); ++i)
                values[i] = read(from[i], side);
        };
        readSide(rows.first, Side::First, m_first);
        readSide(rows.second, Side::Second, m_second);
    }

    MatchResult judge(std::size_t first, std::size_t second) const override {
        const auto [status, weight] = weighed(m_judge(m_first[first], m_second[second]));
        return {status, m_weights[weight]};
    }
    const std::vector<double>& weights() const override { return m_weights; }

    // Judges avoid branches (`&` where `&&` would do): most then become code here that judges several pairs
    // at a time.
    void judgeBlock(PairBlock& block, unsigned opinion) const override {
        const Value first = m_first[block.first];
        const Value* const second = m_second.data() + block.begin;
        for (std::size_t i = 0; i < block.count; ++i) {
            const auto [status, weight] = weighed(m_judge(first, second[i]));
            const auto counts = status == MatchStatus::Invalid ? 0U : PairBlock::kCounts;
            const auto agrees = status == MatchStatus::Match ? PairBlock::kAgrees : 0U;
            block.verdicts[i] |= (counts | agrees) << 2 * (opinion + weight);
        }
    }

private:
    static WeighedStatus weighed(MatchStatus status) { return {status, 0}; }
    static WeighedStatus weighed(WeighedStatus status) { return status; }

    const std::vector<double> m_weights;
    const Judge m_judge;
    std::vector<Value> m_first;
    std::vector<Value> m_second;
};

// `read(row, side)` makes a value of a row, which may be null; `judge(first, second)` makes a MatchStatus of
// two of them, or a WeighedStatus when there are several weights.
template <class Read, class Judge>
std::unique_ptr<IPreparedIndicator> prepareIndicator(const RowLists& rows, const IProgress& progress,
                                                     std::vector<double> weights, Read read, Judge judge) {
    using Value = std::invoke_result_t<Read, const sptr_t<RowNode>&, Side>;
    auto prepared = std::make_unique<PreparedIndicator<Value, Judge>>(std::move(weights), std::move(judge));
    prepared->read(rows, progress, std::move(read));
    return prepared;
}

// For a property that two rows have in common or not: `read(row, side, ids)` makes a PropertyId.
template <class Read>
std::unique_ptr<IPreparedIndicator> prepareProperty(const RowLists& rows, const IProgress& progress,
                                                    double weight, Read read) {
    PropertyIds ids;
    return prepareIndicator(
        rows, progress, {weight}, [&](const sptr_t<RowNode>& row, Side side) { return read(row, side, ids); },
        [](PropertyId a, PropertyId b) { return matchProperties(a, b); });
}

}  // namespace data_models2::results_comparer_algs
