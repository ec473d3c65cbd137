// The search that always ends: part by part, and the largest total where it would take too long.
#include "results_comparer/exact_assignment.h"
#include "results_comparer/filter_search.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace data_models2::results_comparer_algs {

namespace {

using Pair = OpenPairs::Pair;
using Pairs = std::vector<Pair>;
using Work = Meter::Work;

// A list of its own made of some pairs of another, its rows numbered anew.
class Parts {
public:
    Parts(const std::vector<Candidate>& list, const Meter& meter) : m_list(list), m_meter(meter) {
        const auto rows = rowCounts(list, meter);
        for (const unsigned side : {0U, 1U}) m_numbers[side].assign(rows[side], OpenPairs::kNone);
    }

    struct Part {
        std::vector<Candidate> list;
        std::uint32_t rows[2] = {0, 0};
    };
    Part make(const Pairs& pairs) {
        Part part;
        part.list.reserve(pairs.size());
        const auto number = [&](int side, std::uint32_t row) {
            auto& known = m_numbers[side][row];
            if (known == OpenPairs::kNone) known = part.rows[side]++;
            return known;
        };
        for (const auto pair : pairs) {
            m_meter.pollAt(part.list.size());
            const auto& [score, first, second] = m_list[pair];
            part.list.push_back({score, number(0, first), number(1, second)});
        }
        for (std::size_t i = 0; i < pairs.size(); ++i) {
            m_meter.pollAt(i);
            m_numbers[0][m_list[pairs[i]].first] = OpenPairs::kNone;
            m_numbers[1][m_list[pairs[i]].second] = OpenPairs::kNone;
        }
        return part;
    }

private:
    const std::vector<Candidate>& m_list;
    const Meter& m_meter;
    std::vector<std::uint32_t> m_numbers[2];
};

// Pairs that share rows, directly or through others, each group in list order.
std::vector<Pairs> connected(const Parts::Part& part, const Pairs& open, const Meter& meter) {
    std::vector<std::uint32_t> root(part.rows[0] + part.rows[1]);
    std::iota(root.begin(), root.end(), 0U);
    const auto find = [&](std::uint32_t row) {
        while (root[row] != row) row = root[row] = root[root[row]];
        return row;
    };
    for (std::size_t i = 0; i < open.size(); ++i) {
        meter.pollAt(i);
        root[find(part.list[open[i]].first)] = find(part.rows[0] + part.list[open[i]].second);
    }
    std::vector<Pairs> groups;
    std::vector<std::size_t> groupOf(root.size(), root.size());
    for (std::size_t i = 0; i < open.size(); ++i) {
        meter.pollAt(i);
        auto& group = groupOf[find(part.list[open[i]].first)];
        if (group == root.size()) group = groups.size(), groups.emplace_back();
        groups[group].push_back(open[i]);
    }
    return groups;
}

class PartSearch {
public:
    PartSearch(const std::vector<Candidate>& list, Meter& meter)
        : m_list(list), m_meter(meter), m_parts(list, meter) {}

    // What comes of `pairs`, places in the list in its order. Spends little more than `allowance` beside one
    // exact assignment of these pairs.
    Assignment solve(const Pairs& pairs, Work allowance) {
        if (allowance / kReadings < pairs.size()) return exact(pairs);
        const Work end = m_meter.used() + allowance;
        m_meter.spend(kSetUp);
        const auto part = m_parts.make(pairs);
        OpenPairs open(part.list, m_meter);
        const auto branches = chooseAtOnce(open, left(end));
        const Pairs rest = openOnes(open);
        Assignment result{open.score(), translate(open.chosen(), pairs)};
        if (rest.empty()) return result;
        auto groups = connected(part, rest, m_meter);
        if (branches.empty()) {  // the allowance is spent
            append(result, exact(translate(rest, pairs)));
        } else if (groups.size() == 1) {
            const auto exactWork = Work{std::min(part.rows[0], part.rows[1])} * rest.size();
            if (left(end) / branches.size() < exactWork) {
                append(result, exact(translate(rest, pairs)));
            } else {
                result = bestOf(open, branches, pairs, end);
            }
        } else {
            Work size = rest.size();
            for (const auto& group : groups) {
                append(result, solve(translate(group, pairs), left(end) / size * group.size()));
                size -= group.size();
            }
        }
        return result;
    }

private:
    static constexpr Work kReadings = 8;  // going over the pairs of a part before anything is chosen
    static constexpr Work kSetUp = 256;   // a part's lists

    Work left(Work end) const { return end - std::min(end, m_meter.used()); }
    Pairs translate(Pairs places, const Pairs& pairs) const {
        for (std::size_t i = 0; i < places.size(); ++i) {
            m_meter.pollAt(i);
            places[i] = pairs[places[i]];
        }
        return places;
    }
    Pairs openOnes(const OpenPairs& open) const {
        Pairs pairs;
        for (auto pair = open.front(); pair != OpenPairs::kNone; pair = open.next(pair)) {
            m_meter.pollAt(pairs.size());
            pairs.push_back(pair);
        }
        return pairs;
    }
    static void append(Assignment& to, const Assignment& more) {
        to.score += more.score;
        to.chosen.insert(to.chosen.end(), more.chosen.begin(), more.chosen.end());
    }

    // The branches where there is more than one; none when all is chosen or the allowance spent.
    Pairs chooseAtOnce(OpenPairs& open, Work allowance) {
        Pairs branches;
        try {
            m_meter.within(allowance, [&] {
                for (; open.front() != OpenPairs::kNone; open.choose(branches.front())) {
                    branches.clear();
                    addBranches(open, m_meter, branches);
                    if (branches.size() > 1) return;
                }
                branches.clear();
            });
        } catch (const WorkSpent&) {
            branches.clear();
        }
        return branches;
    }

    Assignment bestOf(OpenPairs& open, const Pairs& branches, const Pairs& pairs, Work end) {
        Assignment best;
        auto more = branches.size();
        for (auto branch = branches.rbegin(); branch != branches.rend(); ++branch, --more) {
            open.choose(*branch);
            if (best.chosen.empty() || open.ceiling() > best.score) {
                Assignment found{open.score(), translate(open.chosen(), pairs)};
                append(found, solve(translate(openOnes(open), pairs), left(end) / more));
                if (best.chosen.empty() || found.score > best.score) best = std::move(found);
            }
            open.takeBack();
        }
        return best;
    }

    Assignment exact(const Pairs& pairs) {
        Assignment result{0.0, translate(exactAssignment(m_parts.make(pairs).list, m_meter), pairs)};
        for (const auto pair : result.chosen) result.score += m_list[pair].score;
        return result;
    }

    const std::vector<Candidate>& m_list;
    Meter& m_meter;
    Parts m_parts;
};

Pairs greedyWalk(const std::vector<Candidate>& list, Meter& meter) {
    const auto rows = rowCounts(list, meter);
    std::vector<char> takenFirst(rows[0]), takenSecond(rows[1]);
    Pairs chosen;
    for (Pair pair = 0; pair < list.size(); ++pair) {
        meter.spend(1);
        char& first = takenFirst[list[pair].first];
        char& second = takenSecond[list[pair].second];
        if (first || second) continue;
        first = second = 1;
        chosen.push_back(pair);
    }
    return chosen;
}

}  // namespace

Assignment searchByParts(const std::vector<Candidate>& list, Meter& meter, Work allowance) {
    Pairs all;
    all.reserve(list.size());
    for (Pair pair = 0; pair < list.size(); ++pair) {
        meter.spend(1);
        all.push_back(pair);
    }
    auto result = PartSearch(list, meter).solve(all, allowance);
    if (result.chosen.empty()) result.chosen = greedyWalk(list, meter);  // an exact part wants no such pairs
    std::sort(result.chosen.begin(), result.chosen.end(), [&](Pair left, Pair right) {
        meter.spend(1);
        return left < right;
    });
    result.score = 0.0;
    for (const auto pair : result.chosen) result.score += list[pair].score;
    return result;
}

}  // namespace data_models2::results_comparer_algs
