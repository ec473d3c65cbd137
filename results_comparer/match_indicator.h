// What an indicator is: one opinion on whether two rows of two results are the same code.
#pragma once

#include "host_interfaces/model.h"
#include "host_interfaces/progress.h"

#include "results_comparer/pair_block.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace data_models2::results_comparer_algs {

struct MatchResult;

class IMatchIndicator {
public:
    enum class MatchStatus : std::int32_t {
        NoMatch = 0,
        Match = 1,
        Invalid = 2,  // can't judge the pair: the weight doesn't count
    };

    virtual ~IMatchIndicator() = default;
    virtual MatchResult operator()(sptr_t<RowNode> first, sptr_t<RowNode> second) const = 0;
};
using MatchStatus = IMatchIndicator::MatchStatus;

struct MatchResult {
    MatchStatus status = MatchStatus::Invalid;
    double weight = 1.0;
};

// An indicator that has read all rows of a run and compares ready values. It lives no longer than the run.
class IPreparedIndicator {
public:
    virtual ~IPreparedIndicator() = default;
    // Of the rows at these places of the lists that it was prepared for.
    virtual MatchResult judge(std::size_t first, std::size_t second) const = 0;
    // The weights that a result may have; each takes the place of one opinion in a block.
    virtual const std::vector<double>& weights() const = 0;
    // Sets the opinions of a block from the place `opinion` on.
    virtual void judgeBlock(PairBlock& block, unsigned opinion) const = 0;
};

// An indicator whose opinion rests on what each row shows by itself. A single pair is judged as lists of one
// row each, so a rule stands in one place.
class AMatchIndicator : public IMatchIndicator {
public:
    MatchResult operator()(sptr_t<RowNode> first, sptr_t<RowNode> second) const override;
    // Reads each row once. Ends early when `progress` is cancelled: the result must not be used then.
    virtual std::unique_ptr<IPreparedIndicator> prepare(const RowLists& rows,
                                                        const IProgress& progress) const = 0;

    // What can be said of two things that are there or aren't: only when both are may they be compared.
    template <class A, class B>
    static MatchStatus matchValidity(const A& a, const B& b) {
        const bool hasA = static_cast<bool>(a);
        if (hasA != static_cast<bool>(b)) return MatchStatus::NoMatch;
        return hasA ? MatchStatus::Match : MatchStatus::Invalid;
    }
};

}  // namespace data_models2::results_comparer_algs
