// Writes a laid-out picture as SVG.
#pragma once

#include "cli/picture/layout.h"

#include <string>

namespace cli::picture {

std::string toSvg(const Picture& picture);

}  // namespace cli::picture
