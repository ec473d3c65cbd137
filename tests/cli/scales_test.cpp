// Ridges, roof ends and ticks, held against numbers worked out by hand.
#include "cli/picture/scales.h"

#include "tests/cli/chart_texts.h"

#include <gtest/gtest.h>

#include <cmath>

namespace cli::picture {
namespace {

std::vector<Roof> twoAndTwo() { return parseRoofs(test::kRoofs); }

TEST(Scales, RoofsMeetAtTheirRidges) {
    const auto roofs = twoAndTwo();
    const Ranges ranges{{-3.0, 3.0}, {-3.0, 3.0}};
    // 50 GFLOP/s over 100 and 10 GB/s: ridges at 0.5 and 5; 5 GFLOP/s over 100 GB/s: at 0.05. Both ends as
    // numbers, not logarithms.
    const std::tuple<const char*, Point, Point> rows[] = {{"L1 Bandwidth", {0.001, 0.1}, {0.5, 50.0}},
                                                          {"DRAM Bandwidth", {0.001, 0.01}, {5.0, 50.0}},
                                                          {"Vector Peak", {0.5, 50.0}, {1000.0, 50.0}},
                                                          {"Scalar Peak", {0.05, 5.0}, {1000.0, 5.0}}};
    for (std::size_t i = 0; i < roofs.size(); ++i) {
        const auto& [name, from, to] = rows[i];
        EXPECT_EQ(roofs[i].name, name);
        const auto span = roofSpan(roofs[i], roofs, ranges);
        for (const auto& [end, expected] : {std::pair(span.from, from), {span.to, to}}) {
            EXPECT_NEAR(end.x, std::log10(expected.x), 1e-12) << name;
            EXPECT_NEAR(end.y, std::log10(expected.y), 1e-12) << name;
        }
    }
}

TEST(Scales, TheFrameHoldsPointsAndRidges) {
    const auto document = parseChartDocument(test::documentText({{"a", -6.0, -2.0}, {"b", 7.0, 0.5}}, 2.0));
    const auto ranges = visibleRanges(document, twoAndTwo());
    EXPECT_LE(ranges.x.low, -6.0);
    EXPECT_GE(ranges.x.high, 7.0);
    EXPECT_LE(ranges.y.low, -2.0);
    EXPECT_GE(ranges.y.high, std::log10(50.0));
    // Without a point the ridges alone make the frame.
    const auto empty = visibleRanges(parseChartDocument("{}"), twoAndTwo());
    EXPECT_LE(empty.x.low, std::log10(0.05));
    EXPECT_GT(empty.x.high, std::log10(5.0));
    EXPECT_GE(visibleRanges(parseChartDocument("{}"), {}).x.span(), 1.5);
}

std::string tickTexts(const Range& range, double pixels) {
    std::string line;
    for (const auto& tick : ticks({range, 0.0, pixels}))
        if (!tick.text.empty()) line += tick.text + (tick.exponent.empty() ? "" : "^" + tick.exponent) + ' ';
    return line;
}

TEST(Scales, TicksNumberDecadesAsRoomAllows) {
    EXPECT_EQ(tickTexts({-2.0, 1.0}, 600.0), "0.01 0.1 1 10 ");
    EXPECT_EQ(tickTexts({3.5, 6.5}, 600.0), "10000 10^5 10^6 ");
    EXPECT_EQ(tickTexts({-0.5, 1.0}, 600.0), "0.5 1 2 5 10 ");
    EXPECT_EQ(tickTexts({0.0, 20.0}, 200.0), "1 10^5 10^10 10^15 10^20 ");
}

}  // namespace
}  // namespace cli::picture
