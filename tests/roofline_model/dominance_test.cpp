// What dominates a program: the votes of its rows, the background task, the roofs and the summary that
// follow.
#include "roofline_model/compute_roofs.h"
#include "roofline_model/cpu_roof_choice.h"
#include "roofline_model/dominating_roofs_task.h"
#include "roofline_model/factories.h"
#include "roofline_model/gpu_operation_map_provider.h"

#include "tests/roofline_model/test_host.h"

#include <boost/property_tree/ptree.hpp>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>

namespace data_models2::test {
namespace {

using namespace std::chrono_literals;
using embedded_host::pumpTasks;
using Perspective = IRooflineInfo::Perspective;
using Status = BaseLongOperationTask::LoadType;

const char* const kMachine =
    R"({"format":"roofline-machine","version":1,"cores":{"logical":8,"physical":8},"packages":1,"roofs":[
    {"id":1,"value":100,"unit":"GB/s"},{"id":6,"value":10,"unit":"GB/s"},
    {"id":18,"value":20,"unit":"GB/s"},{"id":8,"value":80,"unit":"GFLOP/s"},
    {"id":10,"value":60,"unit":"GFLOP/s"},{"id":11,"value":40,"unit":"GFLOP/s"},
    {"id":9,"value":5,"unit":"GFLOP/s"},{"id":13,"value":4,"unit":"GINTOP/s"},
    {"id":16,"value":30,"unit":"GINTOP/s"},{"id":17,"value":15,"unit":"GINTOP/s"}]})";

std::string resultText(const std::string& rows, const std::string& program = "{}") {
    return fmt::format(R"({{"format":"roofline-result","version":1,"kind":"cpu","program":{},"machine":{},
                           "rows":[{}]}})",
                       program, kMachine, rows);
}

std::shared_ptr<embedded_host::Result> openText(const std::string& rows, const std::string& program = "{}") {
    return embedded_host::parseResult(resultText(rows, program), "result.json");
}

// A row of so many percent of the program's time, with a text of its types. The letters of `kind`: v a vector
// row, f one of mostly float operations, q one whose main type is a 64-bit integer.
std::string row(int id, double percent, const std::string& kind, const std::string& types) {
    const auto is = [&kind](char mark) { return kind.find(mark) != std::string::npos; };
    return fmt::format(R"({{"id":{},"kind":"loop","cells":{{"SelfTime":{},"DataTypes":"{}"{}{}}},"mix":{}}})",
                       id, percent, types, is('v') ? R"(,"Vectorized":1)" : "",
                       is('q') ? R"(,"MainDataType":8)" : "",
                       is('f') ? R"({"74":2,"63":3})" : R"({"74":2,"63":4})");
}

DominatingTypesInfo typesOf(const std::string& rows) {
    const auto result = openText(rows);
    const sptr_t<DominatingRoofsTask> task(new DominatingRoofsTask(result->viewModel(), DataType::Cpu));
    task->DoTask();
    return task->getProgramDominatingTypes();
}

std::string rowsOfOnePercent(int count, double percent, const std::string& rest) {
    std::string rows = rest;
    for (int id = 10; id < 10 + count; ++id) rows += "," + row(id, percent, "f", "Float32");
    return rows;
}

TEST(DominatingTypes, FollowFromTheTimeOfTheRows) {
    const auto rest = [](double percent) { return row(1, percent, "", ""); };
    const struct {
        const char* name;
        std::string rows;
        DominatingTypesInfo expected;  // vectorised, float work, float type, int type
    } cases[]{
        {"no time at all", R"({"id":1,"kind":"loop","cells":{"FunctionName":"a"}})", {false, 0, 0, 0}},
        {"5 % of vector time is enough", rest(95) + "," + row(2, 5, "v", "Int32"), {true, 0, 1, 3}},
        {"less isn't", rest(95.1) + "," + row(2, 4.9, "v", "Int32"), {false, 0, 0, 0}},
        {"30 % of float time aren't enough", rest(70) + "," + row(2, 30, "f", "Float64"), {false, 0, 0, 0}},
        {"more are; scalar doubles count as single",
         rest(69.9) + "," + row(2, 30.1, "f", "Float64"),
         {false, 1, 0, 0}},
        {"vector doubles", rest(60) + "," + row(2, 40, "vf", "Int8; Float64"), {true, 1, 1, 1}},
        {"as much single as double is double",
         rest(20) + "," + row(2, 40, "vf", "Float64") + "," + row(3, 40, "vf", "Float32"),
         {true, 1, 1, 0}},
        {"rows of 1 % aren't asked", rowsOfOnePercent(40, 1.0, rest(60)), {false, 0, 0, 0}},
        {"rows of more are", rowsOfOnePercent(40, 1.01, rest(59.6)), {false, 1, 0, 0}},
        {"the compiler's main type stands before the text",
         rest(50) + "," + row(2, 50, "vq", "<b>Int16</b>; Float32"),
         {true, 0, 0, 4}},
    };
    for (const auto& [name, rows, expected] : cases) {
        const auto info = typesOf(rows);
        const auto text = [](const DominatingTypesInfo& i) {
            return fmt::format("{} {} {} {}", i.vectorized, i.operationsType, i.floatType, i.intType);
        };
        EXPECT_EQ(text(info), text(expected)) << name;
    }
}

TEST(DominatingTypes, LeaveOutHiddenRowsAndWhatIsBelowThem) {
    const auto dataset = makeDataset(
        "a SelfTime=50\n"
        "-\n"
        "b type=none SelfTime=25\n"
        "  c type=0x100 SelfTime=4\n"
        "hidden type=0x108 SelfTime=25\n"
        "  below type=0x100 SelfTime=25\n");
    const sptr_t<DominatingTypeHelper> helper(new DominatingTypeHelper(dataset, 100));
    const Assertions assertions;
    createDatasetHelper(dataset)->visit(helper, true);
    EXPECT_FALSE(helper->getProgramDominatingTypes().vectorized);
    bool skipChildren = true;
    helper->handlePreVisit(nullptr, {}, skipChildren);
    helper->handlePostVisit(nullptr, {});
    EXPECT_FALSE(skipChildren);
    EXPECT_EQ(assertions.reported.size(), 2u);
}

class CancelledProgress final : public DummyProgress {
public:
    bool isCancelled() const override { return true; }
};

TEST(DominatingRoofsTask, TellsHowItEnded) {
    const auto viewModel = makeViewModel(makeDataset("a SelfTime=1"));
    const auto failing = makeViewModel(makeDataset("a SelfTime=1"));
    failing->throws = true;
    CancelledProgress cancelled;
    const struct {
        const char* name;
        std::shared_ptr<ISurveyingViewModel> viewModel;
        DataType type;
        IProgress* progress;
        int cancelAt;  // 1 before the run, 2 after it
        Status expected;
    } cases[]{
        {"done", viewModel, DataType::Cpu, nullptr, 0, Status::Succeeded},
        {"no view model", nullptr, DataType::Cpu, nullptr, 0, Status::Failed},
        {"no dataset", viewModel, DataType::GpuStatistics, nullptr, 0, Status::Failed},
        {"a dataset of another kind", makeViewModel(nullptr, makeDataset("a")), DataType::CpuTopDown, nullptr,
         0, Status::Failed},
        {"a host that throws", failing, DataType::Cpu, nullptr, 0, Status::Failed},
        {"cancelled before", viewModel, DataType::Cpu, nullptr, 1, Status::Cancelled},
        {"cancelled after", viewModel, DataType::Cpu, nullptr, 2, Status::Cancelled},
        {"cancelled by its progress", viewModel, DataType::Cpu, &cancelled, 0, Status::Cancelled},
    };
    for (const auto& each : cases) {
        const sptr_t<DominatingRoofsTask> task(
            new DominatingRoofsTask(each.viewModel, each.type, each.progress));
        std::vector<Status> heard;
        subscriber_base_t subscriber;
        task->completed.connect(subscriber, [&](const BaseLongOperationTask& ended) {
            heard.push_back(ended.getCompleteStatus());
            subscriber.disconnectAll();  // a slot may cut itself off
        });
        if (each.cancelAt == 1) task->Cancel();
        task->DoTask();
        if (each.cancelAt == 2) task->Cancel();
        task->TaskFinished();
        EXPECT_EQ(heard, std::vector<Status>{each.expected}) << each.name;
    }
}

RoofItem peak(RoofId id, std::uint64_t value, RoofOpType kind, ArithTypeExtDef type) {
    return {.id = id,
            .name = "r",
            .value = value,
            .typeBits = RoofItem::Compute,
            .roofOpType = kind,
            .arithType = type};
}

class Dominance : public testing::Test {
    RunningTasks m_tasks;
};

// The selected roofs, and the hidden ones in brackets.
std::string selectedOf(const IRooflineInfo& engine, const std::string& configuration,
                       Perspective perspective) {
    const auto text = engine.getSelectedRoofs(configuration, perspective);
    if (text.empty()) return "nothing";
    std::string names;
    const auto root = parse(text);
    for (const auto& [name, state] : root["roofsState"].GetObject()) {
        if (state["selected"].GetBool()) names += " " + textOf(name);
        if (state["hidden"].GetBool()) names += " (" + textOf(name) + ")";
    }
    return names.empty() ? names : names.substr(1);
}

const std::string kVectorDoubles =
    R"({"id":1,"kind":"loop","cells":{"SelfTime":10,"SelfElapsedTime":10,"SelfFloatOps":200,"SelfIntOps":20,
        "SelfMemL1":50,"DataTypes":"Float64; Int64","Vectorized":1},"mix":{"74":1}})";

TEST_F(Dominance, SelectsRoofsByPerspectiveOnceItIsKnown) {
    const auto result = openText(kVectorDoubles);
    const auto engine = createRooflineInfo(result->viewModel());
    int changes = 0;
    subscriber_base_t subscriber;
    engine->changed.connect(subscriber, [&] { ++changes; });
    result->load(IViewModelBase::LoadType::Result);
    EXPECT_EQ(selectedOf(*engine, "f-1", Perspective::Program),
              "l1bandwidth drambandwidth (scalarl1bandwidth)");
    EXPECT_EQ(changes, 0) << "nothing arrives before the host takes it";
    ASSERT_TRUE(pumpTasks(1min));
    EXPECT_GE(changes, 1);
    EXPECT_EQ(selectedOf(*engine, "f-1", Perspective::Vectorized),
              "l1bandwidth drambandwidth dpvectorfmapeak int64vectoraddpeak (scalarl1bandwidth)");
    EXPECT_EQ(selectedOf(*engine, "f-1", Perspective::NotVectorized),
              "drambandwidth scalaraddpeak integerscalaraddpeak scalarl1bandwidth");
    EXPECT_EQ(selectedOf(*engine, "f-1", Perspective::Program),
              selectedOf(*engine, "f-1", Perspective::Vectorized));
    EXPECT_EQ(selectedOf(*engine, "f-1", static_cast<Perspective>(4)), "nothing");
}

TEST(SelectedMemoryRoofs, AreThoseOfTheFirstLevelThatIsShown) {
    const auto viewModel = makeViewModel(nullptr, nullptr, 4);
    const auto table = std::make_shared<RoofTable>();
    for (const auto& [id, name] : {std::pair(RoofId::L1Bandwidth, "L1"),
                                   {RoofId::L2Bandwidth, "L2"},
                                   {RoofId::DramBandwidth, "DRAM"},
                                   {RoofId::ScalarL1Bandwidth, "sL1"}})
        table->roofs.push_back({.id = id, .name = name, .value = 1, .typeBits = RoofItem::Memory});
    viewModel->roofs = table;
    const auto engine = createRooflineInfo(viewModel);
    for (const auto& [configuration, expected] : {std::pair("f-1-L1-all", "l1 dram"),
                                                  {"f-1-L2-L1-all", "l1"},
                                                  {"f-1-DRAM-L2-all", "l2"},
                                                  {"f-1-DRAM-all", "dram"},
                                                  {"f-1-L3-all", ""}})
        EXPECT_EQ(selectedOf(*engine, configuration, Perspective::NotVectorized), expected) << configuration;
}

TEST_F(Dominance, AnswersAPendingSummaryOnceAndTheNextAtOnce) {
    const auto result = openText(kVectorDoubles, R"({"elapsedTime":4})");
    const auto engine = createRooflineInfo(result->viewModel());
    std::string heard;
    std::string summary;
    result->load(IViewModelBase::LoadType::Result);
    engine->loadSummaryData(0, [&](const std::string&) { heard += "replaced "; });
    engine->loadSummaryData(0, [&](const std::string& text) {
        heard += "first ";
        summary = text;
        engine->loadSummaryData(
            0, [&](const std::string& again) { heard += again == text ? "same " : "other "; });
    });
    EXPECT_EQ(heard, "");
    ASSERT_TRUE(pumpTasks(1min));
    EXPECT_EQ(heard, "first same ");
    result->load(IViewModelBase::LoadType::Result);
    ASSERT_TRUE(pumpTasks(1min));
    EXPECT_EQ(heard, "first same ");

    // 50 GB, 200 and 20 giga operations in 4 seconds; roofs of one thread.
    std::string lines;
    const auto root = parse(summary);
    for (const auto& metric : root["metrics"].GetArray()) {
        lines += fmt::format("{} {} {}{}:", textOf(metric["roofName"]), textOf(metric["value"]),
                             textOf(metric["formattedValue"]),
                             metric["isDominatingOps"].GetBool() ? " dominates" : "");
        for (const auto& child : metric["children"].GetArray())
            lines += fmt::format(" {}={}", textOf(child["key"]), textOf(child["value"]));
        lines += "\n";
    }
    EXPECT_EQ(lines,
              "drambandwidth 0 0.00: traffic=0 aiFloat=0 aiInt=0\n"
              "l1bandwidth 12.5 12.50: traffic=50 aiFloat=4 aiInt=0.4\n"
              "dpvectorfmapeak 50 50.00 dominates: opFloat=200\n"
              "int64vectoraddpeak 5 5.00: opInt=20\n");
    EXPECT_EQ(textOf(root["roofs"][2]["details"]), "62 percent of this roof is reached.");
}

TEST_F(Dominance, ChangesNothingWhenATaskFails) {
    const auto viewModel = makeViewModel(makeDataset("a SelfTime=1 SelfElapsedTime=1 SelfMemL1=1"));
    const auto engine = createRooflineInfo(viewModel);
    int changes = 0;
    subscriber_base_t subscriber;
    engine->changed.connect(subscriber, [&] { ++changes; });
    viewModel->load();
    ASSERT_TRUE(pumpTasks(1min));
    EXPECT_EQ(changes, 1);
    const auto table = std::make_shared<RoofTable>();
    table->roofs = {peak(RoofId::ScalarAddPeak, 1, RoofOpType::Basic, ArithTypeExtDef::Float64)};
    viewModel->roofs = table;
    viewModel->datasets.clear();
    viewModel->load();  // the task finds no rows
    ASSERT_TRUE(pumpTasks(1min));
    EXPECT_EQ(changes, 1);
    EXPECT_EQ(selectedOf(*engine, "f-1", Perspective::Program), "r") << "the old roofs stay";
}

TEST_F(Dominance, OutlivesItsEngine) {
    const auto result = openText(kVectorDoubles);
    for (int i = 0; i < 50; ++i) {
        bool isAlive = true;
        auto engine = createRooflineInfo(result->viewModel());
        result->load(IViewModelBase::LoadType::Result);
        engine->loadSummaryData(0, [&](const std::string&) { EXPECT_TRUE(isAlive) << i; });
        if (i % 2) pumpTasks(0ms);
        if (i % 3) engine->getSelectedRoofs({}, Perspective::Program);
        engine.reset();  // with a task under way, or one that isn't told yet
        isAlive = false;
        if (i % 5 == 0) EXPECT_TRUE(pumpTasks(1min));
    }
    EXPECT_TRUE(pumpTasks(1min));
}

TEST(DominatingRoofs, FollowFromTheTypes) {
    const auto roofs = [](DominatingTypesInfo info, Perspective perspective) {
        const auto ids = roofline::getCpuDominatingRoofs(info).at(perspective);
        std::set<int> sorted;
        for (const auto id : ids) sorted.insert(static_cast<int>(id));
        return fmt::format("{}", fmt::join(sorted, " "));
    };
    EXPECT_EQ(roofs({true, 1, 0, 3}, Perspective::Vectorized), "7 16");
    EXPECT_EQ(roofs({true, 1, 1, 4}, Perspective::Program), "8 17");
    EXPECT_EQ(roofs({false, 2, 2, 7}, Perspective::Vectorized), "10 16") << "nothing known";
    EXPECT_EQ(roofs({false, 0, 1, 5}, Perspective::Vectorized), "11 16");
    EXPECT_EQ(roofs({false, 1, 1, 4}, Perspective::Program), "9 13");
    EXPECT_EQ(roofs({true, 1, 1, 4}, Perspective::NotVectorized), "9 13");
}

TEST(ComputeRoofs, StandForMoreThan15PercentOfTheOperations) {
    using enum ArithTypeExtDef;
    const auto add = peak(RoofId::SpVectorAddPeak, 10, RoofOpType::Basic, Float32);
    const auto fma = peak(RoofId::SpVectorFmaPeak, 20, RoofOpType::Fma, Float32);
    const auto matrix = peak(RoofId::DpVectorFmaPeak, 90, static_cast<RoofOpType>(3), Float32);
    const auto integer = peak(RoofId::Int32VectorAddPeak, 5, RoofOpType::Basic, Int32);
    const struct {
        const char* name;
        OperationMap map;  // instruction, arithmetic, width: operations of 100
        double total;
        RoofItem roof;
        int expected;
    } cases[]{
        {"16 percent", {{{3, ArithTypeDef::Float, 32}, {16, 1}}}, 100, fma, 7},
        {"just below", {{{3, ArithTypeDef::FloatOther, 32}, {15.9, 1}}}, 100, fma, 0},
        {"what isn't counted as operations", {{{1, ArithTypeDef::Float, 32}, {90, 1}}}, 100, add, 0},
        {"kinds add up",
         {{{2, ArithTypeDef::Float, 32}, {8, 1}}, {{17, ArithTypeDef::Float, 32}, {8, 1}}},
         100,
         add,
         10},
        {"another width", {{{2, ArithTypeDef::Float, 64}, {90, 1}}}, 100, add, 0},
        {"integer multiply-adds count as additions",
         {{{3, ArithTypeDef::Int, 32}, {16, 1}}},
         100,
         integer,
         16},
        {"far more than the total", {{{3, ArithTypeDef::Float, 32}, {1e12, 1}}}, 1, fma, 7},
        {"no total", {{{3, ArithTypeDef::Float, 32}, {16, 1}}}, 0, fma, 0},
        {"no operations", {}, 100, fma, 0},
    };
    for (const auto& each : cases) {
        const auto map = std::make_shared<const OperationMap>(each.map);
        // Neither the matrix peak, which no instruction has, nor a lower roof of the same kind is chosen.
        auto lower = each.roof;
        lower.id = RoofId::ScalarAddPeak;
        lower.value = 1;
        const auto found = roofline::findComputeRoof(map, {lower, each.roof, matrix}, each.total);
        EXPECT_EQ(static_cast<int>(found.id), each.expected) << each.name;
    }
}

TEST(OperationMap, SumsUpTheStatisticRowsBelowAKernel) {
    const auto dataset = makeDataset(
        "kernel type=0x1000000 GpuInstructionType=3u GpuOperationCount=99\n"
        "  group\n"
        "    a GpuInstructionType=2u GpuArithType=3u GpuArithWidth=32u GpuOperationCount=2 "
        "GpuInstructionCount=1\n"
        "  b GpuInstructionType=2u GpuArithType=3u GpuArithWidth=32u GpuOperationCount=3\n"
        "  c GpuInstructionType=7u GpuInstructionCount=5\n"
        "other GpuInstructionType=7u GpuInstructionCount=9\n",
        DataType::GpuStatistics);
    const auto print = [](const OperationMap& map) {
        std::string text;
        for (const auto& [key, value] : map)
            text += fmt::format("{}/{}/{}: {} {}\n", key.instructionType, static_cast<int>(key.arithType),
                                key.width, value.operationCount, value.instructionCount);
        return text;
    };
    const std::string expected = "2/3/32: 5 1\n7/0/0: 0 5\n";
    EXPECT_EQ(print(*GpuOperationMapProvider(rowsOf(dataset).front(), dataset).getOperationMap()), expected);

    const auto viewModel = makeViewModel(nullptr);
    viewModel->datasets[DataType::GpuStatistics] = dataset;
    const sptr_t<DominatingRoofsTask> task(new DominatingRoofsTask(viewModel, DataType::GpuStatistics));
    task->DoTask();
    ASSERT_NE(task->getProgramOperationMap(), nullptr);
    EXPECT_EQ(print(*task->getProgramOperationMap()), expected) << "of kernels only";
}

}  // namespace
}  // namespace data_models2::test
