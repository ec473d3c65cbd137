// The engine of a projection: its tables, its tree, what a load changes, what dominates, and what it has not.
#include "host_interfaces/comparison.h"

#include "roofline_model/offload_roofline_engine.h"
#include "roofline_model/translation.h"

#include "tests/roofline_model/row_test_host.h"

#include <boost/algorithm/string/case_conv.hpp>
#include <boost/algorithm/string/replace.hpp>

namespace data_models2::test {
namespace {

using enum OperationsType;
using Perspective = IRooflineInfo::Perspective;
using roofline::translate;

std::shared_ptr<ViewModel> makeView() {
    const auto view = makeViewModel(nullptr);
    view->datasets[DataType::Offload] = makeDataset(
        "gemm OffloadElapsedTime=2 TotalFloatOps=40 TotalGFlops=20 TotalFloatAi=4 TotalMixedOps=50 "
        "TotalGMixedOps=25 TotalIntOps=10 OffloadFloat32Ops=4 OffloadFloat64Ops=36 OffloadInt32Ops=10 "
        "OffloadHbmBytes=10e9 OffloadHbmBandwidth=5e9 OffloadXliBytes=2e9"
        "\nskipped TotalFloatOps=900 TotalGFlops=1 OffloadFloat32Ops=900 OffloadHbmBytes=9e9",
        DataType::Offload);
    using enum RoofId;
    using Type = ArithTypeExtDef;
    constexpr auto kNone = MemoryLevel::None;
    constexpr auto kBasic = RoofOpType::Basic;
    view->roofs->roofs = {makeRoof(SpVectorAddPeak, "SP", 100, kNone, Type::Float32, kBasic),
                          makeRoof(DpVectorAddPeak, "DP", 100, kNone, Type::Float64, kBasic),
                          makeRoof(Int32VectorAddPeak, "Int32", 100, kNone, Type::Int32, kBasic),
                          makeRoof(DeviceHbmBandwidth, "HBM", 100, MemoryLevel::Hbm),
                          makeRoof(XliBandwidth, "XLI", 100, MemoryLevel::Xli)};
    return view;
}

TEST(OffloadLoopParams, Are53InGigaUnitsAndFollowTheLevelAndTheOperations) {
    const auto& tables = getOffloadTables();
    EXPECT_EQ(tables.params.size(), 53u);
    for (const auto& [operations, rate, count] :
         {std::tuple{"f", "TotalGFlops", "TotalFloatOps"}, std::tuple{"i", "TotalGIntOps", "TotalIntOps"},
          std::tuple{"b", "TotalGMixedOps", "TotalMixedOps"}})
        for (const std::string level : {"L3", "L1", "Slm", "Xli", "Dram", "Edram", "Gddr6", "Llc", "Hbm"}) {
            const auto name = boost::to_upper_copy(level) + "gpu";
            EXPECT_EQ(paramsOf(tables.params, {operations, name}), fmt::format(R"(
name = FunctionName 0
locat = OffloadSourceLocation SourceLine join: 0
vec = 1 0
selfElapsedTime = OffloadElapsedTime 0
key = RowKey 0
y = {1} log10 4
x = {2} Offload{0}Bytes 1e+09 / / log10 4
selfMem = Offload{0}Bytes 1e+09 / 0
effectiveBand = Offload{0}Bandwidth 1e+09 / 0)",
                                                                               level, rate, count));
        }
}

TEST(OffloadOptionTree, IsMadeOnceForTheTargetOfThatMoment) {
    const std::pair<const char*, const char*> targets[]{
        {"GDDR6", R"(["f"] f i b; ["GDDR6gpu"] L3gpu XLIgpu GDDR6gpu; )"},
        {"L3", R"(["f"] f i b; ["L3gpu"] L3gpu XLIgpu L3gpu; )"},
        {"HBMgpu", R"(["f"] f i b; ["XLIgpu"] L3gpu XLIgpu XLIgpu; )"},
        {"L1", R"(["f"] f i b; ["CARMgpu"] L3gpu XLIgpu; )"},
    };
    const auto view = makeView();
    for (const auto& [memory, expected] : targets) {
        view->targetMemory = memory;
        const COffloadRooflineEngine engine(view);
        view->targetMemory = "DRAM";
        view->load();
        EXPECT_EQ(optionsOf(parse(engine.getRooflineOptions())), expected) << memory;
    }
}

TEST(OffloadEngine, ALoadMeasuresAndFindsWhatDominatesForTheTargetThatIsKnownThen) {
    const auto view = makeView();
    view->targetMemory = "unheard of";
    COffloadRooflineEngine engine(view);
    // Gigabytes of the link and of the memory, giga operations, the roofs that are shown.
    const auto state = [&] {
        const auto& metrics = engine.getMetrics();
        std::string text =
            metrics
                ? fmt::format("{} {} {} {}", metrics->getTotalGBs("XLIgpu"), metrics->getTotalGBs("HBMgpu"),
                              metrics->getTotalOpCount(Float), metrics->getTotalOpCount(Mixed))
                : "none";
        return text + selectedOf(engine, "f");
    };
    const auto loaded = [&] {
        view->load();
        return state();
    };
    EXPECT_EQ(state(), "none xli");
    EXPECT_EQ(loaded(), "2 0 40 50 dp int32 xli") << "a level that is listed twice is measured once";
    view->targetMemory = "HBM";
    EXPECT_EQ(loaded(), "2 10 40 50 dp int32 hbm") << "what took no time counts nothing";
    const auto regions = std::exchange(view->datasets[DataType::Offload], nullptr);
    EXPECT_EQ(loaded() + " " + engine.getRooflineConfigurationStr({}), "none hbm f-XLIgpu");
    view->datasets[DataType::Offload] = regions;
    const auto roofs = std::exchange(view->roofs, nullptr);
    const Assertions quiet;
    EXPECT_EQ(loaded(), "2 10 40 50nothing");
    view->roofs = roofs;
    view->throws = true;
    EXPECT_EQ(loaded(), "nonenothing") << "a host that fails";
    engine.setModel(makeView());
    view->throws = false;
    EXPECT_EQ(loaded(), "none hbm") << "of the model before nothing more is heard";
}

TEST(OffloadEngine, DrawsItsRegionsAndTellsOfThem) {
    const auto view = makeView();
    COffloadRooflineEngine engine(view);
    view->load();
    const auto chart = parse(engine.getRooflineData(nullptr, nullptr, "b-HBMgpu"));
    EXPECT_EQ(linesOf(chart["loops"], {"name", "vec", "selfElapsedTime", "selfMem", "effectiveBand", "x"}),
              "\nname=gemm vec=1 selfElapsedTime=2 selfMem=10 effectiveBand=5 x=0.69897");
    EXPECT_EQ(linesOf(chart["programTotal"], {"selfMem", "selfElapsedTime", "y"}),
              "\nselfMem=10 selfElapsedTime=2 y=1.39794");
    EXPECT_EQ(lineOf(chart, {"namePref", "namePref1"}), "namePref1=" + translate("roofline_value_prefix1"));
    const auto nothing = parse(engine.getRooflineData(nullptr, "i-L3gpu"));
    EXPECT_EQ(textOf(nothing["noDataMessage"]["descr"]), translate("roofline_no_data_descr"));
    const auto details = engine.getLoopAdditionalInfo(R"({"item": [1]})", nullptr, "f");
    EXPECT_EQ(linesOf(parse(details), {"id"}), "\nid=1");
    EXPECT_EQ(view->roofs->asked.back(), roof::getGpuRoofConfiguration(TileUsage::Multi, Undefined));
    EXPECT_EQ(engine.getComparisonData({}, R"({"item": [1]})", "f"), details);
}

TEST(OffloadEngine, HasNoThreadsAndNoSummary) {
    const auto view = makeView();
    COffloadRooflineEngine engine(view);
    view->load();
    EXPECT_EQ(engine.getThreadsInfo() + engine.getAllRoofs("f"), "");
    engine.loadSummaryData(0, [](const std::string&) { ADD_FAILURE() << "an answer"; });
    engine.loadSummaryData(1, {});
    COffloadRooflineEngine(nullptr).onResultLoaded({}, "");
}

}  // namespace
}  // namespace data_models2::test
