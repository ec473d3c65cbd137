// What long work asks as it goes on: may it, and is there still work to spend?
#pragma once

#include "host_interfaces/progress.h"

#include <cstddef>
#include <cstdint>
#include <limits>

namespace data_models2::results_comparer_algs {

// Thrown through the work; whoever began it says what stands then.
struct Cancelled {};
struct WorkSpent {};

// Work is counted and not timed, so that the same list has the same outcome everywhere. A unit is one pair
// closed, walked over or added: some nanoseconds.
class Meter {
public:
    using Work = std::uint64_t;
    static constexpr Work kEndless = std::numeric_limits<Work>::max();

    explicit Meter(const IProgress* progress) : m_progress(progress) {}

    void poll() const {
        if (m_progress && m_progress->isCancelled()) throw Cancelled{};
    }
    // For step `i` of a loop that isn't counted.
    void pollAt(std::size_t i) const {
        if (i % kPollEvery == 0) poll();
    }
    void spend(Work work) {
        m_used += work;
        if (m_used >= m_nextPoll) poll(), m_nextPoll = m_used + kPollEvery;
        if (m_used > m_limit) throw WorkSpent{};
    }
    Work used() const { return m_used; }

    // Lets `run` spend so much, and what it may spend afterwards is as before. Limits nest: the nearest
    // counts.
    template <class Run>
    auto within(Work allowance, Run run) {
        const Work outer = m_limit;
        m_limit = allowance > kEndless - m_used ? kEndless : m_used + allowance;
        struct Restore {
            Work& limit;
            Work value;
            ~Restore() { limit = value; }
        } const restore{m_limit, outer};
        return run();
    }

private:
    static constexpr Work kPollEvery = 4096;

    const IProgress* m_progress;
    Work m_used = 0;
    Work m_nextPoll = kPollEvery;
    Work m_limit = kEndless;
};

}  // namespace data_models2::results_comparer_algs
