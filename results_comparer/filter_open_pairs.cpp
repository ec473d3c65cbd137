#include "results_comparer/filter_open_pairs.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <utility>

namespace data_models2::results_comparer_algs {

namespace {

constexpr std::size_t kMostKnown = 4096;

// Spreads a number over 64 bits. Sums of marks are equal for equal sets and, but for one case in 2^64, only
// for these.
std::uint64_t markOf(std::uint64_t number) {
    number = (number + 1) * 0x9e3779b97f4a7c15U;
    number = (number ^ (number >> 30)) * 0xbf58476d1ce4e5b9U;
    number = (number ^ (number >> 27)) * 0x94d049bb133111ebU;
    return number ^ (number >> 31);
}

std::uint64_t rowsOf(const Candidate& pair) {
    return static_cast<std::uint64_t>(pair.first) << 32 | pair.second;
}

}  // namespace

std::array<std::uint32_t, 2> rowCounts(const std::vector<Candidate>& list, const Meter& meter) {
    std::array<std::uint32_t, 2> counts{0, 0};
    for (std::size_t i = 0; i < list.size(); ++i) {
        meter.pollAt(i);
        counts = {std::max(counts[0], list[i].first + 1), std::max(counts[1], list[i].second + 1)};
    }
    return counts;
}

double addTimes(double sum, double value, std::uint32_t count) {
    while (count > 16 && value > 0 && sum > 0) {
        // While the exponent stays, every addition adds the same; after a rounding of a half, from the third.
        sum += value;
        const double second = sum + value;
        const double third = second + value;
        const double step = third - second;
        if (step == 0.0 || !std::isfinite(third)) return third;
        count -= 3;
        const double end = std::ldexp(1.0, std::ilogb(sum) + 1);
        sum = third;
        const double steps = std::floor((end - third) / step) - 2;
        if (!(steps > 0)) continue;
        const auto taken = static_cast<std::uint32_t>(std::min<double>(steps, count));
        sum += step * taken;
        count -= taken;
    }
    for (; count != 0; --count) sum += value;
    return sum;
}

OpenPairs::OpenPairs(const std::vector<Candidate>& list, Meter& meter)
    : m_list(list), m_meter(meter), m_links(list.size()) {
    const auto rows = rowCounts(list, meter);
    for (const unsigned side : {0U, 1U}) m_rows[side].resize(rows[side]);
    addValues();

    // From the back, so that what is linked last stands first.
    for (auto pair = static_cast<Pair>(list.size()); pair-- > 0;) {
        auto& links = m_links[pair];
        links.next = m_front;
        links.previous = kNone;
        if (m_front != kNone) m_links[m_front].previous = pair;
        m_front = pair;
        for (const int side : {0, 1}) {
            auto& row = this->row(pair, side);
            links.nextOfRow[side] = row.front;
            links.previousOfRow[side] = kNone;
            if (row.front != kNone) m_links[row.front].previousOfRow[side] = pair;
            row.front = pair;
            row.open += mark(pair);
        }
        count(pair, 1);
        m_meter.spend(1);
    }
    for (const int side : {0, 1})
        for (const auto& row : m_rows[side])
            if (row.front != kNone) countBest(side, row, 1);
    addTwins();
    m_known.resize(std::min(kMostKnown, std::bit_ceil(list.size() + 1)));
}

void OpenPairs::addValues() {
    for (Pair pair = 0; pair < m_list.size(); ++pair) {
        const auto& [score, first, second] = m_list[pair];
        m_links[pair].row[0] = first;
        m_links[pair].row[1] = second;
        const double above = pair ? m_list[pair - 1].score : score;
        if (m_runs.empty() || !(std::abs(above - score) <= kTie))
            m_runs.push_back({score > 0 ? score : 0.0, markOf(m_list.size() + m_runs.size()), {0, 0}});
        if (m_values.empty() || !(above == score))
            m_values.push_back(
                {score, markOf(m_values.size()), static_cast<std::uint32_t>(m_runs.size() - 1), 0});
        m_links[pair].value = static_cast<std::uint32_t>(m_values.size() - 1);
        m_meter.spend(1);
    }
}

void OpenPairs::addTwins() {
    std::vector<Pair> lastOfSecond(m_rows[1].size(), kNone);
    for (const auto& row : m_rows[0])
        for (Pair pair = row.front; pair != kNone; pair = m_links[pair].nextOfRow[0]) {
            const Pair twin = std::exchange(lastOfSecond[m_links[pair].row[1]], pair);
            m_meter.spend(1);
            if (twin == kNone || m_links[twin].row[0] != m_links[pair].row[0]) continue;
            const auto [known, isNew] = m_twins.try_emplace(rowsOf(m_list[pair]), mark(twin));
            known->second += mark(pair);
        }
}

std::vector<OpenPairs::Pair> OpenPairs::rivals(Pair pair) const {
    std::vector<Pair> found;
    const double score = scoreOf(pair);
    const auto following = [&](Pair after, int side) {
        const Pair other = m_links[after].nextOfRow[side];
        return other != kNone && std::abs(score - scoreOf(other)) <= kTie ? other : kNone;
    };
    Pair ofRow[2] = {following(pair, 0), following(pair, 1)};
    while (ofRow[0] != kNone || ofRow[1] != kNone) {
        const Pair nearest = std::min(ofRow[0], ofRow[1]);
        if (ofRow[0] != ofRow[1]) found.push_back(nearest);  // else the same rows once more
        for (const int side : {0, 1})
            if (ofRow[side] == nearest) ofRow[side] = following(nearest, side);
    }
    return found;
}

void OpenPairs::count(Pair pair, int change) {
    auto& value = m_values[m_links[pair].value];
    value.open += static_cast<std::uint32_t>(change);
    m_open += static_cast<std::uint64_t>(change) * value.mark;
}

void OpenPairs::countBest(int side, const Row& row, int change) {
    auto& run = m_runs[m_values[m_links[row.front].value].run];
    run.rows[side] += static_cast<std::uint32_t>(change);
    m_best[side] += static_cast<std::uint64_t>(change) * run.mark;
}

void OpenPairs::choose(Pair pair) {
    m_closedBefore.push_back(m_closed.size());
    m_greedy.push_back(pair == m_front ? m_greedy.back() : kUnknown);
    m_scores.push_back(score() + scoreOf(pair));
    m_chosen.push_back(pair);
    for (const int side : {0, 1}) countBest(side, row(pair, side), -1);
    for (const int side : {0, 1})
        for (Pair each = row(pair, side).front; each != kNone; each = m_links[each].nextOfRow[side])
            if (side == 0 || m_links[each].row[0] != m_links[pair].row[0]) close(each, pair);
    m_meter.spend(m_closed.size() - m_closedBefore.back());
}

// The lists of the taken rows stay as they are; a pair leaves that of its other row.
void OpenPairs::close(Pair pair, Pair chosen) {
    auto& links = m_links[pair];
    m_closed.push_back(pair);
    count(pair, -1);
    (links.previous == kNone ? m_front : m_links[links.previous].next) = links.next;
    if (links.next != kNone) m_links[links.next].previous = links.previous;
    for (const int side : {0, 1}) {
        if (links.row[side] == m_links[chosen].row[side]) continue;
        auto& row = this->row(pair, side);
        row.open -= mark(pair);
        const Pair next = links.nextOfRow[side];
        const Pair previous = links.previousOfRow[side];
        if (next != kNone) m_links[next].previousOfRow[side] = previous;
        if (previous != kNone) {
            m_links[previous].nextOfRow[side] = next;
            continue;
        }
        countBest(side, row, -1);
        row.front = next;
        if (next != kNone) countBest(side, row, 1);
    }
}

void OpenPairs::takeBack() {
    const Pair chosen = m_chosen.back();
    m_meter.spend(m_closed.size() - m_closedBefore.back());
    for (; m_closed.size() > m_closedBefore.back(); m_closed.pop_back()) reopen(m_closed.back(), chosen);
    for (const int side : {0, 1}) countBest(side, row(chosen, side), 1);
    m_closedBefore.pop_back();
    m_greedy.pop_back();
    m_scores.pop_back();
    m_chosen.pop_back();
}

void OpenPairs::reopen(Pair pair, Pair chosen) {
    auto& links = m_links[pair];
    count(pair, 1);
    (links.previous == kNone ? m_front : m_links[links.previous].next) = pair;
    if (links.next != kNone) m_links[links.next].previous = pair;
    for (const int side : {0, 1}) {
        if (links.row[side] == m_links[chosen].row[side]) continue;
        auto& row = this->row(pair, side);
        row.open += mark(pair);
        const Pair next = links.nextOfRow[side];
        const Pair previous = links.previousOfRow[side];
        if (next != kNone) m_links[next].previousOfRow[side] = pair;
        if (previous != kNone) {
            m_links[previous].nextOfRow[side] = pair;
            continue;
        }
        if (next != kNone) countBest(side, row, -1);
        row.front = pair;
        countBest(side, row, 1);
    }
}

// A sum follows from where it starts and what is added: it is kept for the next time.
template <class Sum>
double OpenPairs::known(std::uint64_t set, double start, Sum sum) {
    auto& known = m_known[(set ^ std::bit_cast<std::uint64_t>(start) * 0x9e3779b97f4a7c15U) >> 32 &
                          (m_known.size() - 1)];
    if (!known.used || known.set != set || known.start != start) known = {set, start, sum(), true};
    return known.sum;
}

double OpenPairs::boundWith(Pair pair) {
    auto set = m_open - row(pair, 0).open - row(pair, 1).open + mark(pair);
    if (!m_twins.empty()) {
        const auto twins = m_twins.find(rowsOf(m_list[pair]));
        if (twins != m_twins.end()) set += twins->second - mark(pair);
    }
    const double start = score() + scoreOf(pair);
    return known(set, start, [&] {
        auto work = countAround(pair, -1);
        double sum = start;
        const auto from = m_links[m_front].value;
        for (auto value = from; value < m_values.size(); ++value)
            sum = addTimes(sum, m_values[value].score, m_values[value].open);
        work += countAround(pair, 1);
        m_meter.spend(work + m_values.size() - from);  // which may throw: not before all is as it was
        return sum;
    });
}

// Counts what choosing the open `pair` would close; returns the work that it was.
Meter::Work OpenPairs::countAround(Pair pair, int change) {
    Meter::Work work = 0;
    for (const int side : {0, 1})
        for (Pair each = row(pair, side).front; each != kNone; each = m_links[each].nextOfRow[side], ++work)
            if (side == 0 || m_links[each].row[0] != m_links[pair].row[0])
                m_values[m_links[each].value].open += static_cast<std::uint32_t>(change);
    return work;
}

double OpenPairs::greedyWith(Pair pair) {
    if (pair == m_front && !std::isnan(m_greedy.back())) return m_greedy.back();
    ++m_walk;
    double sum = score();
    Meter::Work work = 0;
    const auto take = [&](Pair each) {
        for (const int side : {0, 1}) row(each, side).walk = m_walk;
        sum += scoreOf(each);
    };
    take(pair);
    for (Pair each = m_front; each != kNone; each = m_links[each].next, ++work)
        if (row(each, 0).walk != m_walk && row(each, 1).walk != m_walk) take(each);
    m_meter.spend(work);
    if (pair == m_front) m_greedy.back() = sum;
    return sum;
}

// Largest first: rounded addition is monotone, so in this order no choice of pairs comes to more.
double OpenPairs::sumRuns(int side, double start) const {
    for (auto run = frontRun(); run < m_runs.size(); ++run)
        start = addTimes(start, m_runs[run].top, m_runs[run].rows[side]);
    return start;
}

double OpenPairs::ceilingWith(Pair pair) {
    double least[2];
    const double start = score() + scoreOf(pair);
    for (const int side : {0, 1}) {
        auto& run = m_runs[m_values[m_links[row(pair, side).front].value].run];
        least[side] = known(m_best[side] - run.mark, start, [&] {
            m_meter.spend(m_runs.size() - frontRun());
            --run.rows[side];
            const double sum = sumRuns(side, start);
            ++run.rows[side];
            return sum;
        });
    }
    return std::min(least[0], least[1]);
}

double OpenPairs::ceiling() {
    m_meter.spend(2 * (m_runs.size() - frontRun()));
    return std::min(sumRuns(0, score()), sumRuns(1, score()));
}

}  // namespace data_models2::results_comparer_algs
