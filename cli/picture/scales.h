// Logarithmic axes: ranges, ticks, and where roofs run between them.
#pragma once

#include "cli/chart_document.h"
#include "cli/picture/geometry.h"

#include <string>
#include <vector>

namespace cli::picture {

// Decimal logarithms.
struct Range {
    double low = 0.0;
    double high = 0.0;
    double span() const { return high - low; }
};

struct Scale {
    Range range;
    double from = 0.0;  // pixel of range.low
    double to = 0.0;    // pixel of range.high
    double at(double value) const { return from + (value - range.low) / range.span() * (to - from); }
    double pixelsPerDecade() const;
};

struct Tick {
    double position = 0.0;  // pixels
    std::string text;       // empty: a line without a number
    std::string exponent;   // stands raised behind the text
    bool isDecade = false;
};

struct Ranges {
    Range x, y;
};

std::vector<Tick> ticks(const Scale& scale);

// The decimal logarithm of the intensity at which the memory roof reaches the compute roof.
double ridge(const Roof& memory, const Roof& compute);
// What the frame must hold: points, totals, the document's bounds and every ridge. At least 1.5 decades.
Ranges visibleRanges(const ChartDocument& document, const std::vector<Roof>& roofs);
// A roof between its ends, in logarithms: a memory roof rises up to its ridge with the highest compute roof,
// a compute roof starts at its ridge with the highest memory roof. Clipped to `ranges`.
Segment roofSpan(const Roof& roof, const std::vector<Roof>& roofs, const Ranges& ranges);

}  // namespace cli::picture
