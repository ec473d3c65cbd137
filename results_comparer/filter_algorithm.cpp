#include "results_comparer/filter_algorithm.h"

#include "results_comparer/filter_search.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>
#include <utility>

namespace data_models2::results_comparer_algs {

namespace {

// Numbers rows in the order in which they are met.
class RowNumbers {
public:
    std::uint32_t operator()(const RowNode* row) {
        if (m_count != 0 && row == m_last.row) return m_last.number;
        if (2 * (m_count + 1) > m_slots.size()) grow();
        auto& slot = find(row);
        if (slot.number == kFree) slot = {row, m_count++};
        return (m_last = slot).number;
    }

private:
    static constexpr std::uint32_t kFree = OpenPairs::kNone;
    struct Slot {
        const RowNode* row = nullptr;
        std::uint32_t number = kFree;
    };

    Slot& find(const RowNode* row) {
        const auto spread = std::bit_cast<std::uintptr_t>(row) * std::uint64_t{0x9e3779b97f4a7c15U} >> 20;
        auto place = spread & (m_slots.size() - 1);
        while (m_slots[place].number != kFree && m_slots[place].row != row)
            place = (place + 1) & (m_slots.size() - 1);
        return m_slots[place];
    }
    void grow() {
        auto slots =
            std::exchange(m_slots, std::vector<Slot>(std::max<std::size_t>(1024, 4 * m_slots.size())));
        for (const auto& slot : slots)
            if (slot.number != kFree) find(slot.row) = slot;
    }

    std::vector<Slot> m_slots;
    std::uint32_t m_count = 0;
    Slot m_last;
};

struct Ranked {
    double score;
    std::uint32_t place;  // in the list as it came
};

// By falling score, equal ones as they came. What isn't a number goes last.
std::vector<Ranked> rank(const std::vector<RowMatchInfo>& matches, Meter& meter) {
    std::vector<Ranked> ranking;
    ranking.reserve(matches.size());
    for (const auto& match : matches) {
        meter.spend(1);
        ranking.push_back({std::isnan(match.score) ? -std::numeric_limits<double>::infinity() : match.score,
                           static_cast<std::uint32_t>(ranking.size())});
    }
    std::stable_sort(ranking.begin(), ranking.end(), [&](const Ranked& left, const Ranked& right) {
        meter.spend(1);
        return left.score > right.score;
    });
    return ranking;
}

std::vector<Candidate> candidatesOf(const std::vector<RowMatchInfo>& matches,
                                    const std::vector<Ranked>& ranking, Meter& meter) {
    std::vector<Candidate> numbered;
    numbered.reserve(matches.size());
    RowNumbers first, second;
    for (const auto& match : matches) {
        numbered.push_back({match.score, first(match.first.get()), second(match.second.get())});
        meter.spend(1);
    }
    std::vector<Candidate> candidates;
    candidates.reserve(matches.size());
    for (const auto& ranked : ranking) {
        candidates.push_back(numbered[ranked.place]);
        meter.spend(1);
    }
    return candidates;
}

// Polls nobody: an entry that was taken out must get into its place.
template <class Places>
void keepOnly(std::vector<RowMatchInfo>& matches, const Places& places) {
    std::vector<RowMatchInfo> kept;
    kept.reserve(places.size());
    for (const auto place : places) kept.push_back(std::move(matches[place]));
    matches = std::move(kept);
}

}  // namespace

bool CFilterAlgorithm::run(std::vector<RowMatchInfo>& matches, IProgress* progress) const {
    if (matches.empty() || (progress && progress->isCancelled())) return false;
    Meter meter(progress);
    std::vector<Ranked> ranking;
    try {
        ranking = rank(matches, meter);
    } catch (const Cancelled&) {
        return false;
    }
    std::vector<std::uint32_t> places;
    try {
        const auto allowance = m_allowance + m_perCandidate * matches.size();
        const auto best = chooseBest(candidatesOf(matches, ranking, meter), meter, allowance);
        for (const auto pair : best.chosen) places.push_back(ranking[pair].place);
    } catch (const Cancelled&) {
    }
    const bool isDone = !places.empty();
    if (!isDone)
        for (const auto& ranked : ranking) places.push_back(ranked.place);
    keepOnly(matches, places);
    return isDone;
}

}  // namespace data_models2::results_comparer_algs
