// Two results side by side, as values: which row became which, and what the change did.
#pragma once

#include "host_interfaces/comparison.h"
#include "host_interfaces/progress.h"

#include "cli/row_lines.h"
#include "cli/session.h"

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace cli {

enum class Change { Faster, Slower, Noise, Unknown };
inline constexpr std::array<std::string_view, 4> kChangeNames{"faster", "slower", "noise", "unknown"};

// Times of rows, seconds. Only known ones, that is, not below 0.
struct Times {
    double before = 0.0;
    double after = 0.0;
    // Nothing where it isn't finite.
    std::optional<double> speedUp() const;
};

struct ComparedPair {
    double match = 0.0;  // percent, above 0 up to 100
    RowLine before;
    RowLine after;
    // Nothing when one of them isn't known.
    std::optional<Times> times() const;
    std::optional<double> speedUp() const;
    // The part by which the time rose, below 0 where it fell; infinite for a row that took no time before.
    std::optional<double> growth() const;
    bool hasBothPoints() const { return before.performance && after.performance; }
};

enum class PairOrder { Delta, Score, Time };

struct Comparison {
    std::vector<ComparedPair> pairs;             // every row at most once
    std::vector<RowLine> beforeOnly, afterOnly;  // rows without a partner, the longest first
    double noise = 5.0;                          // percent; smaller changes of time count as none

    Change changeOf(const ComparedPair& pair) const;
    std::size_t count(Change change) const;
    // Sums over the pairs with both times.
    Times pairTimes() const;
    std::size_t timedPairs() const;
    // Sums over all rows of each side.
    Times allTimes() const;
    // Of the pairs' speed-ups above 0.
    std::optional<double> meanSpeedUp() const;
};

// The rows that the library matches by `threshold` percent or more; with `isRoofline` only rows that have a
// point take part. Without matches when there are none or `progress` was cancelled.
data_models2::ComparisonData matchRows(const Session& before, const Session& after, double threshold,
                                       bool isRoofline, data_models2::IProgress& progress);
// Each result's rows with their self data, and what `matched` says of them, in the base's order.
Comparison makeComparison(const Session& before, const Session& after,
                          const data_models2::ComparisonData& matched, double noise);
// Largest first, stable: the change of time, faster or slower alike, the match, or the time before. Pairs
// without the value come last.
void sortPairs(std::vector<ComparedPair>& pairs, PairOrder order);

// What both sides share, or "before -> after" with "-" for what one of them lacks.
std::string bothOf(const std::string& before, const std::string& after);
// "name", or "name -> other name".
std::string nameOf(const ComparedPair& pair);

}  // namespace cli
