// A comparison as an SVG picture: where each row stood and where it stands now.
#pragma once

#include "cli/chart_document.h"
#include "cli/comparison.h"
#include "cli/picture/picture.h"

#include <string>
#include <vector>

namespace cli {

struct RoofSet {
    std::string of;  // whose roofs, for the legend
    std::vector<Roof> roofs;
};

// One set of roofs, or the base's and the new result's where they differ. Pairs without both points are
// counted below the picture. `options.namedPoints` of the largest changes are named.
std::string drawComparison(const Comparison& comparison, const std::vector<RoofSet>& roofs,
                           const PictureOptions& options);

}  // namespace cli
