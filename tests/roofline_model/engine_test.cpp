// The engine from its factory to its end: loads, threads, roofs, the choice of the dataset, its one
// rectangle.
#include "roofline_model/factories.h"
#include "roofline_model/gpu_roofline_engine.h"
#include "roofline_model/report_helpers.h"
#include "roofline_model/roof_catalogue.h"
#include "roofline_model/roofline_engine.h"

#include "tests/roofline_model/test_host.h"

#include <gtest/gtest.h>

namespace data_models2::test {
namespace {

using Perspective = IRooflineInfo::Perspective;
using LoadType = IViewModelBase::LoadType;

const std::string kPoint =
    " SelfTime=1 SelfElapsedTime=1 SelfGFlops=10 SelfFloatAi=1 SelfFloatOps=100 SelfMemL1=100";
const std::string kTotalPoint = kPoint + " TotalGFlops=10 TotalFloatAi=1";

TEST(Engine, WithoutAViewModelAnswersWithEmptyValues) {
    Assertions assertions;
    for (const auto& engine :
         {createRooflineInfo(nullptr), createGpuRooflineInfo(nullptr), createOffloadRooflineInfo(nullptr)}) {
        ASSERT_NE(engine, nullptr);
        EXPECT_EQ(parse(engine->getRooflineOptions())["groups"].Size(), 2u);
        EXPECT_EQ(engine->getRoofs("f-1", {}, Perspective::Program), "[]");
        EXPECT_EQ(engine->getRooflineData(makeDataset("a" + kPoint), "f-1") +
                      engine->getSelectedRoofs("", {}) + engine->getLoopAdditionalInfo("{}", nullptr, "f-1"),
                  "");
    }
    const auto engine = createRooflineInfo(nullptr);
    EXPECT_EQ(engine->getThreadsInfo() + engine->getAllRoofs("f-1"),
              R"({"physicalCoreCount":0,"processorPackageCount":0,"usedNumberOfThreads":0}[])");
    EXPECT_EQ(engine->getRooflineConfigurationStr({"i"}), "i-1");
    EXPECT_FALSE(engine->clearHighlighting(DataType::Cpu));
    EXPECT_EQ(CRooflineEngine().getMemoryLevelsCount(), 1);
    EXPECT_EQ(report_helpers::getGpuOperationsMapsJson(nullptr), "");
    CGpuRooflineEngine(nullptr).onSurveyResultLoaded({}, "");
    EXPECT_EQ(assertions.reported, std::vector<std::string>{"roofline_model/gpu_roofline_engine: m_model"});
}

TEST(Engine, CountsThreadsAsTheMachineTellsThem) {
    const std::tuple<int, int, int, int, const char*> cases[]{
        {8, 16, 2, 3, "8 2 3"}, {0, 8, 0, 0, "8 1 0"}, {-1, 8, -2, 12, "8 1 12"}, {0, 0, 1, 1, "0 1 1"}};
    for (const auto& [physical, logical, packages, used, expected] : cases) {
        const auto viewModel = makeViewModel(nullptr);
        std::tie(viewModel->physical, viewModel->logical, viewModel->packages, viewModel->used) =
            std::tuple(physical, logical, packages, used);
        const auto [cores, perProcessor, threads] = CRooflineEngine(viewModel).getThreadsInfoStruct();
        EXPECT_EQ(fmt::format("{} {} {}", cores, perProcessor, threads), expected);
    }
}

TEST(Engine, RebuildsMetricsAndOptionsOnEveryLoad) {
    for (const auto type : {LoadType::Result, LoadType::Refresh}) {
        const auto viewModel = makeViewModel(nullptr, nullptr, 0);
        CRooflineEngine engine(viewModel);
        EXPECT_EQ(engine.getMetrics(), nullptr);
        EXPECT_EQ(engine.getRooflineConfigurationStr({}), "f-1");
        viewModel->datasets[DataType::Cpu] = makeDataset("a SelfElapsedTime=1 SelfIntOps=1 SelfMemL1=1");
        viewModel->levels = 3;
        viewModel->load(type);
        const auto first = engine.getMetrics();
        EXPECT_EQ(engine.getRooflineConfigurationStr({}), "i-1-L1-all") << "no float work: the default flips";
        viewModel->load(type);
        EXPECT_NE(engine.getMetrics(), first);
        viewModel->datasets.clear();
        viewModel->load(type);
        EXPECT_EQ(engine.getMetrics(), nullptr);
        EXPECT_EQ(engine.getRooflineConfigurationStr({}), "f-1-L1-all");
    }
}

TEST(Engine, ListensToItsViewModelAndToNoOther) {
    const auto old = makeViewModel(nullptr), current = makeViewModel(makeDataset("a SelfElapsedTime=1"));
    auto engine = std::make_unique<CRooflineEngine>(old);
    engine->setModel(current);
    old->load();
    EXPECT_EQ(engine->getMetrics(), nullptr);
    current->load();
    EXPECT_NE(engine->getMetrics(), nullptr);
    current->highlighted = DataType::CpuTopDown;
    EXPECT_TRUE(engine->clearHighlighting(DataType::CpuTopDown) && !engine->clearHighlighting(DataType::Cpu));
    engine->setModel(nullptr);
    engine->setModel(current);
    engine.reset();
    current->load();  // reaches nobody
}

TEST(Engine, AnswersASummaryOfAnotherKindAtOnce) {
    const auto engine = createRooflineInfo(nullptr);
    std::string answers;
    const auto callback = [&](const std::string& text) { answers += "[" + text + "]"; };
    engine->loadSummaryData(1, callback);
    engine->loadSummaryData(-1, callback);
    engine->loadSummaryData(0, callback);
    engine->loadSummaryData(0, {});
    EXPECT_EQ(answers, "[][]");
    EXPECT_THROW(engine->loadSummaryData(1, {}), std::bad_function_call);
}

TEST(Roofs, AreWrittenAsTheTableGivesThem) {
    const auto viewModel = makeViewModel(nullptr);
    const auto& table = viewModel->roofs;
    table->roofs = {
        makeRoof(RoofId::DramBandwidth, "DRAM Bandwidth", 0, MemoryLevel::Dram),
        makeRoof(RoofId::Int64VectorAddPeak, "new", 5, MemoryLevel::None, ArithTypeExtDef::Int64)};
    table->roofs[0].value = 18446744073709551615u;
    table->roofs[0].typeBits |= RoofItem::SingleNode;
    const auto engine = createRooflineInfo(viewModel);
    const RoofThreadingFeatures features{4, RoofThreadingFeatures::Strategy::SingleThread, 2};
    const auto roofs = parse(engine->getRoofs("i", features, Perspective::NotVectorized));
    ASSERT_EQ(roofs.Size(), 2u);
    EXPECT_EQ(roofs[0]["val"].GetUint64(), 18446744073709551615u);
    EXPECT_EQ(boost::join(membersOf(roofs[0]), " "),
              "id val isMem isSingleNode measure name desc device memoryLevel opType dataType");
    EXPECT_EQ(linesOf(roofs, {"id", "isMem", "isSingleNode", "measure", "name", "device", "memoryLevel",
                              "opType", "dataType"}),
              R"(
id=6 isMem=true isSingleNode=true measure=GB/s name=DRAM Bandwidth device=1 memoryLevel=6 opType=3 dataType=0
id=17 isMem=false isSingleNode=false measure=GINTOP/s name=new device=1 memoryLevel=0 opType=1 dataType=9)");
    EXPECT_TRUE(roofs[0]["desc"].GetStringLength() > 0 && roofs[1]["desc"].GetStringLength() == 0);

    table->asked.clear();
    std::vector<std::string> expected;
    const std::pair<const char*, OperationsType> cases[]{{"i", OperationsType::Int},
                                                         {"f-1", OperationsType::Float},
                                                         {"b", OperationsType::Mixed},
                                                         {"", OperationsType::Float},
                                                         {"i-f", OperationsType::Float}};
    for (const auto& [configuration, operations] : cases) {
        engine->getRoofs(configuration, features, Perspective::Vectorized);
        expected.push_back(roof::getCpuRoofConfiguration(features, operations, Perspective::Vectorized));
    }
    EXPECT_EQ(table->asked, expected);
}

TEST(Roofs, OfAllThreadSetUpsSkipOddCounts) {
    const auto viewModel = makeViewModel(nullptr);
    const auto& table = viewModel->roofs;
    const auto setUps = [&](int physical, int packages) {
        viewModel->physical = physical;
        viewModel->packages = packages;
        std::string text;
        const auto all = parse(createRooflineInfo(viewModel)->getAllRoofs("b"));
        for (const auto& setUp : all.GetArray())
            text += fmt::format(" {}{}{}", textOf(setUp["packageCount"]), textOf(setUp["strategyId"])[3],
                                textOf(setUp["threadCount"]));
        return text;
    };
    EXPECT_EQ(setUps(8, 2), " 2M1 2M2 2M4 2M6 2M8 2S1 2S2 2S4 2S6 2S8 1M1 1M2 1M4 1S1 1S2 1S4");
    EXPECT_EQ(setUps(5, 1), " 1M1 1M2 1M4 1S1 1S2 1S4");
    EXPECT_EQ(setUps(7, 3), " 3M1 3M2 3M4 3M6 3S1 3S2 3S4 3S6 1M1 1M2 1S1 1S2");
    EXPECT_EQ(setUps(1, 2), "");
    const RoofThreadingFeatures first{1, RoofThreadingFeatures::Strategy::MultiThread, 2};
    EXPECT_EQ(table->asked.front(),
              roof::getCpuRoofConfiguration(first, OperationsType::Mixed, Perspective::Program));
}

TEST(Roofs, WithoutATableAreNoneAndThatIsReported) {
    const auto viewModel = makeViewModel(nullptr);
    viewModel->physical = 1;
    viewModel->roofs = nullptr;
    Assertions assertions;
    const auto engine = createRooflineInfo(viewModel);
    EXPECT_EQ(engine->getRoofs("f", {}, Perspective::Program), "[]");
    EXPECT_EQ(assertions.reported, std::vector<std::string>{"roofline_model/roofline_engine: roofManager"});
    EXPECT_EQ(parse(engine->getAllRoofs("f")).Size(), 2u);
}

// The name of the first record of the chart.
std::string drawn(IRooflineInfo& engine, const sptr_t<IDataset>& first, const sptr_t<IDataset>& second,
                  const std::string& configuration) {
    const auto chart = parse(engine.getRooflineData(first, second, configuration));
    return chart.HasMember("loops") ? textOf(chart["loops"][0]["name"]) : "nothing";
}

TEST(Chart, TakesTheDatasetThatTheConfigurationCallsFor) {
    const auto self = makeDataset("self" + kTotalPoint), total = makeDataset("total" + kTotalPoint);
    const auto mine = makeDataset("mine" + kTotalPoint), other = makeDataset("other" + kTotalPoint);
    const auto engine = createRooflineInfo(makeViewModel(self, total));
    EXPECT_EQ(drawn(*engine, nullptr, nullptr, "f-1"), "self");
    EXPECT_EQ(drawn(*engine, nullptr, nullptr, "f-0"), "total");
    EXPECT_EQ(drawn(*engine, mine, other, "f-1"), "mine");
    EXPECT_EQ(drawn(*engine, mine, other, "f-0"), "other");
    EXPECT_EQ(drawn(*engine, mine, nullptr, "f-0"), "total");
    const auto withoutTotal = createRooflineInfo(makeViewModel(self)),
               withoutMetrics = createRooflineInfo(makeViewModel(nullptr));
    EXPECT_EQ(drawn(*withoutTotal, nullptr, nullptr, "f-0"), "self");
    EXPECT_EQ(drawn(*withoutMetrics, nullptr, nullptr, "f-0"), "nothing");
    EXPECT_EQ(drawn(*withoutMetrics, mine, nullptr, "f-1"), "mine");
}

TEST(Chart, KeepsOneScaleForTheLifeOfItsEngine) {
    const auto bounds = [](IRooflineInfo& engine, const sptr_t<IDataset>& first,
                           const sptr_t<IDataset>& second, const char* configuration) {
        return lineOf(parse(engine.getRooflineData(first, second, configuration)),
                      {"minX", "maxX", "minY", "maxY"});
    };
    const std::string integers = " SelfGIntOps=1000 SelfIntAi=0.01 SelfIntOps=10";
    const auto self = makeDataset("a" + kPoint + integers);
    // The scale takes in total data, other types, and rows below one without a point.
    const auto total = makeDataset("a SelfTime=1\n  b TotalGFlops=1e5 TotalFloatAi=1e-4" + kPoint);
    const auto viewModel = makeViewModel(self, total);
    const auto engine = createRooflineInfo(viewModel);
    for (const char* configuration : {"f-1", "i-1"})
        EXPECT_EQ(bounds(*engine, self, total, configuration), "minX=-4 maxX=0 minY=1 maxY=5")
            << configuration;
    viewModel->load();
    const auto other = makeDataset("a" + kPoint + " SelfGIntOps=1e9 SelfIntAi=1e9");
    EXPECT_EQ(bounds(*engine, other, other, "f-1"), "minX=-4 maxX=0 minY=1 maxY=5") << "calculated once";

    const auto growing = createRooflineInfo(viewModel);
    EXPECT_EQ(bounds(*growing, self, nullptr, "f-1"), "minX=0 maxX=0 minY=1 maxY=2") << "without total data";
    EXPECT_EQ(bounds(*growing, self, nullptr, "i-1"), "minX=-2 maxX=0 minY=1 maxY=3");
    EXPECT_EQ(bounds(*growing, self, total, "f-1"), "minX=-2 maxX=0 minY=1 maxY=3") << "no longer empty";
}

TEST(Chart, ScalesByEveryLevelAndKindOfTraffic) {
    const auto dataset =
        makeDataset("a" + kPoint + " SelfL1Load=1 SelfL1Store=1 SelfL3Load=1e-2 SelfDramStore=1e6");
    const auto engine = createRooflineInfo(makeViewModel(dataset, dataset, 5));
    const auto chart = parse(engine->getRooflineData(dataset, dataset, "f-1-L1-all"));
    EXPECT_EQ(lineOf(chart, {"minX", "maxX"}), "minX=-4 maxX=4");
}

}  // namespace
}  // namespace data_models2::test
