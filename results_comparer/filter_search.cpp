#include "results_comparer/filter_search.h"

#include "roofline_model/logging.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>

namespace data_models2::results_comparer_algs {

namespace {

constinit const roofline::LogChannel kLog{"results_comparer/filter_search"};

constexpr Meter::Work kVisit = 16;  // what a node or a rival takes beside the pairs that it walks over

}  // namespace

std::optional<Assignment> chooseWithoutTies(const std::vector<Candidate>& list, Meter& meter) {
    const auto rows = rowCounts(list, meter);
    using Pair = OpenPairs::Pair;
    std::vector<Pair> takenBy[2];
    for (const unsigned side : {0U, 1U}) takenBy[side].assign(rows[side], OpenPairs::kNone);
    Assignment result;
    for (Pair pair = 0; pair < list.size(); ++pair) {
        meter.spend(1);
        const auto& [score, first, second] = list[pair];
        Pair& ofFirst = takenBy[0][first];
        Pair& ofSecond = takenBy[1][second];
        // The row taken earlier decided; the other one was open then.
        const Pair winner = std::min(ofFirst, ofSecond);
        if (winner == OpenPairs::kNone) {
            ofFirst = ofSecond = pair;
            result.score += score;
            result.chosen.push_back(pair);
        } else if (ofFirst != ofSecond && std::abs(score - list[winner].score) <= kTie) {
            return std::nullopt;
        }
    }
    return result;
}

void addBranches(OpenPairs& open, Meter& meter, std::vector<OpenPairs::Pair>& branches) {
    branches.push_back(open.front());
    // Deliberate: 0 stands for "not worked out yet", also where it is what was worked out.
    double bestBound = 0.0;
    double bestGreedy = 0.0;
    for (const auto rival : open.rivals(open.front())) {
        meter.poll();
        meter.spend(kVisit);
        const double bound = open.boundWith(rival);
        if (bestBound == 0.0) bestBound = open.boundWith(branches.back());
        if (bound > bestBound) {
            bestBound = bound;
            branches.push_back(rival);
            continue;
        }
        if (bestGreedy == 0.0) bestGreedy = open.greedyWith(branches.back());
        if (bestGreedy >= open.ceilingWith(rival)) continue;
        const double greedy = open.greedyWith(rival);
        if (bestGreedy < greedy) {
            bestGreedy = greedy;
            branches.push_back(rival);
        }
    }
}

void searchWhole(OpenPairs& open, Meter& meter, Assignment& best) {
    struct Branch {
        OpenPairs::Pair pair;
        bool isOnly;
        std::size_t depth;
    };
    std::vector<Branch> stack;
    std::vector<OpenPairs::Pair> branches;
    const auto expand = [&] {
        branches.clear();
        addBranches(open, meter, branches);
        for (const auto pair : branches) stack.push_back({pair, branches.size() == 1, open.chosen().size()});
    };
    expand();
    while (!stack.empty()) {
        meter.poll();
        meter.spend(kVisit);
        const auto branch = stack.back();
        stack.pop_back();
        while (open.chosen().size() > branch.depth) open.takeBack();
        open.choose(branch.pair);
        // An only branch comes right after the one that it belongs to has passed: leaving it out only saves
        // the test.
        if (!branch.isOnly && !best.chosen.empty() && !(open.ceiling() > best.score)) continue;
        if (open.front() != OpenPairs::kNone)
            expand();
        else if (best.chosen.empty() || open.score() > best.score)
            best = {open.score(), open.chosen()};
    }
}

Assignment chooseBest(const std::vector<Candidate>& list, Meter& meter, Meter::Work allowance) {
    if (auto sure = chooseWithoutTies(list, meter)) return *std::move(sure);
    Assignment best;
    try {
        OpenPairs open(list, meter);
        meter.within(allowance, [&] { searchWhole(open, meter, best); });
        return best;
    } catch (const WorkSpent&) {
        kLog.debug([&](auto& out) {
            out << "the search among " << list.size() << " pairs goes on part by part after " << meter.used()
                << " steps; the choice among equal scores may differ";
        });
    }
    auto parts = searchByParts(list, meter, allowance / 2);
    return best.chosen.empty() || parts.score > best.score ? parts : best;
}

}  // namespace data_models2::results_comparer_algs
