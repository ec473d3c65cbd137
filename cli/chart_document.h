// The library's chart document and roofs as values: what the table and the picture show.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace cli {

// One record of the chart. Coordinates are decimal logarithms of operations per byte and of giga operations
// per second.
struct ChartPoint {
    std::string id;  // of the row; a row has a record a memory level
    std::string name;
    std::string location;
    std::string type;
    std::string level;  // of memory; empty when the chart names none
    double x = 0.0;
    double y = 0.0;
    std::optional<double> seconds;
    std::optional<double> share;  // of the program's time, as a fraction
    std::optional<bool> vectorised;
};

struct ChartTotal {
    std::string name;
    std::string description;
    double x = 0.0;
    double y = 0.0;
};

struct ChartBounds {
    double minX, minY, maxX, maxY;
};

struct ChartDocument {
    std::string nameX, nameY, measureX, measureY;
    std::vector<ChartPoint> points;  // by share of time, descending, the unknown last
    std::vector<ChartTotal> totals;
    std::optional<ChartBounds> bounds;
    // Why there is no chart; empty when there is one.
    std::string noDataTitle, noDataDescription;
    bool hasData() const { return noDataTitle.empty() && noDataDescription.empty(); }
    // The distinct levels of the points, as they come.
    std::vector<std::string> levels() const;
    // The distinct rows of the points.
    std::size_t rowCount() const;
};

// One roof; `value` in bytes or operations per second, above 0.
struct Roof {
    std::string name;
    std::string measure;  // of `value` in giga units
    double value = 0.0;
    bool isMemory = false;
    bool isSelected = false;  // shown strongly
};

// Both throw std::runtime_error for a text that is no JSON; points and roofs that can't be drawn are left
// out. Total data wins over self data, as it does in the document.
ChartDocument parseChartDocument(const std::string& text);
std::vector<Roof> parseRoofs(const std::string& text);
// Marks the selected roofs and drops the hidden ones, by the library's text. An empty text selects the
// highest roof of each kind.
std::vector<Roof> chooseRoofs(std::vector<Roof> roofs, const std::string& selected);

}  // namespace cli
