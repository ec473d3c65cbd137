// The choice among candidate pairs against its literal form, cancelled anywhere, and short of work.
#include "results_comparer/exact_assignment.h"
#include "results_comparer/filter_algorithm.h"
#include "results_comparer/filter_search.h"
#include "tests/results_comparer/literal_filter.h"
#include "tests/roofline_model/test_host.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <limits>
#include <map>
#include <random>
#include <tuple>

namespace data_models2::results_comparer_algs {

namespace {

using Matches = std::vector<RowMatchInfo>;

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr int kLists = 400;
#else
constexpr int kLists = 2500;
#endif

// Of either side's 300 rows; `numberOf` reads the number back.
sptr_t<RowNode> row(int side, int number) {
    static const auto make = [] {
        return test::rowsOf(new test::Dataset({.rows = std::vector<test::TestRow>(300)}));
    };
    static const std::vector<sptr_t<RowNode>> rows[]{make(), make()};
    return rows[side].at(static_cast<std::size_t>(number));
}
std::uint32_t numberOf(const sptr_t<RowNode>& row) { return static_cast<std::uint32_t>(row->getId() - 1); }

Matches list(const std::vector<std::tuple<double, int, int>>& pairs) {
    Matches result;
    for (const auto& [score, first, second] : pairs) result.push_back({score, row(0, first), row(1, second)});
    return result;
}

// A pair a line: the score to the last bit, the rows.
std::string text(const Matches& matches) {
    std::string result;
    for (const auto& match : matches)
        result += fmt::format("{:a} {} {}\n", match.score, numberOf(match.first), numberOf(match.second));
    return result;
}

std::vector<Candidate> candidatesOf(const Matches& matches) {
    std::vector<Candidate> candidates;
    for (const auto& match : matches)
        candidates.push_back({match.score, numberOf(match.first), numberOf(match.second)});
    return candidates;
}

double total(const Matches& matches) {
    double sum = 0.0;
    for (const auto& match : matches) sum += match.score;
    return sum;
}

bool isOneToOne(const Matches& matches) {
    std::map<sptr_t<RowNode>, int> uses;
    for (const auto& match : matches)
        if (uses[match.first]++ != 0 || uses[match.second]++ != 0) return false;
    return true;
}

// Distinct scores, few values, values that no sum holds exactly, neighbours by an ulp, chains of ties, pairs
// that occur twice; any density, in any order.
Matches randomList(std::mt19937& random, int most) {
    const auto below = [&](int end) { return static_cast<int>(random() % static_cast<unsigned>(end)); };
    const int firsts = 1 + below(most), seconds = 1 + below(most);
    const int kind = below(6), density = 1 + below(10);
    const bool hasTwins = below(8) == 0;
    const double base = 50 + below(50) + below(1000) / 997.0;
    const auto score = [&] {
        const double scores[]{50 + below(1'000'000) / 2e4,
                              base,
                              base * (1 + below(3)),
                              60.0 + 5 * below(5),
                              std::nextafter(base + 5 * below(2), below(2) ? 0.0 : 200.0),
                              base + below(6) * 0.4e-6};
        return scores[kind];
    };
    Matches result;
    for (int first = 0; first < firsts; ++first)
        for (int second = 0; second < seconds; ++second)
            for (int times = below(10) < density ? 1 + (hasTwins && below(4) == 0) : 0; times != 0; --times)
                result.push_back({score(), row(0, first), row(1, second)});
    std::shuffle(result.begin(), result.end(), random);
    return result;
}

// Cancelled from the given poll on.
class Patience final : public DummyProgress {
public:
    explicit Patience(int polls) : m_polls(polls) {}
    bool isCancelled() const override { return m_polls-- <= 0; }

private:
    mutable int m_polls;
};

TEST(Filter, ChoosesWhatItsLiteralFormChooses) {
    std::mt19937 random(1);
    int finished = 0;
    for (int i = 0; i < kLists; ++i) {
        const auto candidates = randomList(random, i % 20 == 0 ? 12 : 8);
        auto expected = candidates, actual = candidates;
        LiteralFilter literal(4000);
        const bool isFound = literal.run(expected);
        ASSERT_EQ(CFilterAlgorithm().run(actual, nullptr), isFound);
        if (!literal.finished()) continue;
        ++finished;
        ASSERT_EQ(text(actual), text(expected)) << "list " << i << '\n' << text(candidates);
        for (const auto& left : candidates)
            ASSERT_TRUE(std::any_of(actual.begin(), actual.end(), [&](const auto& chosen) {
                return (chosen.first == left.first || chosen.second == left.second) &&
                       chosen.score >= left.score - 1e-6;
            })) << text({left});
    }
    EXPECT_GT(finished, kLists * 9 / 10);
}

TEST(Filter, ChoosesByHand) {
    using Pairs = std::vector<std::tuple<double, int, int>>;
    const std::tuple<const char*, Pairs, Pairs> cases[]{
        {"one pair", {{70, 0, 0}}, {{70, 0, 0}}},
        {"one row", {{60, 0, 0}, {80, 0, 1}, {70, 0, 2}}, {{80, 0, 1}}},
        {"alike", {{75, 0, 0}, {75, 0, 1}, {75, 1, 0}, {75, 1, 1}}, {{75, 0, 0}, {75, 1, 1}}},
        {"the first of equals closes both", {{75, 0, 0}, {75, 0, 1}, {75, 1, 0}}, {{75, 1, 0}, {75, 0, 1}}},
        {"a tie within 1e-6", {{75.0000009, 0, 0}, {75, 0, 1}, {75, 1, 0}}, {{75, 1, 0}, {75, 0, 1}}},
        {"no tie", {{75.0000011, 0, 0}, {75, 0, 1}, {75, 1, 0}}, {{75.0000011, 0, 0}}},
        {"a pair twice", {{75, 0, 0}, {75, 0, 0}, {60, 1, 1}}, {{75, 0, 0}, {60, 1, 1}}},
    };
    for (const auto& [what, pairs, chosen] : cases) {
        auto matches = list(pairs), expected = list(chosen);
        EXPECT_TRUE(CFilterAlgorithm().run(matches, nullptr)) << what;
        const auto byRow = [](const auto& a, const auto& b) { return a.first->getId() < b.first->getId(); };
        std::sort(matches.begin(), matches.end(), byRow);
        std::sort(expected.begin(), expected.end(), byRow);
        EXPECT_EQ(text(matches), text(expected)) << what;
    }
    Matches none;
    EXPECT_FALSE(CFilterAlgorithm().run(none, nullptr));
}

TEST(Filter, KeepsEveryEntryWhereverItIsCancelled) {
    std::mt19937 random(2);
    for (int i = 0; i < 20; ++i) {
        const auto candidates = randomList(random, 10);
        if (candidates.empty()) continue;
        auto sorted = candidates;
        std::stable_sort(sorted.begin(), sorted.end(), [](const auto& a, const auto& b) { return b < a; });
        for (const auto allowance : {CFilterAlgorithm::kAllowance, std::uint64_t{40}}) {
            const CFilterAlgorithm filter(allowance, 0);
            auto expected = candidates;
            filter.run(expected, nullptr);
            bool isDone = false;
            for (int polls = 0; !isDone; polls += 1 + polls / 8) {
                auto matches = candidates;
                Patience patience(polls);
                isDone = filter.run(matches, &patience);
                const auto& left = isDone ? expected : polls == 0 ? candidates : sorted;
                ASSERT_EQ(text(matches), text(left)) << polls << " polls of list " << i;
            }
        }
    }
}

TEST(Filter, CancelledInTheSortLeavesTheListAsItCame) {
    Matches matches;
    for (int i = 0; i < 5000; ++i)
        matches.push_back({50 + i * 7919 % 5003 * 0.01, row(0, i % 70), row(1, i / 70)});
    const auto before = text(matches);
    Patience patience(2);
    EXPECT_FALSE(CFilterAlgorithm().run(matches, &patience));
    EXPECT_EQ(text(matches), before);
}

TEST(Filter, ShortOfWorkReachesNoLessThanItsLiteralForm) {
    std::mt19937 random(3);
    for (int i = 0; i < kLists; ++i) {
        const auto candidates = randomList(random, 9);
        auto expected = candidates, actual = candidates;
        LiteralFilter(2000).run(expected);
        CFilterAlgorithm(std::uint64_t{1} << i % 14, 0).run(actual, nullptr);
        ASSERT_TRUE(isOneToOne(actual));
        // Differences below a tie are none.
        ASSERT_GE(total(actual), total(expected) - 1e-6) << "list " << i << '\n' << text(candidates);
    }
}

// One to one, with the work that it took.
Matches chosenFrom(const Matches& matches, Meter& meter, Meter::Work allowance) {
    Matches chosen;
    for (const auto place : chooseBest(candidatesOf(matches), meter, allowance).chosen)
        chosen.push_back(matches[place]);
    EXPECT_TRUE(isOneToOne(chosen));
    return chosen;
}

TEST(Filter, EndsOnHardTiesWithLittleMoreThanItIsAllowed) {
    constexpr Meter::Work kAllowance = 50'000;
    int unfinished = 0;
    for (const unsigned rows : {40U, 60U, 100U})
        for (unsigned seed = 1; seed <= 4; ++seed) {
            std::mt19937 random(seed);
            std::vector<std::tuple<double, int, int>> pairs;
            for (unsigned i = 0; i < rows * (1 + seed); ++i)
                pairs.emplace_back(75.0, random() % rows, random() % rows);
            auto expected = list(pairs);
            Meter meter(nullptr);
            const auto chosen = chosenFrom(expected, meter, kAllowance);
            LiteralFilter(100).run(expected);
            EXPECT_GE(total(chosen), total(expected)) << rows << " rows, seed " << seed;
            EXPECT_LT(meter.used(), 2 * kAllowance) << rows << " rows, seed " << seed;
            unfinished += meter.used() > kAllowance;
        }
    EXPECT_GT(unfinished, 4);
}

TEST(Filter, TakesATenthOfItsWorkForOrdinaryTies) {
    using Case = std::tuple<const char*, int, bool (*)(int first, int second)>;
    for (const auto& [what, rows, isThere] :
         {Case{"alike in three functions", 300, [](int i, int j) { return i / 100 == j / 100; }},
          Case{"all alike", 60, [](int, int) { return true; }},
          Case{"alike, some pairs missing", 60, [](int i, int j) { return (7 * i + 13 * j) % 5 != 0; }}}) {
        std::vector<std::tuple<double, int, int>> pairs;
        for (int i = 0; i < rows * rows; ++i)
            if (isThere(i / rows, i % rows)) pairs.emplace_back(66.6, i / rows, i % rows);
        Meter meter(nullptr);
        const auto allowance =
            CFilterAlgorithm::kAllowance + CFilterAlgorithm::kAllowancePerCandidate * pairs.size();
        EXPECT_EQ(chosenFrom(list(pairs), meter, allowance).size(), static_cast<std::size_t>(rows)) << what;
        EXPECT_LT(meter.used(), allowance / 10) << what;
    }
}

TEST(Filter, FindsPairsAlsoWhereNoneAddsToTheTotal) {
    for (const double score : {0.0, -5.0, std::numeric_limits<double>::quiet_NaN()}) {
        auto matches = list({{score, 0, 0}, {score, 0, 1}, {score, 1, 0}, {score, 1, 1}, {score, 2, 1}});
        EXPECT_TRUE(CFilterAlgorithm(1, 0).run(matches, nullptr)) << score;
        EXPECT_TRUE(isOneToOne(matches));
        EXPECT_EQ(matches.size(), 2U);
    }
}

TEST(Filter, AddsManyTimesAsIfOneByOne) {
    std::mt19937_64 random(4);
    for (int i = 0; i < 20'000; ++i) {
        const double start = std::ldexp(1.0 + static_cast<double>(random() % 1000) / 1000, i % 12 - 2);
        // Few bits, so that halves of the last place have to be rounded, or many.
        const auto bits = i % 3 ? random() >> 12 : random() % 64 * 2 + 1;
        const double value = std::ldexp(static_cast<double>(bits), i % 3 ? i % 60 - 104 : i % 5 - 52);
        const auto count = static_cast<std::uint32_t>(random() % 600);
        double expected = start;
        for (std::uint32_t times = 0; times < count; ++times) expected += value;
        ASSERT_EQ(addTimes(start, value, count), expected) << start << " + " << count << " x " << value;
    }
    constexpr double kMost = std::numeric_limits<double>::max(),
                     kEndless = std::numeric_limits<double>::infinity();
    EXPECT_EQ(addTimes(kMost, kMost, 20), kEndless);
    EXPECT_EQ(addTimes(kEndless, 1.0, 20), kEndless);
    EXPECT_EQ(addTimes(1.0, kEndless, 20), kEndless);
    EXPECT_EQ(addTimes(kMost, 1.0, 20), kMost);
}

TEST(ExactAssignment, HasTheLargestTotal) {
    std::mt19937 random(5);
    for (int i = 0; i < kLists; ++i) {
        const auto matches = randomList(random, 7);
        const auto candidates = candidatesOf(matches);
        // The best total by the set of second rows used, first row by first row.
        std::vector<double> best(128, 0.0);
        for (std::uint32_t first = 0; first < 7; ++first) {
            auto next = best;
            for (const auto& pair : candidates)
                for (std::size_t used = 0; used < best.size() && pair.first == first; ++used)
                    if (!(used >> pair.second & 1U))
                        next[used | std::size_t{1} << pair.second] =
                            std::max(next[used | std::size_t{1} << pair.second], best[used] + pair.score);
            best = next;
        }
        Matches chosen;
        for (const auto place : exactAssignment(candidates, Meter(nullptr))) chosen.push_back(matches[place]);
        ASSERT_TRUE(isOneToOne(chosen));
        ASSERT_NEAR(total(chosen), *std::max_element(best.begin(), best.end()), 1e-9) << text(matches);
    }
}

}  // namespace
}  // namespace data_models2::results_comparer_algs
