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
    explicit Parts(const std::vector<Candidate>& list) : m_list(list) {
        std::uint32_t rows[2] = {0, 0};
        for (const auto& pair : list) {
            rows[0] = std::max(rows[0], pair.first + 1);
            rows[1] = std::max(rows[1], pair.second + 1);
        }
        for (const int side : {0, 1}) m_numbers[side].assign(rows[side], OpenPairs::kNone);
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
            const auto& [score, first, second] = m_list[pair];
            part.list.push_back({score, number(0, first), number(1, second)});
        }
        for (const auto pair : pairs) {
            m_numbers[0][m_list[pair].first] = OpenPairs::kNone;
            m_numbers[1][m_list[pair].second] = OpenPairs::kNone;
        }
        return part;
    }

private:
    const std::vector<Candidate>& m_list;
    std::vector<std::uint32_t> m_numbers[2];
};

// Pairs that share rows, directly or through others, each group in list order.
std::vector<Pairs> connected(const Parts::Part& part, const Pairs& open) {
    std::vector<std::uint32_t> root(part.rows[0] + part.rows[1]);
    std::iota(root.begin(), root.end(), 0U);
    const auto find = [&](std::uint32_t row) {
        while (root[row] != row) row = root[row] = root[root[row]];
        return row;
    };
    for (const auto pair : open)
        root[find(part.list[pair].first)] = find(part.rows[0] + part.list[pair].second);
    std::vector<Pairs> groups;
    std::vector<std::size_t> groupOf(root.size(), root.size());
    for (const auto pair : open) {
        auto& group = groupOf[find(part.list[pair].first)];
        if (group == root.size()) group = groups.size(), groups.emplace_back();
        groups[group].push_back(pair);
    }
    return groups;
}

class PartSearch {
public:
    PartSearch(const std::vector<Candidate>& list, Meter& meter)
        : m_list(list), m_meter(meter), m_parts(list) {}

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
        auto groups = connected(part, rest);
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

    static constexpr Work kSetUp = 256;  // a part's lists

    Work left(Work end) const { return end - std::min(end, m_meter.used()); }
    static Pairs translate(Pairs places, const Pairs& pairs) {
        for (auto& place : places) place = pairs[place];
        return places;
    }
    static Pairs openOnes(const OpenPairs& open) {
        Pairs pairs;
        for (auto pair = open.front(); pair != OpenPairs::kNone; pair = open.next(pair))
            pairs.push_back(pair);
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

}  // namespace

Assignment searchByParts(const std::vector<Candidate>& list, Meter& meter, Work allowance) {
    Pairs all(list.size());
    std::iota(all.begin(), all.end(), Pair{0});
    auto result = PartSearch(list, meter).solve(all, allowance);
    std::sort(result.chosen.begin(), result.chosen.end());
    result.score = 0.0;
    for (const auto pair : result.chosen) result.score += list[pair].score;
    return result;
}

}  // namespace data_models2::results_comparer_algs
