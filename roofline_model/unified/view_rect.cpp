#include "roofline_model/unified/view_rect.h"

#include <algorithm>
#include <cmath>

namespace data_models2 {

namespace {

void extend(double& lowest, double& highest, double value) {
    if (!std::isfinite(value)) return;
    lowest = std::min(lowest, value);
    highest = std::max(highest, value);
}

// Whether a coordinate of the axis `own` has its partner on the axis `other`.
bool isComplete(std::string_view name, const Coordinates& coordinates, char own, char other) {
    return name.starts_with(own) &&
           std::any_of(coordinates.begin(), coordinates.end(), [name, other](const auto& candidate) {
               return candidate.first.size() == name.size() && candidate.first.front() == other &&
                      std::equal(name.begin() + 1, name.end(), candidate.first.begin() + 1);
           });
}

}  // namespace

bool RooflineViewRect::isEmpty() const {
    constexpr RooflineViewRect kNew;
    return maxX == kNew.maxX || maxY == kNew.maxY || minX == kNew.minX || minY == kNew.minY;
}

void updateViewRect(RooflineViewRect& rect, double x, double y) {
    extend(rect.minX, rect.maxX, x);
    extend(rect.minY, rect.maxY, y);
}

void updateViewRect(RooflineViewRect& rect, const Coordinates& coordinates) {
    for (const auto& coordinate : coordinates) {
        if (isValidAiCoord(coordinate, coordinates))
            extend(rect.minX, rect.maxX, coordinate.second);
        else if (isValidPerfCoord(coordinate, coordinates))
            extend(rect.minY, rect.maxY, coordinate.second);
    }
}

bool isValidAiCoord(const Coordinates::value_type& coordinate, const Coordinates& coordinates) {
    return isComplete(coordinate.first, coordinates, 'x', 'y');
}

bool isValidPerfCoord(const Coordinates::value_type& coordinate, const Coordinates& coordinates) {
    return isComplete(coordinate.first, coordinates, 'y', 'x');
}

}  // namespace data_models2
