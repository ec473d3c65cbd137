// Finds free places for texts inside the chart's frame.
#pragma once

#include "cli/picture/geometry.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace cli::picture {

inline constexpr double kLabelSize = 12.0;  // font size

struct Label {
    enum class Kind { Roof, Point, Total };
    Kind kind = Kind::Roof;
    std::string text;
    Box box;
    std::optional<Segment> leader;  // from the mark to a label that stands off
};

// Keeps what is taken: no two boxes that it gave out overlap, and none crosses a leader line.
class LabelPlacer {
public:
    explicit LabelPlacer(const Frame& frame);

    // Things that a label had better not cover.
    void avoid(const Point& center, double radius);
    void avoid(const Segment& line);
    // Numbered from 0 in the order of the calls. No roof's label may cross a roof of the same kind, which
    // runs alongside it; a label across another kind of roof stays readable.
    void addRoof(const Segment& line, bool isMemory);

    // Along the roof's line, above or below it. `fromEnd`: start the search at the line's end, not its start.
    std::optional<Label> placeOnRoof(const std::string& text, std::size_t roof, bool fromEnd);
    // Around a mark.
    std::optional<Label> placeAtMark(const std::string& text, const Point& center, double radius,
                                     Label::Kind kind);

private:
    bool isFree(const Box& box) const;
    std::ptrdiff_t roofsCrossing(const Box& box, bool areMemory, std::size_t own) const;
    // The part of the box that covers marks, 0 to 1.
    double coverage(const Box& box) const;
    Label take(Label label);

    Frame m_frame;
    std::size_t m_columns, m_rows;
    std::vector<std::uint8_t> m_covered;  // a raster of the frame: 1 where a mark stands
    struct RoofSegment {
        Segment line;
        bool isMemory;
    };
    std::vector<RoofSegment> m_roofs;
    std::vector<Box> m_boxes;
    std::vector<Segment> m_leaders;
};

}  // namespace cli::picture
