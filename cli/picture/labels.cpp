// Label placement: candidates in order of taste, the cheapest free one wins.
#include "cli/picture/labels.h"

#include "cli/text.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

namespace cli::picture {
namespace {

constexpr double kCell = 4.0;       // raster, pixels
constexpr double kGap = 4.0;        // between a label and its line or mark
constexpr double kCoverCost = 5.0;  // of a label that lies on marks, by the part of it
constexpr double kHalfHeight = kLabelSize * 0.62;

Box boxOf(const std::string& text, const Point& center, double angle = 0.0) {
    return {center, textWidth(text, kLabelSize) / 2 + 2.0, kHalfHeight, angle};
}

}  // namespace

LabelPlacer::LabelPlacer(const Frame& frame)
    : m_frame(frame),
      m_columns(static_cast<std::size_t>((frame.right - frame.left) / kCell) + 1),
      m_rows(static_cast<std::size_t>((frame.bottom - frame.top) / kCell) + 1),
      m_covered(m_columns * m_rows) {}

void LabelPlacer::avoid(const Point& center, double radius) {
    const auto cell = [](double value, double origin, std::size_t count) {
        return static_cast<std::size_t>(
            std::clamp((value - origin) / kCell, 0.0, static_cast<double>(count - 1)));
    };
    const auto top = cell(center.y - radius, m_frame.top, m_rows);
    const auto bottom = cell(center.y + radius, m_frame.top, m_rows);
    const auto left = cell(center.x - radius, m_frame.left, m_columns);
    const auto right = cell(center.x + radius, m_frame.left, m_columns);
    for (auto row = top; row <= bottom; ++row)
        std::fill_n(m_covered.begin() + static_cast<std::ptrdiff_t>(row * m_columns + left), right - left + 1,
                    std::uint8_t{1});
}

void LabelPlacer::avoid(const Segment& line) {
    const double size = std::hypot(line.to.x - line.from.x, line.to.y - line.from.y);
    for (double along = 0.0; along < size; along += kCell) avoid(pointAt(line, along / size), 0.0);
}

void LabelPlacer::addRoof(const Segment& line, bool isMemory) { m_roofs.push_back({line, isMemory}); }

bool LabelPlacer::isFree(const Box& box) const {
    return isInside(box, m_frame) &&
           std::none_of(m_boxes.begin(), m_boxes.end(),
                        [&](const Box& other) { return overlap(box, other); }) &&
           std::none_of(m_leaders.begin(), m_leaders.end(),
                        [&](const Segment& leader) { return crosses(leader, box); });
}

std::ptrdiff_t LabelPlacer::roofsCrossing(const Box& box, bool areMemory, std::size_t own) const {
    return std::count_if(m_roofs.begin(), m_roofs.end(), [&](const RoofSegment& roof) {
        return roof.isMemory == areMemory && &roof != m_roofs.data() + own && crosses(roof.line, box);
    });
}

double LabelPlacer::coverage(const Box& box) const {
    const double c = std::cos(box.angle), s = std::sin(box.angle);
    const int along = std::max(1, static_cast<int>(box.halfWidth / kCell));
    int covered = 0, all = 0;
    for (int i = -along; i <= along; ++i)
        for (int j = -1; j <= 1; ++j, ++all) {
            const double u = box.halfWidth * i / along, v = box.halfHeight * j;
            const double x = box.center.x + u * c - v * s, y = box.center.y + u * s + v * c;
            if (x < m_frame.left || x > m_frame.right || y < m_frame.top || y > m_frame.bottom) continue;
            covered += m_covered[static_cast<std::size_t>((y - m_frame.top) / kCell) * m_columns +
                                 static_cast<std::size_t>((x - m_frame.left) / kCell)];
        }
    return static_cast<double>(covered) / all;
}

Label LabelPlacer::take(Label label) {
    m_boxes.push_back(label.box);
    if (label.leader) m_leaders.push_back(*label.leader);
    return label;
}

std::optional<Label> LabelPlacer::placeOnRoof(const std::string& text, std::size_t roof, bool fromEnd) {
    const bool isMemory = m_roofs.at(roof).isMemory;
    auto line = m_roofs[roof].line;
    if (fromEnd) std::swap(line.from, line.to);
    const double dx = line.to.x - line.from.x, dy = line.to.y - line.from.y, size = std::hypot(dx, dy);
    const double angle = std::atan2(fromEnd ? -dy : dy, fromEnd ? -dx : dx);
    const auto sample = boxOf(text, {}, angle);
    const Point up{std::sin(angle), -std::cos(angle)};

    constexpr double kStep = 6.0, kFarCost = 0.3, kRoofCost = 0.2;
    // Between diagonals a label below its own line reads as the next one's.
    const double belowCost = isMemory ? 0.5 : 0.1;
    std::optional<Label> best;
    double bestCost = HUGE_VAL;
    for (double along = sample.halfWidth + kGap; along <= size - sample.halfWidth; along += kStep)
        for (const double side : {1.0, -1.0}) {
            const auto foot = pointAt(line, along / size);
            const double off = side * (kHalfHeight + kGap / 2);
            auto box = sample;
            box.center = {foot.x + up.x * off, foot.y + up.y * off};
            const double place = kFarCost * along / size + (side > 0 ? 0.0 : belowCost);
            if (place >= bestCost || !isFree(box) || roofsCrossing(box, isMemory, roof) > 0) continue;
            const auto crossed = static_cast<double>(roofsCrossing(box, !isMemory, roof));
            const double cost = place + kCoverCost * coverage(box) + kRoofCost * crossed;
            if (cost < bestCost) best = Label{Label::Kind::Roof, text, box, {}}, bestCost = cost;
        }
    return best ? std::optional(take(*best)) : std::nullopt;
}

std::optional<Label> LabelPlacer::placeAtMark(const std::string& text, const Point& center, double radius,
                                              Label::Kind kind) {
    constexpr int kDirections = 16;
    constexpr std::array<double, 6> kDistances{3.0, 12.0, 26.0, 44.0, 66.0, 92.0};
    const auto none = m_roofs.size();
    constexpr double kLeaderFrom = 10.0, kDistanceCost = 0.08, kRoofCost = 0.35, kTooCovered = 0.5;
    const auto sample = boxOf(text, {});
    std::optional<Label> best;
    double bestCost = HUGE_VAL;
    for (std::size_t i = 0; i < kDistances.size(); ++i)
        for (int direction = 0; direction < kDirections; ++direction) {
            const double angle = 2 * M_PI * direction / kDirections, c = std::cos(angle), s = std::sin(angle);
            const double distance = radius + kDistances[i];
            auto box = sample;
            box.center = {center.x + c * (distance + box.halfWidth),
                          center.y + s * (distance + box.halfHeight)};
            if (!isFree(box)) continue;
            const double covered = coverage(box);
            const double cost =
                kCoverCost * covered + kDistanceCost * static_cast<double>(i) + 0.002 * direction +
                kRoofCost *
                    static_cast<double>(roofsCrossing(box, true, none) + roofsCrossing(box, false, none));
            if (covered > kTooCovered || cost >= bestCost) continue;
            Label label{kind, text, box, {}};
            if (kDistances[i] > kLeaderFrom) {
                const auto end = nearest(box, center);
                const double length = std::hypot(end.x - center.x, end.y - center.y);
                label.leader = Segment{pointAt({center, end}, std::min(1.0, radius / length)), end};
                if (std::any_of(m_boxes.begin(), m_boxes.end(),
                                [&](const Box& other) { return crosses(*label.leader, other); }))
                    continue;
            }
            best = std::move(label), bestCost = cost;
        }
    return best ? std::optional(take(*best)) : std::nullopt;
}

}  // namespace cli::picture
