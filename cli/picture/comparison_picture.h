// A comparison as an SVG picture: where each row stood and where it stands now.
#pragma once

#include "cli/picture/pair_picture.h"

#include <string>
#include <vector>

namespace cli {

// One set of roofs, or the base's and the new result's where they differ. The largest changes are named.
std::string drawComparison(const Comparison& comparison, const std::vector<RoofSet>& roofs,
                           const PictureOptions& options);

}  // namespace cli
