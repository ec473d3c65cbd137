// Overlap of turned boxes by separating axes.
#include "cli/picture/geometry.h"

#include <algorithm>
#include <cmath>

namespace cli::picture {
namespace {

// Into the box's own axes, its centre at the origin.
Point toLocal(const Box& box, const Point& point) {
    const double c = std::cos(box.angle), s = std::sin(box.angle);
    const double dx = point.x - box.center.x, dy = point.y - box.center.y;
    return {dx * c + dy * s, dy * c - dx * s};
}

Point toScreen(const Box& box, const Point& local) {
    const double c = std::cos(box.angle), s = std::sin(box.angle);
    return {box.center.x + local.x * c - local.y * s, box.center.y + local.x * s + local.y * c};
}

// Whether one of `a`'s two axes separates the boxes.
bool separates(const Box& a, const Box& b) {
    const auto others = corners(b);
    double minX = HUGE_VAL, maxX = -HUGE_VAL, minY = HUGE_VAL, maxY = -HUGE_VAL;
    for (const auto& corner : others) {
        const auto local = toLocal(a, corner);
        minX = std::min(minX, local.x), maxX = std::max(maxX, local.x);
        minY = std::min(minY, local.y), maxY = std::max(maxY, local.y);
    }
    return minX >= a.halfWidth || maxX <= -a.halfWidth || minY >= a.halfHeight || maxY <= -a.halfHeight;
}

}  // namespace

std::array<Point, 4> corners(const Box& box) {
    return {toScreen(box, {-box.halfWidth, -box.halfHeight}), toScreen(box, {box.halfWidth, -box.halfHeight}),
            toScreen(box, {box.halfWidth, box.halfHeight}), toScreen(box, {-box.halfWidth, box.halfHeight})};
}

bool overlap(const Box& a, const Box& b) { return !separates(a, b) && !separates(b, a); }

bool crosses(const Segment& segment, const Box& box) {
    const auto from = toLocal(box, segment.from), to = toLocal(box, segment.to);
    // The part of the segment that lies within both pairs of sides.
    double first = 0.0, last = 1.0;
    const auto clip = [&](double start, double step, double half) {
        if (step == 0.0) return std::abs(start) < half;
        const double a = (-half - start) / step, b = (half - start) / step;
        first = std::max(first, std::min(a, b));
        last = std::min(last, std::max(a, b));
        return first < last;
    };
    return clip(from.x, to.x - from.x, box.halfWidth) && clip(from.y, to.y - from.y, box.halfHeight);
}

bool isInside(const Box& box, const Frame& frame) {
    const auto all = corners(box);
    return std::all_of(all.begin(), all.end(), [&](const Point& corner) {
        return corner.x >= frame.left && corner.x <= frame.right && corner.y >= frame.top &&
               corner.y <= frame.bottom;
    });
}

Point nearest(const Box& box, const Point& point) {
    const auto local = toLocal(box, point);
    return toScreen(box, {std::clamp(local.x, -box.halfWidth, box.halfWidth),
                          std::clamp(local.y, -box.halfHeight, box.halfHeight)});
}

Point pointAt(const Segment& segment, double part) {
    return {segment.from.x + (segment.to.x - segment.from.x) * part,
            segment.from.y + (segment.to.y - segment.from.y) * part};
}

}  // namespace cli::picture
