// A comparison as tables for people, as CSV and as JSON.
#pragma once

#include "cli/comparison.h"

#include <string>

namespace cli {

// One of the two results, by name.
struct ComparedResult {
    std::string file;
    std::string program;
    std::string machine;  // empty: none
};

struct ComparisonTableRequest {
    const Comparison& comparison;  // sorted
    ComparedResult base, other;
    double threshold = 50.0;  // percent
    bool roofline = false;    // only rows with a point took part
};

std::string comparisonText(const ComparisonTableRequest& request);
// A line a pair, then a line a row without a partner.
std::string comparisonCsv(const ComparisonTableRequest& request);
// An object: the two results, what was chosen, "pairs", "base_only", "new_only" and "totals".
std::string comparisonJson(const ComparisonTableRequest& request);

}  // namespace cli
