// Ranges, ticks and ridges.
#include "cli/picture/scales.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <optional>

namespace cli::picture {
namespace {

constexpr double kSmallestSpan = 1.5;

// Giga units: the chart's own.
double height(const Roof& roof) { return std::log10(roof.value) - 9.0; }

std::optional<double> highest(const std::vector<Roof>& roofs, bool isMemory) {
    std::optional<double> found;
    for (const auto& roof : roofs)
        if (roof.isMemory == isMemory) found = std::max(found.value_or(height(roof)), height(roof));
    return found;
}

class Hull {
public:
    void take(double x, double y) { takeX(x), takeY(y); }
    void takeX(double value) { take(m_x, value); }
    void takeY(double value) { take(m_y, value); }
    bool hasX() const { return m_x.low <= m_x.high; }
    double lowX() const { return m_x.low; }
    Ranges ranges() const { return {widened(m_x, {-2.0, 2.0}), widened(m_y, {-1.0, 3.0})}; }

private:
    static void take(Range& range, double value) {
        range.low = std::min(range.low, value);
        range.high = std::max(range.high, value);
    }
    static Range widened(Range range, Range whenEmpty) {
        if (range.low > range.high) return whenEmpty;
        const double missing = std::max(0.0, kSmallestSpan - range.span());
        return {range.low - missing / 2, range.high + missing / 2};
    }

    Range m_x{HUGE_VAL, -HUGE_VAL};
    Range m_y{HUGE_VAL, -HUGE_VAL};
};

Tick decadeTick(double position, int exponent) {
    if (exponent < -3 || exponent > 4) return {position, "10", std::to_string(exponent), true};
    return {position, fmt::format("{:.{}f}", std::pow(10.0, exponent), std::max(0, -exponent)), "", true};
}

}  // namespace

double Scale::pixelsPerDecade() const { return std::abs(to - from) / range.span(); }

std::vector<Tick> ticks(const Scale& scale) {
    constexpr double kLabelRoom = 44.0, kMinorRoom = 45.0, kMinorTextRoom = 300.0;
    const double decade = scale.pixelsPerDecade();
    const int step = std::max(1, static_cast<int>(std::ceil(kLabelRoom / decade)));
    std::vector<Tick> result;
    for (int exponent = static_cast<int>(std::floor(scale.range.low)); exponent <= scale.range.high;
         ++exponent) {
        const auto add = [&](double value, Tick tick) {
            if (value >= scale.range.low && value <= scale.range.high) result.push_back(std::move(tick));
        };
        if (exponent % step == 0) add(exponent, decadeTick(scale.at(exponent), exponent));
        if (decade < kMinorRoom) continue;
        for (int digit = 2; digit <= 9; ++digit) {
            const double value = exponent + std::log10(digit);
            const bool hasText =
                decade > kMinorTextRoom && (digit == 2 || digit == 5) && std::abs(exponent) < 4;
            add(value, {scale.at(value), hasText ? fmt::format("{:g}", digit * std::pow(10.0, exponent)) : "",
                        "", false});
        }
    }
    return result;
}

double ridge(const Roof& memory, const Roof& compute) { return height(compute) - height(memory); }

Ranges visibleRanges(const ChartDocument& document, const std::vector<Roof>& roofs) {
    Hull hull;
    if (document.bounds) {
        hull.take(document.bounds->minX, document.bounds->minY);
        hull.take(document.bounds->maxX, document.bounds->maxY);
    }
    for (const auto& point : document.points) hull.take(point.x, point.y);
    for (const auto& total : document.totals) hull.take(total.x, total.y);

    const auto topMemory = highest(roofs, true), topCompute = highest(roofs, false);
    const double left = hull.hasX() ? hull.lowX() : 0.0;
    double right = -HUGE_VAL;
    for (const auto& roof : roofs) {
        const double value = height(roof);
        if (!roof.isMemory) {
            hull.takeY(value);
            if (topMemory) right = std::max(right, value - *topMemory), hull.takeX(value - *topMemory);
        } else if (topCompute) {
            right = std::max(right, *topCompute - value), hull.takeX(*topCompute - value);
        } else {
            hull.takeY(left + value);
        }
    }
    // Room for the horizontals right of the last ridge, and their labels.
    constexpr double kRoomRight = 0.25;
    if (std::isfinite(right)) hull.takeX(right + std::max(0.5, kRoomRight * (right - hull.lowX())));
    return hull.ranges();
}

Segment roofSpan(const Roof& roof, const std::vector<Roof>& roofs, const Ranges& ranges) {
    const double value = height(roof);
    const auto& [x, y] = ranges;
    if (!roof.isMemory) {
        const auto topMemory = highest(roofs, true);
        return {{topMemory ? std::max(x.low, value - *topMemory) : x.low, value}, {x.high, value}};
    }
    const auto topCompute = highest(roofs, false);
    const double end = std::min(x.high, topCompute.value_or(y.high) - value);
    const double start = std::min(end, std::max(x.low, y.low - value));
    return {{start, start + value}, {end, end + value}};
}

}  // namespace cli::picture
