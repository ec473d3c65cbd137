// A projection as a table for people, as CSV and as JSON.
#pragma once

#include "cli/projection.h"

#include <string>

namespace cli {

struct ProjectionTableRequest {
    const Projection& projection;
    std::string measuredFile, measuredProgram, measuredMachine;  // empty: not known
    std::string targetFile, targetDevice, targetMachine;
    std::string operations;  // "float", "int" or "all"
};

// The pairs, their times, what bounds them, and how many rows have no partner.
std::string projectionText(const ProjectionTableRequest& request);
// A line a pair, then a line a row without a partner; "side" is both, measured or projected.
std::string projectionCsv(const ProjectionTableRequest& request);
// An object: "measured", "target", "operations", "rows", "measured_only", "projected_only", "totals".
std::string projectionJson(const ProjectionTableRequest& request);

// "56 rows with 412 s measured, 7.2 s projected, 57 times as fast"; of the pairs whose times are known.
std::string timesSentence(const Projection& projection);

}  // namespace cli
