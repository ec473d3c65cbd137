// What dominates a program: the votes of its rows, the background task, the roofs and the summary that
// follow.
#include "roofline_model/compute_roofs.h"
#include "roofline_model/cpu_roof_choice.h"
#include "roofline_model/dominating_roofs_task.h"
#include "roofline_model/factories.h"
#include "roofline_model/gpu_operation_map_provider.h"

#include "tests/embedded_host/result_text.h"
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

std::shared_ptr<embedded_host::Result> openText(const std::string& rows, const std::string& program = "{}") {
    const auto machine =
        embedded_host::test::machineText(R"(
    {"id":1,"value":100,"unit":"GB/s"},{"id":6,"value":10,"unit":"GB/s"},
    {"id":18,"value":20,"unit":"GB/s"},{"id":8,"value":80,"unit":"GFLOP/s"},
    {"id":10,"value":60,"unit":"GFLOP/s"},{"id":11,"value":40,"unit":"GFLOP/s"},
    {"id":9,"value":5,"unit":"GFLOP/s"},{"id":13,"value":4,"unit":"GINTOP/s"},
    {"id":16,"value":30,"unit":"GINTOP/s"},{"id":17,"value":15,"unit":"GINTOP/s"})",
                                         R"(,"cores":{"logical":8,"physical":8},"packages":1)");
    const auto members = R"(,"program":)" + program + R"(,"machine":)" + machine;
    return embedded_host::parseResult(embedded_host::test::resultText(rows, members), "result.json");
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

// A row of no types for the rest of the time, and others.
std::string rest(double percent, const std::string& others) { return row(1, percent, "", "") + "," + others; }

// Forty rows of float operations beside the rest.
std::string fortyRows(double percent) {
    std::vector<std::string> rows;
    for (int id = 10; id < 50; ++id) rows.push_back(row(id, percent, "f", "Float32"));
    return rest(100.0 - 40.0 * percent, boost::join(rows, ","));
}

TEST(DominatingTypes, FollowFromTheTimeOfTheRows) {
    const struct {
        const char* name;
        std::string rows;
        const char* expected;  // vectorised, float work, float type, int type
    } cases[]{
        {"no time at all", R"({"id":1,"kind":"loop","cells":{"FunctionName":"a"}})", "false 0 0 0"},
        {"5 % of vector time is enough", rest(95, row(2, 5, "v", "Int32")), "true 0 1 3"},
        {"less isn't", rest(95.1, row(2, 4.9, "v", "Int32")), "false 0 0 0"},
        {"30 % of float time aren't enough", rest(70, row(2, 30, "f", "Float64")), "false 0 0 0"},
        {"more are; scalar doubles are single", rest(69.9, row(2, 30.1, "f", "Float64")), "false 1 0 0"},
        {"vector doubles", rest(60, row(2, 40, "vf", "Int8; Float64")), "true 1 1 1"},
        {"as much single as double is double",
         rest(20, row(2, 40, "vf", "Float64") + "," + row(3, 40, "vf", "Float32")), "true 1 1 0"},
        {"rows of 1 % aren't asked", fortyRows(1.0), "false 0 0 0"},
        {"rows of more are", fortyRows(1.01), "false 1 0 0"},
        {"the compiler's main type stands before the text",
         rest(50, row(2, 50, "vq", "<b>Int16</b>; Float32")), "true 0 0 4"},
    };
    for (const auto& [name, rows, expected] : cases) {
        const auto [vectorized, operations, floats, ints] = typesOf(rows);
        EXPECT_EQ(fmt::format("{} {} {} {}", vectorized, operations, floats, ints), expected) << name;
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
    const auto self = DataType::Cpu, total = DataType::CpuTopDown;
    const auto ofAnother = makeViewModel(nullptr, makeDataset("a"));
    const struct {
        const char* name;
        std::shared_ptr<ISurveyingViewModel> viewModel;
        DataType type;
        Status expected;
        int cancelAt = 0;  // 1 before the run, 2 after it
        IProgress* progress = nullptr;
    } cases[]{
        {"done", viewModel, self, Status::Succeeded},
        {"no view model", nullptr, self, Status::Failed},
        {"no dataset", viewModel, DataType::GpuStatistics, Status::Failed},
        {"a dataset of another kind", ofAnother, total, Status::Failed},
        {"a host that throws", failing, self, Status::Failed},
        {"cancelled before", viewModel, self, Status::Cancelled, 1},
        {"cancelled after", viewModel, self, Status::Cancelled, 2},
        {"cancelled by its progress", viewModel, self, Status::Cancelled, 0, &cancelled},
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

class Dominance : public testing::Test {
    RunningTasks m_tasks;
};

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
              " l1bandwidth drambandwidth (scalarl1bandwidth)");
    EXPECT_EQ(changes, 0) << "nothing arrives before the host takes it";
    ASSERT_TRUE(pumpTasks(1min));
    EXPECT_GE(changes, 1);
    EXPECT_EQ(selectedOf(*engine, "f-1", Perspective::Vectorized),
              " l1bandwidth drambandwidth dpvectorfmapeak int64vectoraddpeak (scalarl1bandwidth)");
    EXPECT_EQ(selectedOf(*engine, "f-1", Perspective::NotVectorized),
              " drambandwidth scalaraddpeak integerscalaraddpeak scalarl1bandwidth");
    EXPECT_EQ(selectedOf(*engine, "f-1", Perspective::Program),
              selectedOf(*engine, "f-1", Perspective::Vectorized));
    EXPECT_EQ(selectedOf(*engine, "f-1", static_cast<Perspective>(4)), "nothing");
}

TEST(SelectedMemoryRoofs, AreThoseOfTheFirstLevelThatIsShown) {
    const auto viewModel = makeViewModel(nullptr, nullptr, 4);
    viewModel->roofs->roofs = {makeRoof(RoofId::L1Bandwidth, "L1", 1, MemoryLevel::L1),
                               makeRoof(RoofId::L2Bandwidth, "L2", 1, MemoryLevel::L2),
                               makeRoof(RoofId::DramBandwidth, "DRAM", 1, MemoryLevel::Dram),
                               makeRoof(RoofId::ScalarL1Bandwidth, "sL1", 1, MemoryLevel::L1)};
    const auto engine = createRooflineInfo(viewModel);
    for (const auto& [configuration, expected] : {std::pair("f-1-L1-all", " l1 dram"),
                                                  {"f-1-L2-L1-all", " l1"},
                                                  {"f-1-DRAM-L2-all", " l2"},
                                                  {"f-1-DRAM-all", " dram"},
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
    viewModel->roofs->roofs = {
        makeRoof(RoofId::ScalarAddPeak, "r", 1, MemoryLevel::None, ArithTypeExtDef::Float64)};
    viewModel->datasets.clear();
    viewModel->load();  // the task finds no rows
    ASSERT_TRUE(pumpTasks(1min));
    EXPECT_EQ(changes, 1);
    EXPECT_EQ(selectedOf(*engine, "f-1", Perspective::Program), " r") << "the old roofs stay";
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
    const auto peak = [](RoofId id, RoofOpType kind, ArithTypeExtDef type) {
        return makeRoof(id, "r", 2, MemoryLevel::None, type, kind);
    };
    const auto add = peak(RoofId::SpVectorAddPeak, RoofOpType::Basic, Float32);
    const auto fma = peak(RoofId::SpVectorFmaPeak, RoofOpType::Fma, Float32);
    auto matrix = peak(RoofId::DpVectorFmaPeak, RoofOpType::Matrix, Float32);
    matrix.value *= 9;
    const auto integer = peak(RoofId::Int32VectorAddPeak, RoofOpType::Basic, Int32);
    using Base = ArithTypeDef;
    const struct {
        const char* name;
        OperationMap map;  // instruction, arithmetic, width: operations
        RoofItem roof;
        int expected;
        double total = 100;
    } cases[]{
        {"16 percent", {{{3, Base::Float, 32}, {16, 1}}}, fma, 7},
        {"just below", {{{3, Base::FloatOther, 32}, {15.9, 1}}}, fma, 0},
        {"what isn't counted as operations", {{{1, Base::Float, 32}, {90, 1}}}, add, 0},
        {"kinds add up", {{{2, Base::Float, 32}, {8, 1}}, {{17, Base::Float, 32}, {8, 1}}}, add, 10},
        {"another width", {{{2, Base::Float, 64}, {90, 1}}}, add, 0},
        {"integer multiply-adds count as additions", {{{3, Base::Int, 32}, {16, 1}}}, integer, 16},
        {"far more than the total", {{{3, Base::Float, 32}, {1e12, 1}}}, fma, 7, 1},
        {"no total", {{{3, Base::Float, 32}, {16, 1}}}, fma, 0, 0},
        {"no operations", {}, fma, 0},
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
