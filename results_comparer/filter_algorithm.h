// The choice among candidate pairs: each row at most once, the total as high as the search can make it.
#pragma once

#include "results_comparer/algorithms.h"

#include <cstdint>

namespace data_models2::results_comparer_algs {

// Takes the better score first and looks back only where equal scores (to 1e-6) compete for one row; what
// comes out is ordered by choice. Without state: one object serves any number of threads. False keeps the
// entries; once the search has begun they are sorted by falling score.
class CFilterAlgorithm final : public IFilterAlgorithm {
public:
    // Work that the search may take beside some for each candidate, in steps of some nanoseconds. Ordinary
    // comparisons stay far below. Past it the total is no lower, but the pairs may be others.
    static constexpr std::uint64_t kAllowance = 40'000'000;
    static constexpr std::uint64_t kAllowancePerCandidate = 32;

    // Less makes the search give up sooner.
    explicit CFilterAlgorithm(std::uint64_t allowance = kAllowance,
                              std::uint64_t perCandidate = kAllowancePerCandidate)
        : m_allowance(allowance), m_perCandidate(perCandidate) {}
    bool run(std::vector<RowMatchInfo>& matches, IProgress* progress) const override;

private:
    std::uint64_t m_allowance;
    std::uint64_t m_perCandidate;
};

}  // namespace data_models2::results_comparer_algs
