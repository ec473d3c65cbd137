// The engine of a GPU result: its tables, its tree, what a load changes, what dominates, details and
// summaries.
#include "roofline_model/factories.h"
#include "roofline_model/gpu_roofline_engine.h"
#include "roofline_model/report_helpers.h"
#include "roofline_model/translation.h"
#include "roofline_model/unified/option_tables.h"

#include "tests/roofline_model/test_host.h"

#include <boost/property_tree/ptree.hpp>
#include <gtest/gtest.h>

#include <chrono>

namespace data_models2::test {
namespace {

using Perspective = IRooflineInfo::Perspective;
using roofline::translate;

const std::string kGemm =
    "gemm type=0x1000000 GpuElapsedTime=2 SelfFloatOps=200 SelfGFlops=100 SelfFloatAi=2 SelfIntOps=10 "
    "SelfGIntOps=5 SelfIntAi=0.1 GpuCarmTraffic=100 GpuL3Traffic=50 GpuSlmTraffic=20 GpuMemTraffic=10 "
    "GpuL3Bandwidth=26";

// 200 giga float and 100 giga integer operations in 4 seconds; another row is no kernel.
std::shared_ptr<ViewModel> makeView() {
    const auto view = makeViewModel(nullptr);
    view->elapsedTime = 4.0;
    view->packages = 2;
    view->used = 1;
    view->memory = MemoryLevel::Hbm;
    view->device = DeviceInfo{"Chip"};
    view->datasets[DataType::Gpu] = makeDataset(kGemm + R"(
hash type=0x1000000 GpuElapsedTime=2 SelfFloatOps=0 SelfGFlops=0 SelfIntOps=90 SelfGIntOps=45 SelfIntAi=9 )"
                                                        R"(GpuCarmTraffic=10 GpuL3Traffic=45 GpuMemTraffic=40
host GpuElapsedTime=9 SelfFloatOps=1e6)",
                                                DataType::Gpu);
    view->datasets[DataType::GpuStatistics] = makeDataset(R"(
gemm type=0x1000000
  fma GpuInstructionType=3u GpuArithType=3u GpuArithWidth=32u GpuOperationCount=180 GpuInstructionCount=90
  add GpuInstructionType=2u GpuArithType=3u GpuArithWidth=32u GpuOperationCount=20 GpuInstructionCount=20
  load GpuInstructionType=7u GpuInstructionCount=5
hash type=0x1000000
  add GpuInstructionType=2u GpuArithType=2u GpuArithWidth=32u GpuOperationCount=90 GpuInstructionCount=9
host)",
                                                          DataType::GpuStatistics);
    using enum RoofId;
    using Op = RoofOpType;
    using Type = ArithTypeExtDef;
    constexpr auto kNone = MemoryLevel::None;
    view->roofs->roofs = {makeRoof(SpVectorAddPeak, "SP Add", 500, kNone, Type::Float32, Op::Basic),
                          makeRoof(SpVectorFmaPeak, "SP FMA", 1000, kNone, Type::Float32, Op::Fma),
                          makeRoof(RoofId{99}, "SP Matrix", 4000, kNone, Type::Float32, Op::Matrix),
                          makeRoof(Int32VectorAddPeak, "Int32 Add", 400, kNone, Type::Int32, Op::Basic),
                          makeRoof(L1Bandwidth, "L1", 900, MemoryLevel::L1),
                          makeRoof(L3Bandwidth, "L3", 300, MemoryLevel::L3),
                          makeRoof(SlmBandwidth, "SLM", 600, MemoryLevel::Slm),
                          makeRoof(DeviceHbmBandwidth, "HBM", 100, MemoryLevel::Hbm),
                          makeRoof(DeviceDramBandwidth, "DRAM", 70, MemoryLevel::Dram),
                          makeRoof(XliBandwidth, "XLI", 10, MemoryLevel::Xli)};
    return view;
}

TEST(GpuLoopParams, Are31AndFollowTheLevelAndTheOperations) {
    const auto& tables = getGpuTables();
    EXPECT_EQ(tables.params.size(), 31u);
    const std::pair<const char*, const char*> levels[]{
        {"CARMgpu", "GpuCarmTraffic"}, {"L3gpu", "GpuL3Traffic"},    {"SLMgpu", "GpuSlmTraffic"},
        {"XLIgpu", "GpuMemTraffic"},   {"DRAMgpu", "GpuMemTraffic"}, {"HBMgpu", "GpuMemTraffic"}};
    for (const auto& [operations, rate, count] :
         {std::tuple{"f", "SelfGFlops", "SelfFloatOps"}, std::tuple{"i", "SelfGIntOps", "SelfIntOps"}})
        for (const auto& [level, traffic] : levels) {
            const bool isMeasured = std::string_view(level) == "L3gpu";
            EXPECT_EQ(
                paramsOf(tables.params, {operations, level}),
                fmt::format(R"(
name = FunctionName 0
locat = SourceLocation SourceLine join: 0
vec = 1 0
selfElapsedTime = GpuElapsedTime 0
key = RowKey 0
y = {0} log10 4
x = {1} {2} / log10 4
selfMem = {2} 0
effectiveBand = {3} 0)",
                            rate, count, traffic,
                            isMeasured ? "GpuL3Bandwidth" : std::string(traffic) + " GpuElapsedTime /"));
        }
}

TEST(GpuOptionTree, OffersTheLevelsOfTheDevice) {
    const std::tuple<MemoryLevel, const char*, const char*> devices[]{
        {MemoryLevel::Dram, " DRAMgpu", "DRAMgpu DRAM"},
        {MemoryLevel::Hbm, " HBMgpu", "HBMgpu HBM"},
        {MemoryLevel::None, " XLIgpu", "XLIgpu XLI"},
        {MemoryLevel::Gddr6, "", "GDDR6gpu GDDR6"},  // of this one nothing is known
    };
    const auto integers =
        makeMemoryMetrics(makeDataset("a SelfElapsedTime=1 SelfFloatOps=1 SelfIntOps=2"), {});
    for (const auto& [memory, last, defaults] : devices)
        for (const bool isInt : {false, true}) {
            const GpuDeviceProperties device{.memoryType = static_cast<std::uint64_t>(memory)};
            const auto tree = parse(initRooflineOptions(isInt ? integers : nullptr, device)->toString());
            const std::string_view level(defaults);
            EXPECT_EQ(optionsOf(tree),
                      fmt::format(R"(["{}"] f i; ["{}"] CARMgpu L3gpu SLMgpu{}; )", isInt ? "i" : "f",
                                  level.substr(0, level.find(' ')), last));
            EXPECT_EQ(textOf(tree["defConfigurationCaption"]),
                      fmt::format("Default: {} operations, {}", isInt ? "Integer" : "Float",
                                  level.substr(level.find(' ') + 1)));
            EXPECT_TRUE(tree["groups"][1]["provideCaption"].GetBool());
        }
}

TEST(GpuEngine, TakesTheMetricsOfALoadWithTheDeviceBeforeIt) {
    const auto view = makeView();
    CGpuRooflineEngine engine(view);
    const auto state = [&] {
        const auto& metrics = engine.getMetrics();
        return fmt::format("{} {} {}", metrics ? metrics->getTotalGBs("HBMgpu") : -1.0,
                           metrics ? metrics->getTotalGBs("DRAMgpu") : -1.0,
                           engine.getRooflineConfigurationStr({}));
    };
    EXPECT_EQ(state(), "-1 -1 f-HBMgpu");
    view->memory = MemoryLevel::Dram;
    loadAndWait(*view, IViewModelBase::LoadType::Refresh);
    EXPECT_EQ(state(), "50 0 f-DRAMgpu");
    loadAndWait(*view, IViewModelBase::LoadType::Refresh);
    EXPECT_EQ(state(), "0 50 f-DRAMgpu");
    EXPECT_EQ(engine.getMetrics()->getTotalOpCount(OperationsType::Float), 200.0) << "kernels alone";
    EXPECT_EQ(engine.getMetrics()->getTotalOpCount(OperationsType::Mixed), 0.0);
    EXPECT_EQ(engine.getRooflineConfigurationStr({"b", "L3gpu"}), "f-L3gpu") << "nothing is mixed here";
}

TEST(GpuEngine, OffersSubDevicesOnceALoadToldOfTheDevice) {
    const auto view = makeView();
    const auto engine = createGpuRooflineInfo(view);
    EXPECT_EQ(engine->getThreadsInfo(), "");
    const std::string single = "roofline_single_subdevice_option", multi = "roofline_multi_subdevice_option";
    for (const auto& [memory, ending] : {std::pair(MemoryLevel::Hbm, "_new"), {MemoryLevel::Dram, ""}}) {
        view->memory = memory;
        loadAndWait(*view);
        const auto info = parse(engine->getThreadsInfo());
        EXPECT_EQ(lineOf(info, {"processorPackageCount"}) + lineOf(info["group"], {"defaultValue"}),
                  "processorPackageCount=2defaultValue=2");
        EXPECT_EQ(linesOf(info["group"]["options"], {"caption", "expl", "value"}),
                  fmt::format("\ncaption={} expl={} value=1\ncaption={} expl={} value=2",
                              translate(single + ending), translate(single + "_expl" + ending),
                              translate(multi + ending), translate(multi + "_expl")));
    }
    view->device.reset();
    loadAndWait(*view);
    EXPECT_EQ(engine->getThreadsInfo(), "");
}

TEST(GpuEngine, AsksForTheRoofsOfTheChosenSubDevices) {
    const auto view = makeView();
    const auto engine = createGpuRooflineInfo(view);
    std::vector<std::string> expected;
    const std::tuple<const char*, int, TileUsage, OperationsType> requests[]{
        {"f-HBMgpu", 1, TileUsage::Single, OperationsType::Float},
        {"i", 2, TileUsage::Multi, OperationsType::Int},
        {"", 0, TileUsage::Multi, OperationsType::Undefined}};
    for (const auto& [configuration, packages, usage, operations] : requests) {
        RoofThreadingFeatures features;
        features.packageCount = packages;
        const auto roofs = parse(engine->getRoofs(configuration, features, Perspective::Vectorized));
        EXPECT_EQ(lineOf(roofs[0], {"id", "device"}), "id=10 device=2");
        expected.push_back(roof::getGpuRoofConfiguration(usage, operations));
    }
    EXPECT_EQ(view->roofs->asked, expected);
}

TEST(GpuEngine, SelectsWhatTheProgramStandsUnder) {
    const auto view = makeView();
    CGpuRooflineEngine engine(view);
    int changes = 0;
    subscriber_base_t listener;
    engine.changed.connect(listener, [&] { ++changes; });
    EXPECT_EQ(selectedOf(engine, "f"), " hbm (xli)") << "no load told of a detection";
    loadAndWait(*view, IViewModelBase::LoadType::Refresh);  // the same task again or one more
    EXPECT_GE(changes, 1);
    for (const auto perspective : {Perspective::Vectorized, Perspective::NotVectorized, Perspective::Program})
        EXPECT_EQ(selectedOf(engine, "f", perspective), " spfma int32add hbm (xli)");
    EXPECT_EQ(selectedOf(engine, "f", Perspective{4}), "nothing");

    changes = 0;
    view->datasets.erase(DataType::GpuStatistics);
    loadAndWait(*view);
    EXPECT_EQ(changes, 0) << "a task that failed";
    EXPECT_EQ(selectedOf(engine, "f"), " spfma int32add hbm (xli)");
    view->memory = MemoryLevel::Xli;
    loadAndWait(*view);
    EXPECT_EQ(selectedOf(engine, "f"), " spfma int32add xli") << "its own last memory is never hidden";
    EXPECT_EQ(fmt::format("{} {} {}", engine.getDominatingOperationType(nullptr),
                          engine.getDominatingFloatType(nullptr), engine.getDominatingIntType(nullptr)),
              "2 2 7");
}

TEST(GpuEngine, DrawsTotalsOfTheLevelsThatAreShown) {
    const auto view = makeView();
    const auto engine = createGpuRooflineInfo(view);
    loadAndWait(*view);
    const auto chart = parse(engine->getRooflineData(nullptr, "i-CARMgpu-HBMgpu"));
    EXPECT_EQ(linesOf(chart["programTotal"], {"name", "selfMem", "selfElapsedTime"}),
              "\nname=CARM selfMem=110 selfElapsedTime=4\nname=HBM selfMem=50 selfElapsedTime=4");
    EXPECT_EQ(lineOf(chart, {"withCallstacks", "memoryLevelPref", "namePref"}),
              "withCallstacks=1 memoryLevelPref=CARM-HBM- namePref=" + translate("roofline_value_prefix"));
    EXPECT_EQ(linesOf(chart["loops"], {"name", "vec", "selfMem", "effectiveBand", "memoryLevelPref"}), R"(
name=gemm vec=1 selfMem=100 effectiveBand=50
name=gemm vec=1 selfMem=10 effectiveBand=5 memoryLevelPref=HBM-
name=hash vec=1 selfMem=10 effectiveBand=5
name=hash vec=1 selfMem=40 effectiveBand=20 memoryLevelPref=HBM-)");
    const auto floats = parse(engine->getRooflineData(nullptr, view->datasets[DataType::Gpu], "f-L3gpu"));
    EXPECT_EQ(linesOf(floats["loops"], {"name", "effectiveBand", "x"}),
              "\nname=gemm effectiveBand=26 x=0.60206");
    const auto noTraffic = makeView();
    noTraffic->datasets[DataType::Gpu] =
        makeDataset("a type=0x1000000 GpuElapsedTime=1 SelfFloatOps=1 SelfGFlops=1", DataType::Gpu);
    const auto nothing = parse(createGpuRooflineInfo(noTraffic)->getRooflineData(nullptr, "f"));
    EXPECT_EQ(textOf(nothing["noDataMessage"]["title"]), translate("roofline_filtered_out_title"))
        << "operations there were";
}

TEST(GpuEngine, TellsWhatLimitsAKernel) {
    const auto boundBy = [](const char* roof, const char* level) {
        return translate("roofline_bottleneck_bound_by_memory", std::string(roof), translate(level));
    };
    const auto wrong = translate("roofline_bottleneck_wrong_configuration_general");
    const auto above = translate("roofline_bottleneck_above_roofs");
    // At every level it moves more than the roof allows, yet all of its point's traffic fits below one.
    const std::string busy = " GpuL3Traffic=700 GpuSlmTraffic=1300 GpuMemTraffic=300";
    const std::string still = " GpuL3Traffic=0 GpuSlmTraffic=0 GpuMemTraffic=0";
    const std::tuple<const char*, std::string, std::vector<std::string>, std::string> rules[]{
        {"f-L3gpu", "", {}, translate("roofline_bottleneck_bound_by_compute", std::string("SP FMA"), 10)},
        {"f-L3gpu", " GpuMemTraffic=190", {}, boundBy("HBM", "roofline_options_hbm")},
        {"f-L3gpu", "", {"L1_BW"}, boundBy("L1", "roofline_options_gpu_carm")},
        {"i-HBMgpu", "", {}, wrong},
        {"f", busy, {}, above},
        {"f", " SelfGFlops=1e5", {}, above},
        {"f", still, {}, translate("roofline_bottleneck_general_error")},
        {"f", " type=0 SelfGFlops=1e5", {}, translate("roofline_bottleneck_no_stacks_error")},
    };
    for (const auto& [configuration, cells, bounds, expected] : rules) {
        const auto view = makeView();
        auto table = tableOf(kGemm + cells, DataType::Gpu);
        table.rows.front().boundedBy = bounds;
        view->datasets[DataType::Gpu] = new Dataset(table);
        const auto engine = createGpuRooflineInfo(view);
        loadAndWait(*view);
        const auto details = parse(engine->getLoopAdditionalInfo(R"({"item": [1]})", nullptr, configuration));
        ASSERT_EQ(details.Size(), 1u);
        EXPECT_EQ(boost::join(membersOf(details[0]), " "), "id bottleneck memoryMetrics");
        EXPECT_EQ(textOf(details[0]["bottleneck"]["messages"][0]), expected) << configuration << cells;
    }
}

// The program's one thread fits on no part of a device that tells of no cores: that is no reason to take all.
TEST(GpuEngine, TakesTheSubDevicesOfARequestAsTheyAre) {
    const auto view = makeView();
    const auto engine = createGpuRooflineInfo(view);
    loadAndWait(*view);
    const std::pair<const char*, TileUsage> requests[]{{R"(, "packageCount": 1)", TileUsage::Single},
                                                       {R"(, "packageCount": 2)", TileUsage::Multi},
                                                       {R"(, "packageCount": "1")", TileUsage::Multi},
                                                       {"", TileUsage::Multi}};
    for (const auto& [packages, usage] : requests) {
        engine->getLoopAdditionalInfo(fmt::format(R"({{"item": [1]{}}})", packages), nullptr, "f");
        EXPECT_EQ(view->roofs->asked.back(), roof::getGpuRoofConfiguration(usage, OperationsType::Undefined))
            << packages;
    }
}

TEST(GpuSummary, IsAnsweredOnceWithTheDevicesOwnMemory) {
    const auto view = makeView();
    const auto engine = createGpuRooflineInfo(view);
    std::vector<std::string> answers;
    engine->loadSummaryData(0, [&](const std::string& text) { answers.push_back(text); });
    EXPECT_TRUE(answers.empty());
    loadAndWait(*view);
    loadAndWait(*view);
    ASSERT_EQ(answers.size(), 1u);
    const auto summary = parse(answers.front());
    // A level that the device's charts don't know has no traffic; the core's stands under its roof.
    EXPECT_EQ(linesOf(summary["metrics"], {"roofName", "value"}), R"(
roofName=hbm value=12.5
roofName=l3 value=23.75
roofName=slm value=5
roofName=l1 value=0
roofName=carmofchip value=27.5
roofName=spfma value=50
roofName=int32add value=25)");
    EXPECT_EQ(textOf(summary["metrics"][0]["caption"]) + textOf(summary["metrics"][5]["caption"]),
              fmt::format("HBM{} ({})", translate("roofline_summary_inst_compute"),
                          translate("roofline_summary_gflops")));
    EXPECT_EQ(linesOf(summary["roofs"], {"value"}),
              "\nvalue=100\nvalue=300\nvalue=600\nvalue=900\nvalue=900\nvalue=1000\nvalue=400");
    const auto& compute = summary["instructionMix"][0];
    EXPECT_EQ(lineOf(compute, {"name"}) + " " +
                  lineOf(compute["instructions"][2], {"instruction", "operationCount", "instructionCount"}),
              R"(name=Compute instruction=FMA operationCount={"value":180.0,"type":"f","digits":0} )"
              R"(instructionCount={"value":90.0,"type":"f","digits":0})");
}

TEST(GpuOperations, AreToldOfEachRow) {
    EXPECT_EQ(
        report_helpers::getGpuOperationsMapsJson(makeView()),
        R"([{"id":"1","name":"gemm","operations":[)"
        R"({"instructionType":2,"arithType":3,"width":32,"operationCount":20.0,"instructionCount":20.0},)"
        R"({"instructionType":3,"arithType":3,"width":32,"operationCount":180.0,"instructionCount":90.0},)"
        R"({"instructionType":7,"arithType":0,"width":0,"operationCount":0.0,"instructionCount":5.0}]},)"
        R"({"id":"2","name":"hash","operations":[)"
        R"({"instructionType":2,"arithType":2,"width":32,"operationCount":90.0,"instructionCount":9.0}]},)"
        R"({"id":"3","name":"host","operations":[]}])");
}

}  // namespace
}  // namespace data_models2::test
