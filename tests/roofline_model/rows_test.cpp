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
}

TEST(LoopRecord, HoldsAValueByItsKindAndTellsCoordinates) {
    constexpr double kMax = std::numeric_limits<double>::max();
    constexpr int kNecessary = param_type::kNecessary, kClean = param_type::kClean;
    // The value, its type's bits, the record as JSON, the result, whether the record is complete.
    const std::tuple<variant_t, int, const char*, double, bool> cases[]{
        {1.5, kNecessary, R"({"k":1.5})", 1.5, true},
        {std::nan(""), 0, "{}", -kMax, true},
        {HUGE_VAL, kNecessary, "{}", -kMax, false},
        {variant_t(), kNecessary, "{}", -kMax, false},
        {-5LL, 0, R"({"k":"-5"})", -kMax, true},  // long integers travel as text
        {4294967295u, 0, R"({"k":4294967295})", -kMax, true},
        {7, kNecessary, "{}", -kMax, true},
        {"it's 'x'", 0, R"({"k":"it's 'x'"})", -kMax, true},
        {"it's 'x'", kClean | kNecessary, R"({"k":"it`s `x`"})", -kMax, true},
        {variant_t::literal("'"), kClean, R"({"k":"`"})", -kMax, true},
    };
    for (const auto& [value, type, json, result, isComplete] : cases) {
        CLoopInfo record;
        SCOPED_TRACE(fmt::format("kind {}: {}", value.kind(), toText(value)));
        EXPECT_EQ(record.set("k", value, type), result);
        EXPECT_EQ(rabbit::writeObject([&](rabbit::object& object) { record.toJSON(object); }), json);
        EXPECT_EQ(record.isComplete(), isComplete);
    }
    EXPECT_FALSE(CLoopInfo().isValid()) << "nothing in it";
}

TEST(ViewRect, IsExtendedByCompletePointsOnly) {
    const std::pair<Coordinates, const char*> cases[]{
        {{{"x", 1}, {"y", 2}}, "1..1 2..2"},
        {{{"x", 1}, {"y", 2}, {"x1", -3}, {"y1", 7}}, "-3..1 2..7"},
        {{{"x", 1}, {"y", 2}, {"x1", 9}}, "1..1 2..2"},
        {{{"x", 1}, {"y1", 2}}, "empty"},
        {{{"x", 1}, {"y", HUGE_VAL}}, "empty"},
        {{{"z", 1}, {"", 2}, {"xy", 1}}, "empty"}};
    for (const auto& [coordinates, bounds] : cases) {
        RooflineViewRect rect;
        updateViewRect(rect, coordinates);
        EXPECT_EQ(rect.isEmpty() ? "empty"
                                 : fmt::format("{}..{} {}..{}", rect.minX, rect.maxX, rect.minY, rect.maxY),
                  bounds);
    }
}

}  // namespace
}  // namespace data_models2::test
