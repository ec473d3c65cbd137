// Pairs of rows as an SVG picture: an arrow from the one point to the other, under roofs.
#pragma once

#include "cli/chart_document.h"
#include "cli/comparison.h"
#include "cli/picture/picture.h"

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace cli {

struct RoofSet {
    std::string of;  // whose roofs, for the legend
    std::vector<Roof> roofs;
};

// One kind of arrow, as the legend lists it.
struct ArrowStyle {
    std::string colour;
    std::string text;
};

// What the pairs of a picture mean.
struct PairLook {
    std::string heading;                // of the arrows in the legend
    std::string before, after;          // the two sides, where the mouse hovers
    std::string beforeOnly, afterOnly;  // rows of one side
    std::string intensity = "Arithmetic intensity";
    std::string operations = "OP";  // the unit of the axes
    std::string legendNote;         // below the arrows; empty: none
    std::vector<ArrowStyle> arrows;
    PairOrder order = PairOrder::Delta;  // the first ones lie on top and are named
    bool marksEnds = false;              // the point after is a mark of its own, larger than the one before
    std::function<std::size_t(const ComparedPair&)> arrowOf;  // one of `arrows`
    std::function<bool(const ComparedPair&)> isNamed;         // whether it deserves a name on the picture
    // Where the mouse hovers: behind a row's figures, and the pair's last line.
    std::function<std::string(const RowLine&)> remarkOf;
    std::function<std::string(const ComparedPair&)> lastLineOf;
};

// The roofs of a second set are told apart. Pairs without both points are counted below the picture.
// `options.namedPoints` pairs are named at most; `options.note` stands behind the counts.
std::string drawPairs(const Comparison& pairs, const std::vector<RoofSet>& roofs,
                      const PictureOptions& options, const PairLook& look);

}  // namespace cli
