// The candidate pairs that are still open beside the chosen ones, and what these may come to in the end.
#pragma once

#include "results_comparer/filter_meter.h"

#include <array>
#include <cstdint>
#include <limits>
#include <unordered_map>
#include <vector>

namespace data_models2::results_comparer_algs {

// Scores that differ by no more are equal.
inline constexpr double kTie = 1e-6;

// Rows as numbers from 0, each side its own.
struct Candidate {
    double score;
    std::uint32_t first;
    std::uint32_t second;
};

// How many rows either side has.
std::array<std::uint32_t, 2> rowCounts(const std::vector<Candidate>& list, const Meter& meter);

// A pair is named by its place in the list and is open as long as neither row is taken. Open pairs stand in
// three linked lists, of all and of either row, each in the order of the list; choosing unlinks what it
// closes, and taking back links it again in reverse.
//
// Sums are those of one addition a pair in the order of the list, to the last bit: an ulp can decide. What
// they cost doesn't depend on the number of pairs, for open pairs are also counted by score.
//
// A set of open pairs is named by the sum of its marks: every score, and every run of ties, has a random
// number of 64 bits, and the name changes by one addition as a pair is opened or closed. Sets of the same
// scores have one name, others but for one case in 2^64 another: so a sum that was worked out for a set is
// found again without looking at the set.
class OpenPairs {
public:
    using Pair = std::uint32_t;
    static constexpr Pair kNone = std::numeric_limits<Pair>::max();

    // `list` by falling score, NaN last; fewer than 2^32 - 1.
    OpenPairs(const std::vector<Candidate>& list, Meter& meter);

    // The best open pair, kNone when none is left. No open pair stands before it.
    Pair front() const { return m_front; }
    Pair next(Pair pair) const { return m_links[pair].next; }
    // The open pairs after `pair` that share exactly one row with it at an equal score, in list order.
    std::vector<Pair> rivals(Pair pair) const;

    void choose(Pair pair);
    void takeBack();
    const std::vector<Pair>& chosen() const { return m_chosen; }
    double score() const { return m_scores.back(); }
    double scoreOf(Pair pair) const { return m_values[m_links[pair].value].score; }
    const Candidate& operator[](Pair pair) const { return m_list[pair]; }

    // As if the open `pair` were chosen too: the score plus all pairs open then.
    double boundWith(Pair pair);
    // The same plus the first open pair again and again.
    double greedyWith(Pair pair);
    // Never below greedyWith, and cheap.
    double ceilingWith(Pair pair);
    // No way to go on from here leads to a higher score.
    double ceiling();

private:
    // `side` 0 is the list of the first row, 1 that of the second.
    struct Links {
        Pair next, previous;
        std::uint32_t row[2];
        Pair nextOfRow[2], previousOfRow[2];
        std::uint32_t value;  // number of the score among all that occur
    };
    struct Value {
        double score;
        std::uint64_t mark;  // stands for the score in sums that tell sets of open pairs apart
        std::uint32_t run;
        std::uint32_t open;
    };
    struct Row {
        Pair front = kNone;
        std::uint64_t open = 0;  // sum of the marks of its open pairs
        std::uint32_t walk = 0;  // the last greedy walk that took it
    };
    // Scores linked by ties, neighbour to neighbour. `rows` are the open rows whose best pair is in the run.
    struct Run {
        double top;
        std::uint64_t mark;
        std::uint32_t rows[2];
    };
    static constexpr double kUnknown = std::numeric_limits<double>::quiet_NaN();
    struct Known {
        std::uint64_t set = 0;
        double start = 0.0;
        double sum = 0.0;
        bool used = false;
    };

    void addValues();
    void addTwins();
    void close(Pair pair, Pair chosen);
    void reopen(Pair pair, Pair chosen);
    void countBest(int side, const Row& row, int change);
    void count(Pair pair, int change);
    Meter::Work countAround(Pair pair, int change);
    std::size_t frontRun() const {
        return m_front == kNone ? m_runs.size() : m_values[m_links[m_front].value].run;
    }
    double sumRuns(int side, double start) const;
    template <class Sum>
    double known(std::uint64_t set, double start, Sum sum);

    Row& row(Pair pair, int side) { return m_rows[side][m_links[pair].row[side]]; }
    const Row& row(Pair pair, int side) const { return m_rows[side][m_links[pair].row[side]]; }
    std::uint64_t mark(Pair pair) const { return m_values[m_links[pair].value].mark; }

    const std::vector<Candidate>& m_list;
    Meter& m_meter;
    std::vector<Links> m_links;
    std::vector<Value> m_values;
    std::vector<Run> m_runs;
    std::vector<Row> m_rows[2];
    std::unordered_map<std::uint64_t, std::uint64_t> m_twins;  // marks of pairs that occur more than once
    Pair m_front = kNone;
    std::uint64_t m_open = 0;          // sum of the marks of all open pairs
    std::uint64_t m_best[2] = {0, 0};  // sum of the marks of the open rows' best runs
    std::uint32_t m_walk = 0;

    std::vector<Pair> m_chosen;
    std::vector<double> m_scores{0.0};
    std::vector<double> m_greedy{kUnknown};  // greedyWith the front, handed on when the front is chosen
    std::vector<Pair> m_closed;
    std::vector<std::size_t> m_closedBefore;
    std::vector<Known> m_known;
};

// `sum` plus `value`, `count` times, rounded each time.
double addTimes(double sum, double value, std::uint32_t count);

}  // namespace data_models2::results_comparer_algs
