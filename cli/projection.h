// A measured result beside a projection of it: which row became what on the target.
#pragma once

#include "cli/comparison.h"
#include "cli/kinds.h"
#include "cli/session.h"

#include <cstddef>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace cli {

// Rows are one another's by their ids alone. Lines hold what a row does itself: names, time, and the point
// over the traffic of the core, which every row has; `cause` says what a row without a point lacks. What
// limits a row isn't asked.
struct Projection {
    Comparison rows;  // before: measured, after: on the target; the longest-running first
    std::map<std::string, std::string> bounds;  // by id: what the projection recorded as weightiest
    std::size_t renamed = 0;                    // pairs whose names differ

    // Empty where none was recorded.
    const std::string& boundOf(const RowLine& row) const;
    // How many pairs have which bound, the most frequent first.
    std::vector<std::pair<std::string, std::size_t>> boundCounts() const;
};

// `operations` of the measured result, as a configuration has them.
Projection makeProjection(const Session& measured, const Session& target, const std::string& operations);

// "HBM bandwidth" of "HBM_BW"; "unknown" of nothing.
std::string boundText(const std::string& bound);

}  // namespace cli
