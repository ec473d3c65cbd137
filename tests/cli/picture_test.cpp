// Properties of the picture that hold for every document.
#include "cli/picture/picture.h"

#include "cli/picture/layout.h"
#include "tests/cli/chart_texts.h"

#include <boost/property_tree/ptree.hpp>
#include <boost/property_tree/xml_parser.hpp>
#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <rapidcheck.h>

#include <algorithm>
#include <sstream>

namespace cli::picture {
namespace {

using test::documentText;
using test::Record;
using ::testing::HasSubstr;
using ::testing::Not;

boost::property_tree::ptree parseXml(const std::string& text) {
    boost::property_tree::ptree tree;
    std::istringstream stream(text);
    boost::property_tree::read_xml(stream, tree);
    return tree;
}

std::size_t countMarks(const boost::property_tree::ptree& tree) {
    std::size_t count = tree.get("<xmlattr>.class", "") == "mark" && tree.count("title") > 0;
    for (const auto& child : tree) count += countMarks(child.second);
    return count;
}

// Sparse and crowded charts, points that coincide, narrow and huge ranges, up to 12 roofs, some of them
// equal.
std::pair<std::string, std::string> anyChart() {
    const auto spread = *rc::gen::element(0, 1, 10, 300);
    const auto coordinate = rc::gen::map(
        rc::gen::inRange(-20, 21), [spread](int step) { return static_cast<double>(step * spread) / 20.0; });
    std::vector<Record> records;
    const auto count = *rc::gen::element(0, 1, 2, 9, 67, 700);
    for (int i = 0; i < count; ++i) {
        const bool isNextLevel = i > 0 && *rc::gen::inRange(0, 4) == 0;
        records.push_back({std::string(static_cast<std::size_t>(*rc::gen::inRange(0, 60)), 'W'), *coordinate,
                           *coordinate, *rc::gen::inRange(0, 1000) / 10.0, isNextLevel ? "DRAM-" : ""});
    }
    std::string roofs;
    const auto roofCount = *rc::gen::inRange(0, 13);
    for (int i = 0; i < roofCount; ++i)
        roofs += fmt::format(R"({}{{"name":"Roof {}","val":{}e8,"isMem":{},"measure":"G/s"}})", i ? "," : "",
                             i, *rc::gen::element(1, 2, 2, 3, 50, 100000), *rc::gen::arbitrary<bool>());
    return {documentText(records, 100.0, "L1-DRAM-"), '[' + roofs + ']'};
}

bool isInFrame(const Point& point, double radius, const Frame& frame) {
    return point.x - radius >= frame.left && point.x + radius <= frame.right &&
           point.y - radius >= frame.top && point.y + radius <= frame.bottom;
}

TEST(Picture, EverythingStaysInsideTheFrameAndNoLabelsOverlap) {
    EXPECT_TRUE(rc::check([] {
        const auto [documentText, roofsText] = anyChart();
        const auto document = parseChartDocument(documentText);
        const auto picture = layOut(document, parseRoofs(roofsText), {}, {});
        RC_ASSERT(picture.marks.size() == document.points.size());
        for (const auto& mark : picture.marks) RC_ASSERT(isInFrame(mark.center, mark.radius, picture.frame));
        for (const auto& total : picture.totals) RC_ASSERT(isInFrame(total.center, 0.0, picture.frame));
        for (const auto& roof : picture.roofs)
            RC_ASSERT(isInFrame(roof.line.from, -1e-6, picture.frame) &&
                      isInFrame(roof.line.to, -1e-6, picture.frame));
        for (std::size_t i = 0; i < picture.labels.size(); ++i) {
            const auto& label = picture.labels[i];
            RC_ASSERT(isInside(label.box, picture.frame));
            for (std::size_t j = 0; j < picture.labels.size(); ++j) {
                if (i == j) continue;
                const auto& other = picture.labels[j];
                RC_ASSERT(!overlap(label.box, other.box));
                RC_ASSERT(!(other.leader && crosses(*other.leader, label.box)));
            }
        }
        // Every roof is named, on its line or in the list beside the chart.
        for (const auto& roof : picture.roofs) {
            const auto names = [&](const auto& item) { return item.text == roof.hover; };
            const auto lists = [&](const LegendRow& row) {
                return names(row) || row.text.rfind("and ", 0) == 0;
            };
            RC_ASSERT((std::any_of(picture.legend.begin(), picture.legend.end(), lists) ||
                       std::any_of(picture.labels.begin(), picture.labels.end(), names)));
        }
    }));
}

TEST(Picture, IsWellFormedAndHasOneMarkARecord) {
    EXPECT_TRUE(rc::check([] {
        const auto [document, roofs] = anyChart();
        const auto tree = parseXml(drawChart(document, roofs, {}, {}));
        RC_ASSERT(countMarks(tree) == parseChartDocument(document).points.size());
    }));
}

TEST(Picture, HostileTextsStayTexts) {
    const std::string hostile = "</title><script>\"x\" & 'y'\x01\x1b[31m\xff\xed\xa0\x80\xef\xbf\xbe\n\x7f";
    PictureOptions options;
    options.title = options.subtitle = hostile;
    const auto svg =
        drawChart(documentText({{hostile, 0.0, 0.0}}, 1.0), test::kRoofs, {{hostile, 1}}, options);
    EXPECT_NO_THROW(parseXml(svg));
    EXPECT_THAT(svg, Not(HasSubstr("<script")));
    EXPECT_THAT(svg, HasSubstr("&lt;/title&gt;&lt;script&gt;&quot;x&quot; &amp; &#39;y&#39;[31m"));
    for (const char* unwanted : {"\x01", "\x1b", "\xff", "\xed\xa0\x80", "\xef\xbf\xbe", "\x7f"})
        EXPECT_THAT(svg, Not(HasSubstr(unwanted)));
}

TEST(Picture, AreaFollowsTheShareOfTime) {
    const auto document = parseChartDocument(
        documentText({{"all", 0.0, 0.0, 8.0}, {"quarter", 1.0, 0.0, 2.0}, {"none", 2.0, 0.0, 0.0}}, 10.0));
    const auto picture = layOut(document, {}, {}, {});
    EXPECT_DOUBLE_EQ(picture.marks[0].radius, 2.0 * picture.marks[1].radius);
    EXPECT_GT(picture.marks[2].radius, 0.0);
    EXPECT_THAT(picture.marks[1].hover, HasSubstr("Share of time: 20 %"));
}

TEST(Picture, TellsWhatIsMissing) {
    const auto svg = drawChart(documentText({{"a", 0.0, 0.0}, {"b", 0.0, 0.0}}, 1.0), "[]",
                               {{"no float operations", 11}, {"no traffic", 1}}, {});
    EXPECT_THAT(svg, HasSubstr("14 rows: 2 drawn, 12 not: 11 no float operations, 1 no traffic"));
    const auto empty = drawChart(R"({"noDataMessage":{"title":"No <data>","descr":"Measure again."}})",
                                 test::kRoofs, {}, {});
    EXPECT_THAT(empty, HasSubstr("No &lt;data&gt;"));
    EXPECT_THAT(empty, HasSubstr("Measure again."));
    EXPECT_THROW(drawChart("{", "[]", {}, {}), std::runtime_error);
}

TEST(Picture, TiesTheMemoryLevelsOfARow) {
    const auto document = parseChartDocument(
        documentText({{"a", 0.0, 0.0}, {"a", 1.0, 0.0, 1.0, "L2-"}, {"b", 2.0, 0.0}}, 3.0, "L1-L2-"));
    const auto picture = layOut(document, {}, {}, {});
    EXPECT_EQ(picture.ties.size(), 1u);
    EXPECT_EQ(document.levels(), (std::vector<std::string>{"L1", "L2"}));
    EXPECT_NE(picture.marks[0].colour, picture.marks[1].colour);
    EXPECT_EQ(document.rowCount(), 2u);
}

TEST(Geometry, TurnedBoxesOverlapWhereTheyMeet) {
    constexpr double kQuarter = M_PI / 4;
    const std::tuple<const char*, Box, Box, bool> rows[] = {
        {"edges touch", {{0, 0}, 10, 5, 0}, {{20, 0}, 10, 5, 0}, false},
        {"one inside the other", {{0, 0}, 10, 5, 0}, {{1, 1}, 2, 2, 1.0}, true},
        {"bounds overlap", {{0, 0}, 50, 4, kQuarter}, {{0, 15}, 50, 4, kQuarter}, false},
        {"too close", {{0, 0}, 50, 4, kQuarter}, {{0, 10}, 50, 4, kQuarter}, true},
        {"crossed", {{0, 0}, 50, 2, kQuarter}, {{0, 0}, 50, 2, -kQuarter}, true},
    };
    for (const auto& [name, a, b, expected] : rows) {
        EXPECT_EQ(overlap(a, b), expected) << name;
        EXPECT_EQ(overlap(b, a), expected) << name;
    }
    const Box box{{0, 0}, 10, 2, kQuarter};
    EXPECT_TRUE(crosses({{-20, 0}, {20, 0}}, box));
    EXPECT_FALSE(crosses({{-20, 0}, {-4, 0}}, box));
    EXPECT_TRUE(crosses({{-1, -1}, {1, 1}}, box));
}

}  // namespace
}  // namespace cli::picture
