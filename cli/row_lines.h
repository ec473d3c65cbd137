// What the library says of each row, as values: the lines of `roofline rows`.
#pragma once

#include "cli/row_rooflines.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace cli {

// The doubt of a verdict that is of more than the row's own data.
inline constexpr auto kWithCallees = "with all that it calls";

// A roof over (or under) a point.
struct RoofOver {
    std::string name;
    double height = 0.0;    // at the point's intensity, giga operations per second
    double fraction = 0.0;  // of that height that the point reaches
};

// One memory level of a row.
struct LevelLine {
    std::string level;
    double traffic = 0.0;    // gigabytes
    double intensity = 0.0;  // operations per byte
    std::optional<RoofOver> roof;
    std::optional<double> trafficShare;  // of the largest traffic among the row's levels, a fraction
    std::optional<double> timeShare;     // of the row's memory time; not of a level above its roof
    bool isNearest = false;              // the row's nearest roof stands over this level's point
};

struct RowLine {
    std::string id;
    std::string name;
    std::string location;
    std::optional<double> seconds;
    std::optional<double> share;  // of the program's time, as a fraction
    std::string operations;       // "float", "int"; empty without a point
    // Operations per byte and giga operations per second; both or none.
    std::optional<double> intensity;
    std::optional<double> performance;
    std::optional<RoofOver> limit;         // of the total point
    std::string limitKind;                 // of that roof: "memory", "compute"; empty where not known
    std::optional<RoofOver> nearest;       // above any point of a memory level
    std::optional<RoofOver> underMemory;   // the highest memory roof, when no memory roof stands above
    std::optional<RoofOver> underCompute;  // the row's compute roof, when it doesn't stand above
    std::string cause;                     // why there is no point or no limit; empty when there is one
    std::string doubt;       // what to mind of a verdict: why details lack, or that callees are in it
    std::string levelCause;  // why a row with a point has no levels, though they were measured
    bool isValid = false;    // the library's own word
    std::vector<LevelLine> levels;

    // How much faster the row gets on the roof that limits it.
    std::optional<double> speedUp() const;
};

// The cause of a row without levels that lacks `what`.
std::string levelsNeed(std::string_view what);

enum class RowOrder { Time, Distance, Performance };

// Every row that a chart could draw, in the dataset's order.
std::vector<RowLine> readRows(const Session& session, const RowRooflines& rooflines);
// The same with the rows that no chart draws.
std::vector<RowLine> readAllRows(const Session& session, const RowRooflines& rooflines);
// Largest first, stable; lines without the value come last.
void sortLines(std::vector<RowLine>& lines, RowOrder order);

}  // namespace cli
