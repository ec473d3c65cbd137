// The search among candidate pairs: the best first, and both ways where equal scores compete for a row.
#pragma once

#include "results_comparer/filter_open_pairs.h"

#include <optional>
#include <vector>

namespace data_models2::results_comparer_algs {

struct Assignment {
    double score = 0.0;
    std::vector<OpenPairs::Pair> chosen;  // places in the list, in the order of choice; empty: none found
};

// The assignment where no choice has a rival: one walk over the list. Nothing at the first rival.
std::optional<Assignment> chooseWithoutTies(const std::vector<Candidate>& list, Meter& meter);

// Adds to `branches` the ways to go on where a pair is open: the front and the rivals of equal score that
// promise more than all kept before them, by bound or else by greedy result.
void addBranches(OpenPairs& open, Meter& meter, std::vector<OpenPairs::Pair>& branches);

// Improves `best` until every branch is searched or can't beat it. Of equal assignments the first stays.
void searchWhole(OpenPairs& open, Meter& meter, Assignment& best);

// Where `searchWhole` ends only after ages: a total at most 1e-6 below the total of the full search. What has
// one branch is chosen at once, the rest falls into connected parts, and a part that takes more than its
// share of the work gets the largest total there is; where no score is above 0, the walk that always takes
// the first open pair. `list` isn't empty; the result is in list order.
Assignment searchByParts(const std::vector<Candidate>& list, Meter& meter, Meter::Work allowance);

// All together: without ties one walk, else the whole search, and past `allowance` the one by parts, which
// gets half as much. `list` by falling score, not empty.
Assignment chooseBest(const std::vector<Candidate>& list, Meter& meter, Meter::Work allowance);

}  // namespace data_models2::results_comparer_algs
