// The template of a report: by kind its members, points worked out by hand, expressions of the tables.
#include "roofline_model/factories.h"
#include "roofline_model/translation.h"

#include "tests/roofline_model/row_test_host.h"

#include <boost/algorithm/string/replace.hpp>

namespace data_models2::test {
namespace {

using roofline::translate;

// Giga operations, gigabytes, two seconds: of all three kinds.
const std::string kRow =
    "gemm type=0x1000000 SelfTime=4 SelfElapsedTime=2 GpuElapsedTime=2 OffloadElapsedTime=2 SelfFloatOps=100 "
    "SelfIntOps=20 SelfMixedOps=120 SelfMemL1=10 SelfMemDram=50 TotalFloatOps=40 TotalIntOps=60 "
    "TotalMixedOps=100 GpuMemTraffic=50 OffloadHbmBytes=10e9";

rapidjson::Document templateOf(DataType kind, RoofTable& asked) {
    const auto viewModel = makeViewModel(makeDataset(kRow), nullptr, 3);
    viewModel->datasets[DataType::Gpu] = makeDataset(kRow, DataType::Gpu);
    viewModel->datasets[DataType::Offload] = makeDataset(kRow, DataType::Offload);
    viewModel->memory = MemoryLevel::Hbm;
    viewModel->physical = viewModel->packages = 2;
    viewModel->roofs->roofs = {makeRoof(RoofId::L1Bandwidth, "L1", 100, MemoryLevel::L1),
                               makeRoof(RoofId::DeviceHbmBandwidth, "HBM", 50, MemoryLevel::Hbm)};
    const auto engine = kind == DataType::Cpu   ? createRooflineInfo(viewModel)
                        : kind == DataType::Gpu ? createGpuRooflineInfo(viewModel)
                                                : createOffloadRooflineInfo(viewModel);
    viewModel->load();
    auto report = parse(engine->getReportTemplate(nullptr));
    asked = *viewModel->roofs;
    return report;
}

// Its members, its points by operations type, its parameters: how many, how many of them necessary, and those
// of the given types.
std::string digestOf(const Json& report, const std::string& types) {
    const auto members = boost::replace_all_copy(boost::join(membersOf(report), " "), " loopP", "\nloopP");
    std::string text = "\n" + members + "\n" + lineOf(report, {"memoryLevel", "intDominatingType"});
    for (const auto& [name, item] : report["programTotal"].GetObject()) {
        text += "\n" + textOf(name) + " " + textOf(item["rooflineType"]);
        for (const auto& point : item["data"].GetArray())
            text += ": " + lineOf(point, {"x", "y", "selfElapsedTime", "selfMem", "effectiveBand"});
    }
    int necessary = 0;
    std::string found;
    for (const auto& param : report["loopParams"].GetArray()) {
        necessary += param.HasMember("necessary");
        if (textOf(param["types"]) == types) found += "\n" + lineOf(param, {"name", "expr", "necessary"});
    }
    return fmt::format("{}\n{} {}{}", text, report["loopParams"].Size(), necessary,
                       boost::replace_all_copy(found, "\x07", " "));
}

TEST(ReportTemplate, OfACpuTellsOfItsLevelsAndOfEachThreadSetUp) {
    RoofTable table;
    const auto report = templateOf(DataType::Cpu, table);
    EXPECT_EQ(digestOf(report, R"(["L3","all"])"), R"(
memoryLevel intDominatingType programTotal allRoofs selectedRoofs loopsAdditionalInfo
loopParams mainChartProperties attrs
memoryLevel=L1 intDominatingType=0
f f: x=1 y=1.69897 selfElapsedTime=2 selfMem=10: x=0.30103 y=1.69897 selfElapsedTime=2 selfMem=50
i i: x=0.30103 y=1 selfElapsedTime=2 selfMem=10: x=-0.39794 y=1 selfElapsedTime=2 selfMem=50
b b: x=1.07918 y=1.77815 selfElapsedTime=2 selfMem=10: x=0.380211 y=1.77815 selfElapsedTime=2 selfMem=50
195 102
name=selfMem expr=SelfL3Load SelfL3Store +
name=totalMem expr=TotalL3Load TotalL1Store +)");
    // One or two threads of two packages, one of one, by both strategies.
    const auto& setUps = report["allRoofs"]["i"]["data"];
    EXPECT_EQ(setUps.Size(), 6u);
    EXPECT_EQ(linesOf(setUps[0]["roofs"], {"name", "val"}), "\nname=L1 val=1e+11\nname=HBM val=5e+10");
    EXPECT_EQ(
        textOf(report["selectedRoofs"]["f"]["data"]),
        R"({"roofsState":{"l1":{"selected":true,"hidden":false},"hbm":{"selected":false,"hidden":false}}})");
    EXPECT_EQ(textOf(report["loopsAdditionalInfo"]["b"]), R"({"rooflineType":"b","data":{}})");
    EXPECT_EQ(lineOf(report["mainChartProperties"][3], {"types", "name", "value"}),
              R"(types=["f"] name=measureY value=)" + translate("roofline_perf_axis_measure"));
    EXPECT_EQ(lineOf(report["attrs"][4], {"types", "name", "caption", "measure", "isMem"}),
              fmt::format(R"(types=[""] name=selfMem caption={} measure={} isMem=false)",
                          translate("roofline_self_traffic"), translate("roofline_memory_gb")));
}

TEST(ReportTemplate, OfADeviceTellsOfItsLastLevel) {
    RoofTable table;
    // A GPU offers no mixed operations: they stand at its default.
    EXPECT_EQ(digestOf(templateOf(DataType::Gpu, table), R"(["HBMgpu","i"])"), R"(
memoryLevel intDominatingType programTotal roofs selectedRoofs loopsAdditionalInfo
loopParams mainChartProperties attrs
memoryLevel=HBMgpu intDominatingType=0
f f: x=0.30103 y=1.69897 selfElapsedTime=2 selfMem=50
i i: x=-0.39794 y=1 selfElapsedTime=2 selfMem=50
b b: x=0.30103 y=1.69897 selfElapsedTime=2 selfMem=50
31 14
name=x expr=SelfIntOps GpuMemTraffic / log10 necessary=true)");
    EXPECT_EQ(digestOf(templateOf(DataType::Offload, table), R"(["b"])"), R"(
memoryLevel intDominatingType programTotal roofs
loopParams mainChartProperties attrs
memoryLevel=HBMgpu intDominatingType=1
f f: x=0.60206 y=1.30103 selfElapsedTime=2 selfMem=10
i i: x=0.778151 y=1.47712 selfElapsedTime=2 selfMem=10
b b: x=1 y=1.69897 selfElapsedTime=2 selfMem=10
53 30
name=y expr=TotalGMixedOps log10 necessary=true)");
    std::vector<std::string> expected{""};  // by the load
    for (const auto type : {OperationsType::Float, OperationsType::Int, OperationsType::Mixed})
        expected.push_back(roof::getGpuRoofConfiguration(TileUsage::Multi, type));
    EXPECT_EQ(table.asked, expected);
}

TEST(ReportTemplate, IsWholeWhereNothingIsKnown) {
    const Assertions assertions;
    const auto bare = makeViewModel(nullptr);
    bare->roofs = nullptr;
    const std::string nothing = R"({"rooflineType":"f","data":[]})";
    for (const auto& engine : {createRooflineInfo(nullptr), createOffloadRooflineInfo(nullptr),
                               createRooflineInfo(bare), createOffloadRooflineInfo(bare)}) {
        const auto report = parse(engine->getReportTemplate(nullptr));
        EXPECT_EQ(textOf(report["programTotal"]["f"]), nothing);
        EXPECT_EQ(textOf(report[report.HasMember("roofs") ? "roofs" : "allRoofs"]["f"]), nothing);
    }
    EXPECT_EQ(assertions.reported,
              std::vector<std::string>(2, "roofline_model/roofline_engine: roofManager"));
}

}  // namespace
}  // namespace data_models2::test
