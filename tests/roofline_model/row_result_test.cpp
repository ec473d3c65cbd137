// The bags and the JSON text of one row: their numbers, their agreement, their empty forms.
#include "roofline_model/chart_widgets.h"
#include "roofline_model/translation.h"

#include "tests/roofline_model/row_test_host.h"

#include <climits>
#include <gtest/gtest.h>

#include <limits>

namespace data_models2 {
namespace {

using namespace row_test;
using roofline::translate;

constexpr double kInfinity = std::numeric_limits<double>::infinity();

// A level's point needs both counts, be it as 0.
const Cells kFloatCells =
    test::tableOf("loop SelfGFlops=10 SelfFloatAi=0.1 SelfFloatOps=20 SelfIntOps=0 SelfElapsedTime=2")
        .rows.front()
        .cells;
const Cells kIntCells =
    test::tableOf(
        "loop TotalGIntOps=10 TotalIntAi=0.1 TotalIntOps=20 TotalFloatOps=0 SelfIntOps=20 SelfElapsedTime=2")
        .rows.front()
        .cells;
const std::map<MemoryLevel, double> kFourLevels{
    {MemoryLevel::L1, 200.0}, {MemoryLevel::L2, 100.0}, {MemoryLevel::L3, 40.0}, {MemoryLevel::Dram, 20.0}};

template <class... Values>
std::string textOf(const char* id, const Values&... values) {
    return "\"" + translate(id, values...) + "\"";
}

TEST(RowResult, ValuesOfARowWithFourLevelsAreThoseWorkedOutByHand) {
    const auto engine = makeEngine({.cells = kFloatCells, .traffic = kFourLevels});
    ASSERT_TRUE(engine->isValid());
    auto values = valuesOf(engine->getRooflineData());
    // 10 GFLOP/s; 20 GFLOP over 200, 100, 40 and 20 GB; the DRAM point stands 10 GFLOP/s below its roof.
    const std::pair<const char*, double> numbers[]{
        {"rooflineGuidance.loops.2.x", -0.30103},
        {"rooflineGuidance.loops.3.y", 1.0},
        {"rooflineGuidance.loops.3.dataTransffered.val", 20.0},
        {"rooflineGuidance.bottleneck.loop.roof.val", 1.30103},
        {"rooflineGuidance.bottleneck.loop.crossingY", 1.30103},
        // 0.25 s, 0.25 s, 4/15 s and 1 s at the roofs' speed.
        {"memoryMetrics.metrics.0.metrics.3.val", 56.6038},
        {"memoryMetrics.metrics.1.metrics.2.val", 20.0},
        // 20 GB and 20 GFLOP in 2 s.
        {"opsAndBandwidth.roofs.0.value", 20.0},
        {"opsAndBandwidth.metrics.0.value", 10.0},
        {"opsAndBandwidth.metrics.0.children.1.value", 1.0},
        {"opsAndBandwidth.metrics.1.children.0.value", 20.0},
    };
    for (const auto& [path, number] : numbers)
        EXPECT_NEAR(std::stod(values[path]), number, std::abs(number) * 1e-5) << path;
    const std::pair<const char*, std::string> texts[]{
        {"rooflineGuidance.limitingRoof", "\"L3 Bandwidth\""},
        {"rooflineGuidance.roofs.1.isMem", "true"},
        {"rooflineGuidance.data.explanation.2", textOf("roofline_memory_self_expl")},
        {"opsAndBandwidth.roofs.0.details", textOf("roofline_summary_roof_descr", std::string("50"))},
        {"opsAndBandwidth.metrics.0.formattedValue", "\"10.00\""},
        {"opsAndBandwidth.metrics.0.roofId", "\"6\""},
        {"opsAndBandwidth.metrics.0.children.1.isDominatingOps", "true"},
        {"conclusions.0.params.roof", "\"DRAM Bandwidth\""},
        {"rooflineState.l3bandwidth.selected", "true"},
        // No integer operations, no metric; a level's own intensity has no roof.
        {"opsAndBandwidth.metrics.2.value", ""},
        {"opsAndBandwidth.metrics.0.children.1.roofId", ""},
    };
    for (const auto& [path, text] : texts) EXPECT_EQ(values[path], text) << path;

    auto bottleneck = valuesOf(engine->getBotteleneckVariantBag({"first", "second"}));
    EXPECT_EQ(bottleneck["loop.0.utilization.val"], "50");
    EXPECT_EQ(bottleneck["messages.0"] + bottleneck["messages.1"], "\"first\"\"second\"");
    const auto members = boost::join(test::membersOf(test::parse(engine->getRooflineData())), " ");
    EXPECT_EQ(members,
              "rooflineGuidance memoryMetrics opsAndBandwidth conclusions useZoneColoring rooflineState");
}

// All that the text says is in the bags too; the bags hold only these members more.
TEST(RowResult, BagsAndTextCarryTheSameValues) {
    const std::map<MemoryLevel, double> twoLevels{{MemoryLevel::L1, 200.0}, {MemoryLevel::Dram, 30.0}};
    const std::pair<const char*, RowCase> rows[]{
        {"float, four levels", {.cells = kFloatCells, .traffic = kFourLevels}},
        {"no levels", {.cells = kFloatCells}},
        {"integer, total", {.cells = kIntCells, .type = DataType::CpuTopDown, .traffic = kFourLevels}},
        {"two levels", {.cells = kIntCells, .traffic = twoLevels}},
        {"bound by no roof", {.cells = kFloatCells, .traffic = kFourLevels, .isBoundByFactor = true}},
    };
    for (const auto& [name, setup] : rows) {
        SCOPED_TRACE(name);
        const auto engine = makeEngine(setup);
        ASSERT_TRUE(engine->isValid());
        const auto document = test::parse(engine->getRooflineData());
        Values text;
        for (const auto& [path, value] : valuesOf(document["rooflineGuidance"])) {
            const bool isInBottleneck = path.starts_with("bottleneck.loop.");
            text[isInBottleneck              ? "bottleneck.loop.0." + path.substr(16)
                 : path.starts_with("data.") ? path.substr(5)
                                             : path] = value;
        }
        auto bag = valuesOf(engine->getRooflineVariantBag().find("data")->second);
        std::erase_if(bag, [](const auto& entry) {
            return entry.first == "bottleneck" ||  // an empty bag
                   entry.first.starts_with("bottleneck.messages") ||
                   entry.first.starts_with("bottleneck.loop.0.utilization");
        });
        EXPECT_EQ(bag, text);

        Values metrics = valuesOf(engine->getMemoryMetricsVariantBag());
        std::erase_if(metrics, [](const auto& entry) { return entry.first.starts_with("explanation"); });
        EXPECT_EQ(metrics, valuesOf(document["memoryMetrics"]));
    }
}

TEST(RowResult, ABoundThatIsNoRoofIsDrawnAsAFactor) {
    const auto engine = makeEngine({.cells = kFloatCells, .traffic = kFourLevels, .isBoundByFactor = true});
    const Values expected{
        // The first level's point: none of them stands below a roof of this bound.
        {"loop.0.name", "\"Latency\""},
        {"loop.0.roof.name", "\"Latency\""},
        {"loop.0.roof.val", "0"},
        {"loop.0.x", "-1"},
        {"loop.0.y", "1"},
        {"messages.0", textOf("roofline_bottleneck_performance_analysis_bounded_by", std::string("Latency"))},
    };
    EXPECT_EQ(valuesOf(engine->getBotteleneckVariantBag({})), expected);
}

TEST(RowResult, InvalidRowsGiveTheEmptyForms) {
    const auto emptyText = R"({"rooflineGuidance":{},"memoryMetrics":{},"opsAndBandwidth":{"mix":1},)"
                           R"("useZoneColoring":false,"rooflineState":{}})";
    Cells above = kFloatCells;
    above[FieldId::SelfFloatAi] = 1e-6;
    const std::tuple<const char*, RowCase, const char*> rows[]{
        {"no data", {}, "roofline_bottleneck_general_error"},
        {"above all roofs", {.cells = above}, "roofline_bottleneck_general_error"},
        {"refused", {.cells = kFloatCells, .isAccepted = false}, "roofline_bottleneck_no_stacks_error"},
    };
    for (const auto& [name, setup, message] : rows) {
        SCOPED_TRACE(name);
        const auto engine = makeEngine(setup);
        EXPECT_TRUE(engine->getRooflineVariantBag().empty());
        EXPECT_TRUE(engine->getMemoryMetricsVariantBag().empty());
        EXPECT_EQ(valuesOf(engine->getBotteleneckVariantBag({"more"})),
                  (Values{{"messages.0", textOf(message)}}));
        EXPECT_TRUE(engine->getRooflineConclusions().empty());
        EXPECT_EQ(engine->getRooflineData(), emptyText);
    }
}

TEST(RowResult, NothingBreaksWithoutOwnerArgumentsOrAnswers) {
    const test::Assertions quiet;
    const auto throwing = makeEngine({.cells = kFloatCells, .traffic = kFourLevels, .isThrowing = true});
    EXPECT_TRUE(test::parse(throwing->getRooflineData()).HasMember("rooflineState"));
    EXPECT_TRUE(throwing->getBotteleneckVariantBag({}).empty());
    const auto empty = std::make_shared<CRowRooflineEngine>(nullptr, nullptr, nullptr);
    EXPECT_FALSE(test::parse(empty->getRooflineData()).HasMember("conclusions"));
    EXPECT_EQ(CRowRooflineEngine(nullptr, nullptr, nullptr).getRooflineData(), "");
    EXPECT_EQ(quiet.reported.size(), 6u);
}

TEST(RowResult, NumbersThatAreNotFiniteOrFarOutStayWithinBounds) {
    using roofline::helpers::wholePercent;
    const std::tuple<double, double, int> percents[]{
        {1.0, 3.0, 33},        {-1.0, 3.0, -33},           {1.0, 0.0, 0},       {1.0, -1.0, 0},
        {1e300, 1.0, INT_MAX}, {-kInfinity, 1.0, INT_MIN}, {0.0, kInfinity, 0}, {kInfinity, kInfinity, 0}};
    for (const auto& [part, whole, percent] : percents)
        EXPECT_EQ(wholePercent(part, whole), percent) << part << " of " << whole;

    Cells cells = kFloatCells;
    cells[FieldId::GpuElapsedTime] = 4.0;
    cells[FieldId::OffloadElapsedTime] = 5.0;
    const std::tuple<DataType, double, double, const char*> rates[]{
        {DataType::Cpu, 20.0, 2.0, "10"},        {DataType::CpuTopDown, 20.0, 2.0, "10"},
        {DataType::Gpu, 20.0, 2.0, "5"},         {DataType::Offload, 20.0, 2.0, "4"},
        {DataType::Cpu, kInfinity, 2.0, "null"}, {DataType::Cpu, 20.0, 0.0, ""},
        {DataType::Cpu, 20.0, -1.0, ""},         {DataType::Cpu, 20.0, std::nan(""), ""}};
    for (const auto& [type, operations, time, rate] : rates) {
        cells[FieldId::SelfFloatOps] = operations;
        cells[FieldId::SelfElapsedTime] = time;
        if (type == DataType::Offload) cells[FieldId::TotalFloatOps] = operations;
        auto values = valuesOf(makeEngine({.cells = cells, .type = type})->getRooflineData());
        EXPECT_EQ(values["opsAndBandwidth.metrics.0.value"], rate) << static_cast<int>(type) << " " << time;
    }
}

}  // namespace
}  // namespace data_models2
