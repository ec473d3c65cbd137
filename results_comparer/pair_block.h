// Pairs of rows in blocks: the unit in which checks and indicators go over the pairs of a run.
#pragma once

#include "host_interfaces/model.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace data_models2::results_comparer_algs {

using Rows = std::vector<sptr_t<RowNode>>;

// The rows of a run that may take part.
struct RowLists {
    Rows first;
    Rows second;
};
enum class Side { First, Second };

// A row of the first result beside neighbours in the second's list, and what was said of each pair so far:
// two bits an opinion. Small enough to stay in the innermost cache while all go over it.
struct PairBlock {
    static constexpr std::size_t kSize = 256;
    using Verdicts = std::uint32_t;
    static constexpr unsigned kOpinions = 15;               // that fit
    static constexpr Verdicts kCounts = 1, kAgrees = 2;     // bits of an opinion
    static constexpr Verdicts kClosed = Verdicts{1} << 31;  // the pair may not be compared

    std::size_t first = 0;  // place in the first list
    std::size_t begin = 0;  // place of the first neighbour in the second list
    std::size_t count = 0;
    std::array<Verdicts, kSize> verdicts;
};

}  // namespace data_models2::results_comparer_algs
