// The range of a chart's axes, in logarithms.
#pragma once

#include <boost/container/flat_map.hpp>
#include <boost/container/small_vector.hpp>

#include <functional>
#include <limits>
#include <string_view>
#include <utility>

namespace data_models2 {

// A record's coordinates by name ("x", "y", "x1", "y1"), in name order: at most four, so a flat map. The
// names are literals of the parameter tables.
using Coordinates =
    boost::container::flat_map<std::string_view, double, std::less<>,
                               boost::container::small_vector<std::pair<std::string_view, double>, 4>>;

struct RooflineViewRect {
    double maxX = -std::numeric_limits<double>::max();
    double maxY = -std::numeric_limits<double>::max();
    double minX = std::numeric_limits<double>::max();
    double minY = std::numeric_limits<double>::max();

    // Whether any bound still has its first value.
    bool isEmpty() const;
};

// Extends the rectangle; a value that isn't finite extends nothing.
void updateViewRect(RooflineViewRect& rect, double x, double y);
// The same by the complete points of a record: "x" counts with "y", "x1" with "y1".
void updateViewRect(RooflineViewRect& rect, const Coordinates& coordinates);

bool isValidAiCoord(const Coordinates::value_type& coordinate, const Coordinates& coordinates);
bool isValidPerfCoord(const Coordinates::value_type& coordinate, const Coordinates& coordinates);

}  // namespace data_models2
