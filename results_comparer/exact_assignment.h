// The one-to-one assignment with the largest total.
#pragma once

#include "results_comparer/filter_open_pairs.h"

#include <vector>

namespace data_models2::results_comparer_algs {

// Places in `list`, rising. Pairs that add nothing (0 or less, not a number) are left out. At most about the
// smaller number of rows times the number of pairs and the square of the larger one; polls, spends nothing.
std::vector<OpenPairs::Pair> exactAssignment(const std::vector<Candidate>& list, const Meter& meter);

}  // namespace data_models2::results_comparer_algs
