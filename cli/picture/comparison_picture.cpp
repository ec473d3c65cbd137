// What arrows and colours mean where two results are compared.
#include "cli/picture/comparison_picture.h"

#include "cli/text.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cstddef>

namespace cli {
namespace {

struct ChangeStyle {
    Change change;
    const char* colour;
    const char* text;
};
// As the legend lists them. Told apart by people with any kind of colour vision.
constexpr std::array<ChangeStyle, 4> kChanges{{{Change::Slower, "#D55E00", "slower"},
                                               {Change::Faster, "#0072B2", "faster"},
                                               {Change::Noise, "#7F7F7F", "within {} %"},
                                               {Change::Unknown, "#B4BCC5", "time unknown"}}};

std::string limitOf(const RowLine& row) { return ", limit: " + (row.limit ? row.limit->name : "N/A"); }

std::string matchOf(const ComparedPair& pair) { return fmt::format("Match: {} %", shortNumber(pair.match)); }

}  // namespace

std::string drawComparison(const Comparison& comparison, const std::vector<RoofSet>& roofs,
                           const PictureOptions& options) {
    PairLook look;
    look.heading = "Base to new, by time";
    look.before = "base", look.after = "new";
    look.beforeOnly = "base only", look.afterOnly = "new only";
    for (const auto& each : kChanges)
        look.arrows.push_back(
            {each.colour, fmt::format(fmt::runtime(each.text), shortNumber(comparison.noise))});
    look.arrowOf = [&](const ComparedPair& pair) {
        const auto change = comparison.changeOf(pair);
        const auto found = std::find_if(kChanges.begin(), kChanges.end(),
                                        [change](const ChangeStyle& each) { return each.change == change; });
        return static_cast<std::size_t>(found - kChanges.begin());
    };
    look.isNamed = [&](const ComparedPair& pair) { return comparison.changeOf(pair) != Change::Noise; };
    look.remarkOf = limitOf;
    look.lastLineOf = matchOf;
    return drawPairs(comparison, roofs, options, look);
}

}  // namespace cli
