// The walk over the rows of a chart, the values of its records, and the range of its axes.
#include "roofline_model/unified/loops.h"
#include "roofline_model/unified/row_walk.h"

#include "tests/roofline_model/test_host.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace data_models2::test {
namespace {

std::string nameOf(const sptr_t<IDataset>& dataset, const sptr_t<RowNode>& row) {
    std::string name;
    dataset->getString(row, dataset->getColumn(FieldId::FunctionName), 0, name);
    return name;
}

// Rows with their parent's record as the handler saw them; "(name)" where only the filter did. A row named
// "lost" has no record, one named "filtered" is filtered out.
std::string walkOf(const sptr_t<IDataset>& dataset) {
    std::string seen;
    int records = 0;
    const auto filter = [&](const sptr_t<IDataset>& rows, const sptr_t<RowNode>& row) {
        seen += " (" + nameOf(rows, row) + ")";
        return nameOf(rows, row) != "filtered";
    };
    const auto handle = [&](const sptr_t<IDataset>& rows, const sptr_t<RowNode>& row, int parent) {
        const auto name = nameOf(rows, row);
        seen.resize(seen.rfind(' '));
        seen += fmt::format(" {}<{}", name, parent);
        return name == "lost" ? -1 : records++;
    };
    forEachDatasetRows4Loops(dataset, handle, filter);
    return seen;
}

TEST(RowWalk, GoesLevelByLevelAndLeavesOutWhatIsBelowASkippedRow) {
    EXPECT_EQ(walkOf(makeDataset(R"(
a
  c
    f
  -
  d type=0x2
    lost
b type=0x1F1
  e
    lost
      never
lost
  never
filtered
  never)")),
              " a<-1 b<-1 lost<-1 (filtered) c<0 (d) e<1 f<2 lost<3");
    for (const char* type : {"0x2", "0x4", "0x8", "0xE", "none"})
        EXPECT_EQ(walkOf(makeDataset("a type=" + std::string(type) + "\n  never")), " (a)") << type;
    EXPECT_EQ(walkOf(makeDataset("")) + walkOf(nullptr), "");
    forEachDatasetRows4Loops(makeDataset("a"), {}, {});
}

TEST(RowWalk, FindsAValueOnAnyRowThatIsNotSkippedItself) {
    EXPECT_TRUE(hasValue(makeDataset("a\n  b\n    c SelfTime=0"), FieldId::SelfTime));
    EXPECT_TRUE(hasValue(makeDataset("a type=0x8\n  b type=none\n    c SelfTime=0"), FieldId::SelfTime));
    EXPECT_FALSE(hasValue(makeDataset("a type=0x8 SelfTime=1\n  b type=none SelfTime=1"), FieldId::SelfTime));
    EXPECT_FALSE(hasValue(makeDataset("a SelfTime=1"), FieldId::TotalTime));
    EXPECT_FALSE(hasValue(nullptr, FieldId::SelfTime));
}

TEST(RowWalk, ReportsAnIteratorThatMisbehavesAndGoesOn) {
    Assertions assertions;
    int rows = 0;
    auto table = tableOf("a\nb");
    for (auto& row : table.rows) row.isBroken = true;
    forEachDatasetRows4Loops(new Dataset(table), [&](const auto&, const auto&, int) { return rows++; }, {});
    EXPECT_EQ(rows, 2);
    EXPECT_EQ(boost::join(assertions.reported, "\n"),
              "roofline_model/unified/row_walk: !children.isEnd()\nroofline_model/unified/row_walk: "
              "!children.isEnd()");
}

TEST(LoopRecord, HoldsAValueByItsKindAndTellsCoordinates) {
    constexpr double kMax = std::numeric_limits<double>::max();
    constexpr int kNecessary = param_type::kNecessary, kClean = param_type::kClean;
    const struct {
        variant_t value;
        int type;
        const char* json;
        double result;
        bool isComplete;
    } cases[]{
        {1.5, kNecessary, R"({"k":1.5})", 1.5, true},
        {std::nan(""), 0, "{}", -kMax, true},
        {HUGE_VAL, kNecessary, "{}", -kMax, false},
        {-kMax, kNecessary, "{}", -kMax, false},
        {variant_t(), 0, "{}", -kMax, true},
        {variant_t(), kNecessary, "{}", -kMax, false},
        {-5LL, 0, R"({"k":"-5"})", -kMax, true},  // long integers travel as text
        {4294967295u, 0, R"({"k":4294967295})", -kMax, true},
        {true, 0, "{}", -kMax, true},
        {7, kNecessary, "{}", -kMax, true},
        {7ULL, 0, "{}", -kMax, true},
        {2.5f, 0, "{}", -kMax, true},
        {"it's 'x'", 0, R"({"k":"it's 'x'"})", -kMax, true},
        {"it's 'x'", kClean | kNecessary, R"({"k":"it`s `x`"})", -kMax, true},
        {variant_t::literal("'"), kClean, R"({"k":"`"})", -kMax, true},
        {"", 0, R"({"k":""})", -kMax, true},
    };
    for (const auto& [value, type, json, result, isComplete] : cases) {
        CLoopInfo record;
        SCOPED_TRACE(fmt::format("kind {}: {}", value.kind(), toText(value)));
        EXPECT_EQ(record.set("k", value, type), result);
        EXPECT_EQ(rabbit::writeObject([&](rabbit::object& object) { record.toJSON(object); }), json);
        EXPECT_EQ(record.isComplete(), isComplete);
    }
    CLoopInfo record;
    EXPECT_FALSE(record.isValid()) << "nothing in it";
    for (const char* key : {"b", "c", "a", "b"}) record.set(key, key);
    record.set("i", -1);
    record.addChild(7);
    EXPECT_EQ(rabbit::writeObject([&](rabbit::object& object) { record.toJSON(object); }),
              R"({"a":"a","b":"b","c":"c","i":-1,"children":[7]})");
    EXPECT_EQ(record.getStringProperty("b"), "b");
    EXPECT_TRUE(record.getStringProperty("i").empty() && record.getStringProperty("z").empty() &&
                record.isValid());
}

TEST(ViewRect, IsExtendedByCompletePointsOnly) {
    constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
    const struct {
        const char* name;
        Coordinates coordinates;
        const char* bounds;  // x, then y
    } cases[]{
        {"a point", {{"x", 1}, {"y", 2}}, "1..1 2..2"},
        {"two points", {{"x", 1}, {"y", 2}, {"x1", -3}, {"y1", 7}}, "-3..1 2..7"},
        {"x alone", {{"x", 1}}, "empty"},
        {"partners of two points", {{"x", 1}, {"y1", 2}}, "empty"},
        {"a lone x1", {{"x", 1}, {"y", 2}, {"x1", 9}}, "1..1 2..2"},
        {"a lone y1", {{"x", 1}, {"y", 2}, {"y1", 9}}, "1..1 2..2"},
        {"not a number", {{"x", kNan}, {"y", 2}}, "empty"},
        {"infinite", {{"x", 1}, {"y", HUGE_VAL}}, "empty"},
        {"other names", {{"z", 1}, {"", 2}, {"xy", 1}}, "empty"},
    };
    for (const auto& [name, coordinates, bounds] : cases) {
        RooflineViewRect rect;
        updateViewRect(rect, coordinates);
        EXPECT_EQ(rect.isEmpty() ? "empty"
                                 : fmt::format("{}..{} {}..{}", rect.minX, rect.maxX, rect.minY, rect.maxY),
                  bounds)
            << name;
    }
    RooflineViewRect rect;
    EXPECT_TRUE(rect.isEmpty());
    updateViewRect(rect, 1.0, 2.0);
    updateViewRect(rect, kNan, 5.0);
    EXPECT_TRUE(!rect.isEmpty() && rect.minX == 1.0 && rect.maxX == 1.0 && rect.minY == 2.0 &&
                rect.maxY == 5.0);
}

}  // namespace
}  // namespace data_models2::test
