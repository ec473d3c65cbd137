// The chart as an SVG picture.
#pragma once

#include "cli/unplaced_rows.h"

#include <cstddef>
#include <string>
#include <vector>

namespace cli {

struct PictureOptions {
    std::string title;
    std::string subtitle;
    std::string note;  // told under the chart behind the count of rows
    double width = 1200.0;
    double height = 800.0;
    std::string selectedRoofs;    // the library's text; empty: the highest of each kind
    std::size_t namedPoints = 8;  // how many of the longest-running rows are named where there is room
};

// `documentJson` and `roofsJson` as the library gives them; roofs that aren't selected are thin; `unplaced`
// is told under the chart. A document without data gives the roofs and the reason. Throws std::runtime_error
// for a text that is no JSON.
std::string drawChart(const std::string& documentJson, const std::string& roofsJson,
                      const std::vector<UnplacedRows>& unplaced, const PictureOptions& options);

}  // namespace cli
