// A projection as an SVG picture: each row where it was measured and where it would stand on the target.
#pragma once

#include "cli/picture/pair_picture.h"
#include "cli/projection.h"

#include <string>
#include <vector>

namespace cli {

// `roofs` are the target's. Arrows are grouped by what bounds the row there; the longest-running rows are
// named. `unit` of the operations, such as "FLOP".
std::string drawProjection(const Projection& projection, const std::vector<Roof>& roofs,
                           const PictureOptions& options, const std::string& unit);

}  // namespace cli
