// Where everything of the picture stands, in pixels: made of the chart's data, written out by svg.cpp.
#pragma once

#include "cli/picture/labels.h"
#include "cli/picture/picture.h"
#include "cli/picture/scales.h"

#include <string>
#include <vector>

namespace cli::picture {

struct Axis {
    std::vector<Tick> ticks;
    std::string caption;
};

struct RoofLine {
    Segment line;
    bool isMemory = false;
    bool isSelected = false;
    std::string hover;
    double value = 0.0;    // the higher, the sooner it is named
    bool isOther = false;  // of a second set of roofs
};

struct Mark {
    Point center;
    double radius = 0.0;
    std::string colour;
    std::string hover;
    bool isHollow = false;
};

// From where a row stood to where it stands.
struct Arrow {
    Segment line;
    std::string colour;
    std::string hover;
};

struct LegendRow {
    enum class Kind { Heading, Colour, Hollow, Arrow, Size, Total, Roof, OtherRoof, Text };
    Kind kind = Kind::Text;
    Point at;  // middle of the symbol's column; the text stands to the right
    std::string text;
    std::string colour;
    double radius = 0.0;
};

// All texts are clean; they are escaped on writing.
struct Picture {
    double width = 0.0, height = 0.0;
    std::string title, subtitle;
    Frame frame;
    Axis x, y;
    std::vector<RoofLine> roofs;
    std::vector<Segment> ties;  // between the points that one row has at several memory levels
    std::vector<Mark> marks;    // large ones first, so that none hides another
    bool isCrowded = false;     // marks are small and faint
    std::vector<Mark> totals;
    std::vector<Arrow> arrows;   // the most important last
    bool hasThinArrows = false;  // they lead to marks
    std::vector<Label> labels;
    std::vector<LegendRow> legend;
    std::vector<std::string> notes;    // lines under the chart
    std::vector<std::string> message;  // lines in the middle of an empty chart
};

inline constexpr double kTotalRadius = 9.0;

Picture layOut(const ChartDocument& document, const std::vector<Roof>& roofs,
               const std::vector<UnplacedRows>& unplaced, const PictureOptions& options);

}  // namespace cli::picture
