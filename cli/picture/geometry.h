// Points, lines and turned boxes on the screen. Pixels, y grows downwards, angles in radians, clockwise.
#pragma once

#include <array>

namespace cli::picture {

struct Point {
    double x = 0.0;
    double y = 0.0;
};

struct Segment {
    Point from, to;
};

struct Frame {
    double left = 0.0, top = 0.0, right = 0.0, bottom = 0.0;
};

// The room of a line of text.
struct Box {
    Point center;
    double halfWidth = 0.0;
    double halfHeight = 0.0;
    double angle = 0.0;
};

std::array<Point, 4> corners(const Box& box);
bool overlap(const Box& a, const Box& b);
bool crosses(const Segment& segment, const Box& box);
bool isInside(const Box& box, const Frame& frame);
// The nearest point of the box.
Point nearest(const Box& box, const Point& point);
Point pointAt(const Segment& segment, double part);

}  // namespace cli::picture
