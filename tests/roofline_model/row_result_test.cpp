// The bags and the JSON text of one row: their numbers, their agreement, their empty forms.
#include "embedded_host/embedded_host.h"

#include "roofline_model/chart_widgets.h"
#include "roofline_model/json_dumps.h"
#include "roofline_model/roofline_summary.h"
#include "roofline_model/translation.h"

#include "tests/roofline_model/row_test_host.h"

#include <climits>
#include <fmt/format.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <limits>

namespace data_models2 {
namespace {

using namespace row_test;
using roofline::translate;

constexpr double kInfinity = std::numeric_limits<double>::infinity();

// A level's point needs both counts, be it as 0.
const Cells kFloatCells{{FieldId::FunctionName, "loop"}, {FieldId::SelfGFlops, 10.0},
                        {FieldId::SelfFloatAi, 0.1},     {FieldId::SelfFloatOps, 20.0},
                        {FieldId::SelfIntOps, 0.0},      {FieldId::SelfElapsedTime, 2.0}};
const Cells kIntCells{{FieldId::FunctionName, "loop"}, {FieldId::TotalGIntOps, 10.0},
                      {FieldId::TotalIntAi, 0.1},      {FieldId::TotalIntOps, 20.0},
                      {FieldId::TotalFloatOps, 0.0},   {FieldId::SelfIntOps, 20.0},
                      {FieldId::SelfElapsedTime, 2.0}};
const std::map<MemoryLevel, double> kFourLevels{
    {MemoryLevel::L1, 200.0}, {MemoryLevel::L2, 100.0}, {MemoryLevel::L3, 40.0}, {MemoryLevel::Dram, 20.0}};

rapidjson::Document parse(const std::string& text) {
    rapidjson::Document document;
    document.Parse<rapidjson::kParseFullPrecisionFlag>(text.c_str());
    EXPECT_FALSE(document.HasParseError()) << text;
    return document;
}

std::string textOf(const char* id) { return "\"" + translate(id) + "\""; }

std::string approx(const std::string& number) { return fmt::format("{:.5g}", std::stod(number)); }

TEST(RowResult, NumbersOfARowWithFourLevelsAreThoseWorkedOutByHand) {
    const auto engine = makeEngine({.cells = kFloatCells, .traffic = kFourLevels});
    ASSERT_TRUE(engine->isValid());
    auto values = valuesOf(parse(engine->getRooflineData()));
    // 10 GFLOP/s; 20 GFLOP over 200, 100, 40 and 20 GB; the DRAM point stands 10 GFLOP/s below its roof.
    const std::pair<const char*, const char*> numbers[]{
        {"rooflineGuidance.loops.0.x", "-1"},
        {"rooflineGuidance.loops.2.x", "-0.30103"},
        {"rooflineGuidance.loops.3.y", "1"},
        {"rooflineGuidance.loops.3.dataTransffered.val", "20"},
        {"rooflineGuidance.roofs.0.val", "2"},
        {"rooflineGuidance.roofs.1.val", "1.301"},
        {"rooflineGuidance.bottleneck.loop.x", "0"},
        {"rooflineGuidance.bottleneck.loop.roof.val", "1.301"},
        {"rooflineGuidance.bottleneck.loop.crossingY", "1.301"},
        // 0.25 s, 0.25 s, 4/15 s and 1 s at the roofs' speed.
        {"memoryMetrics.metrics.0.metrics.0.val", "14.151"},
        {"memoryMetrics.metrics.0.metrics.2.val", "15.094"},
        {"memoryMetrics.metrics.0.metrics.3.val", "56.604"},
        {"memoryMetrics.metrics.1.metrics.2.val", "20"},
        // 20 GB and 20 GFLOP in 2 s.
        {"opsAndBandwidth.roofs.0.value", "20"},
        {"opsAndBandwidth.metrics.0.value", "10"},
        {"opsAndBandwidth.metrics.0.children.1.value", "1"},
        {"opsAndBandwidth.metrics.0.children.2.value", "0"},
        {"opsAndBandwidth.metrics.1.value", "10"},
        {"opsAndBandwidth.metrics.1.children.0.value", "20"},
    };
    for (const auto& [path, number] : numbers) EXPECT_EQ(approx(values[path]), number) << path;
    const std::pair<const char*, std::string> texts[]{
        {"rooflineGuidance.limitingRoof", "\"L3 Bandwidth\""},
        {"rooflineGuidance.roofs.0.isMem", "false"},
        {"rooflineGuidance.roofs.1.isMem", "true"},
        {"rooflineGuidance.measureY", textOf("roofline_perf_axis_measure")},
        {"rooflineGuidance.data.explanation.0", textOf("roofline_single_widget_expl")},
        {"rooflineGuidance.data.explanation.2", textOf("roofline_memory_self_expl")},
        {"rooflineGuidance.data.explanation.3", textOf("roofline_memory_bottomup_expl")},
        {"memoryMetrics.metrics.1.metrics.3.caption", "\"DRAM\""},
        {"opsAndBandwidth.roofs.0.key", "\"drambandwidth\""},
        {"opsAndBandwidth.roofs.0.details",
         "\"" + translate("roofline_summary_roof_descr", std::string("50")) + "\""},
        {"opsAndBandwidth.roofs.1.details",
         "\"" + translate("roofline_summary_roof_descr", std::string("10")) + "\""},
        {"opsAndBandwidth.metrics.0.formattedValue", "\"10.00\""},
        {"opsAndBandwidth.metrics.0.roofId", "\"6\""},
        {"opsAndBandwidth.metrics.0.children.1.caption", textOf("roofline_summary_float_ai_row")},
        {"opsAndBandwidth.metrics.0.children.1.isDominatingOps", "true"},
        {"opsAndBandwidth.metrics.0.children.2.isDominatingOps", "false"},
        {"opsAndBandwidth.metrics.1.children.0.key", "\"opFloat\""},
        {"opsAndBandwidth.mix", "1"},
        {"conclusions.0.params.roof", "\"DRAM Bandwidth\""},
        {"conclusions.1.id", "\"plain\""},
        {"useZoneColoring", "true"},
        {"rooflineState.l3bandwidth.selected", "true"},
        {"rooflineState.scalaraddpeak.selected", "true"},
        {"rooflineState.drambandwidth.selected", "false"},
    };
    for (const auto& [path, text] : texts) EXPECT_EQ(values[path], text) << path;
    EXPECT_FALSE(values.count("opsAndBandwidth.metrics.0.children.1.roofId"));
    EXPECT_FALSE(values.count("opsAndBandwidth.metrics.2.value")) << "no integer operations, no metric";
    EXPECT_FALSE(values.count("conclusions.1.params"));

    auto bottleneck = valuesOf(engine->getBotteleneckVariantBag({"first", "second"}));
    EXPECT_EQ(bottleneck["loop.0.utilization.val"], "50");
    EXPECT_EQ(bottleneck["loop.0.utilization.measure"], textOf("roofline_percent_measure"));
    EXPECT_EQ(bottleneck["messages.0"], "\"first\"");
    EXPECT_EQ(bottleneck["messages.1"], "\"second\"");
}

TEST(RowResult, MembersOfTheTextStandInTheirOrder) {
    const auto text = makeEngine({.cells = kFloatCells})->getRooflineData();
    std::string names;
    const auto document = parse(text);
    for (const auto& member : document.GetObject()) names += std::string(member.name.GetString()) + " ";
    EXPECT_EQ(names,
              "rooflineGuidance memoryMetrics opsAndBandwidth conclusions useZoneColoring rooflineState ");
}

const std::pair<const char*, RowCase> kValidRows[]{
    {"float, four levels", {.cells = kFloatCells, .traffic = kFourLevels}},
    {"no levels", {.cells = kFloatCells}},
    {"integer, total", {.cells = kIntCells, .type = DataType::CpuTopDown, .traffic = kFourLevels}},
    {"two levels", {.cells = kIntCells, .traffic = {{MemoryLevel::L1, 200.0}, {MemoryLevel::Dram, 30.0}}}},
    {"bound by no roof", {.cells = kFloatCells, .traffic = kFourLevels, .isBoundByFactor = true}},
};

// All that the text says is in the bags too; the bags hold only these members more.
TEST(RowResult, BagsAndTextCarryTheSameValues) {
    for (const auto& [name, setup] : kValidRows) {
        SCOPED_TRACE(name);
        const auto engine = makeEngine(setup);
        ASSERT_TRUE(engine->isValid());
        const auto document = parse(engine->getRooflineData());
        const auto chart = engine->getRooflineVariantBag();
        auto bag = valuesOf(chart.find("data")->second);
        Values text;
        for (const auto& [path, value] : valuesOf(document["rooflineGuidance"])) {
            const bool isInBottleneck = path.rfind("bottleneck.loop.", 0) == 0;
            text[isInBottleneck                ? "bottleneck.loop.0." + path.substr(16)
                 : path.rfind("data.", 0) == 0 ? path.substr(5)
                                               : path] = value;
        }
        std::erase_if(bag, [](const auto& entry) {
            return entry.first.rfind("bottleneck.messages", 0) == 0 ||
                   entry.first.rfind("bottleneck.loop.0.utilization", 0) == 0;
        });
        EXPECT_EQ(bag, text);

        Values metrics = valuesOf(engine->getMemoryMetricsVariantBag());
        std::erase_if(metrics, [](const auto& entry) { return entry.first.rfind("explanation", 0) == 0; });
        EXPECT_EQ(metrics, valuesOf(document["memoryMetrics"]));
    }
}

TEST(RowResult, ARowWithoutLevelsHasOneInstanceAndNoBottleneck) {
    const auto engine = makeEngine({.cells = kFloatCells});
    const auto bag = engine->getRooflineVariantBag();
    auto values = valuesOf(bag);
    EXPECT_EQ(values["data.loops.0.name"], "\"loop\"");
    EXPECT_FALSE(values.count("data.loops.0.attrs.memoryLevelPref"));
    EXPECT_FALSE(values.count("data.loops.1.name"));
    EXPECT_TRUE(bag.find("data")->second.find("bottleneck")->second.empty());
    EXPECT_TRUE(engine->getMemoryMetricsVariantBag().empty());
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
        {"messages.0",
         "\"" + translate("roofline_bottleneck_performance_analysis_bounded_by", std::string("Latency")) +
             "\""},
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
    std::vector<std::string> assertions;
    embedded_host::setAssertionHandler(
        [&](const std::string& expression, const std::string&, int) { assertions.push_back(expression); });
    const auto empty = std::make_shared<CRowRooflineEngine>(nullptr, nullptr, nullptr);
    EXPECT_EQ(assertions.size(), 3u);
    const auto throwing = makeEngine({.cells = kFloatCells, .traffic = kFourLevels, .isThrowing = true});
    for (const auto& engine : {empty, throwing}) {
        EXPECT_TRUE(engine->getRooflineVariantBag().empty());
        EXPECT_TRUE(engine->getMemoryMetricsVariantBag().empty());
    }
    EXPECT_FALSE(parse(empty->getRooflineData()).HasMember("conclusions"));
    EXPECT_FALSE(throwing->isValid());
    EXPECT_TRUE(parse(throwing->getRooflineData()).HasMember("rooflineState"));
    EXPECT_TRUE(throwing->getBotteleneckVariantBag({}).empty());
    const CRowRooflineEngine unowned(nullptr, nullptr, nullptr);
    EXPECT_EQ(unowned.getRooflineData(), "");

    const auto engine = makeEngine({.cells = kFloatCells});
    EXPECT_EQ(rabbit::writeObject([&](rabbit::object& object) {
                  roofline::json_dump::dumpSingleRoofline(object, nullptr);
                  roofline::json_dump::dumpMemoryMetrics(object, nullptr);
                  roofline::json_dump::dumpRooflineConclusions(object, nullptr);
                  using roofline::summary::dumpRowOpsAndBandwidthSummary;
                  dumpRowOpsAndBandwidthSummary(object, nullptr, engine->dataset(), engine->row());
                  dumpRowOpsAndBandwidthSummary(object, engine, nullptr, engine->row());
                  dumpRowOpsAndBandwidthSummary(object, engine, engine->dataset(), nullptr);
              }),
              "{}");
    assertions.clear();
    EXPECT_EQ(roofline::summary::getMetricForComputeRoof({}, 0.0, 1.0, OperationsType::Float).value, 0.0);
    EXPECT_EQ(assertions, std::vector<std::string>{"elapsedTime > 0."});
    embedded_host::setAssertionHandler({});
}

TEST(RowResult, NumbersThatAreNotFiniteOrFarOutStayWithinBounds) {
    using roofline::helpers::wholePercent;
    const std::tuple<double, double, int> percents[]{
        {1.0, 3.0, 33},        {-1.0, 3.0, -33},           {1.0, 0.0, 0},       {1.0, -1.0, 0},
        {1e300, 1.0, INT_MAX}, {-kInfinity, 1.0, INT_MIN}, {0.0, kInfinity, 0}, {kInfinity, kInfinity, 0}};
    for (const auto& [part, whole, percent] : percents)
        EXPECT_EQ(wholePercent(part, whole), percent) << part << " of " << whole;
    EXPECT_EQ(roofline::helpers::logPosition(-1.0), 0.0);
    EXPECT_EQ(roofline::helpers::logHeight(RoofItem()), 0.0);

    Cells cells = kFloatCells;
    cells[FieldId::SelfFloatOps] = kInfinity;
    auto values = valuesOf(parse(makeEngine({.cells = cells})->getRooflineData()));
    EXPECT_EQ(values["opsAndBandwidth.metrics.0.value"], "null");
    EXPECT_EQ(values["opsAndBandwidth.metrics.0.formattedValue"], "\"N/A\"");
    for (const double time : {0.0, -1.0, std::numeric_limits<double>::quiet_NaN()}) {
        cells[FieldId::SelfElapsedTime] = time;
        values = valuesOf(parse(makeEngine({.cells = cells})->getRooflineData()));
        EXPECT_FALSE(values.count("opsAndBandwidth.metrics.0.value")) << time;
    }
}

TEST(RowResult, EachKindOfDatasetHasItsElapsedTime) {
    Cells cells = kFloatCells;
    cells[FieldId::GpuElapsedTime] = 4.0;
    cells[FieldId::OffloadElapsedTime] = 5.0;
    const std::pair<DataType, const char*> rates[]{
        {DataType::Cpu, "10"}, {DataType::CpuTopDown, "10"}, {DataType::Gpu, "5"}, {DataType::Offload, "4"}};
    for (const auto& [type, rate] : rates) {
        auto values = valuesOf(parse(makeEngine({.cells = cells, .type = type})->getRooflineData()));
        EXPECT_EQ(values["opsAndBandwidth.metrics.0.value"], rate) << static_cast<int>(type);
    }
}

TEST(RowResult, ANewChartHasEmptyListsThatSayWhatTheyAre) {
    const auto bag = roofline::helpers::RooflineWidget().get();
    EXPECT_EQ(bag.find("explanation"), bag.not_found());
    for (const auto* name : {"loops", "roofs"}) {
        const auto& list = bag.find("data")->second.find(name)->second;
        ASSERT_EQ(list.size(), 1u);
        EXPECT_EQ(list.find("arrayOf")->second.data().text(), "item");
    }
}

}  // namespace
}  // namespace data_models2
