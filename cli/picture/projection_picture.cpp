#include "cli/picture/projection_picture.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <map>

namespace cli {
namespace {

// Told apart by people with any kind of colour vision; the last one stands for all further bounds.
constexpr std::array<const char*, 6> kColours{"#0072B2", "#D55E00", "#009E73",
                                              "#CC79A7", "#E69F00", "#7F7F7F"};

// The arrow of each bound, the most frequent bound first.
std::map<std::string, std::size_t> arrowsOf(const Projection& projection, std::vector<ArrowStyle>& arrows) {
    std::map<std::string, std::size_t> places;
    for (const auto& [bound, count] : projection.boundCounts()) {
        places.emplace(bound, std::min(places.size(), kColours.size() - 1));
        if (arrows.size() < kColours.size())
            arrows.push_back({kColours[arrows.size()], boundText(bound)});
        else
            arrows.back().text = "others";
    }
    return places;
}

}  // namespace

std::string drawProjection(const Projection& projection, const std::vector<Roof>& roofs,
                           const PictureOptions& options, const std::string& unit) {
    PairLook look;
    look.heading = "Measured to projected, bound by";
    look.before = "measured", look.after = "projected";
    look.beforeOnly = "measured only", look.afterOnly = "projected only";
    look.intensity = "Arithmetic intensity over the traffic of the core";
    look.operations = unit;
    look.order = PairOrder::Time;
    look.marksEnds = true;
    look.legendNote = "dot: measured, disc: projected";
    const auto places = arrowsOf(projection, look.arrows);
    look.arrowOf = [&](const ComparedPair& pair) { return places.at(projection.boundOf(pair.after)); };
    look.isNamed = [](const ComparedPair&) { return true; };
    look.remarkOf = [](const RowLine&) { return std::string(); };
    look.lastLineOf = [&](const ComparedPair& pair) {
        return "Bound: " + boundText(projection.boundOf(pair.after));
    };
    return drawPairs(projection.rows, {{"", roofs}}, options, look);
}

}  // namespace cli
