// Kernels under a device's roofs: which roofs fit, what bounds the kernel, what is told of it.
#include "roofline_model/factories.h"

#include "tests/roofline_model/row_test_host.h"

#include <cmath>

namespace data_models2 {
namespace {

using namespace row_test;
using Level = MemoryLevel;
using Type = ArithTypeExtDef;
using enum GpuInstruction;
using enum ArithTypeDef;

const std::vector<RoofItem> kRoofs{
    makeRoof(RoofId::None, "Matrix", 9000, Level::None, Type::Float64, RoofOpType::Matrix),
    makeRoof(RoofId::Int32VectorAddPeak, "Int", 1000, Level::None, Type::Int32, RoofOpType::Basic),
    makeRoof(RoofId::DpVectorAddPeak, "NoFMA", 2500, Level::None, Type::Float64, RoofOpType::Basic),
    makeRoof(RoofId::DpVectorFmaPeak, "FMA", 5000, Level::None, Type::Float64, RoofOpType::Fma),
    makeRoof(RoofId::DeviceHbmBandwidth, "HBM", 800, Level::Hbm),
    makeRoof(RoofId::L1Bandwidth, "L1", 8000, Level::L1),
    makeRoof(RoofId::XliBandwidth, "XLI", 30, Level::Xli),
    makeRoof(RoofId::L3Bandwidth, "L3", 2000, Level::L3),
    makeRoof(RoofId::DramBandwidth, "DRAM", 400, Level::Dram),
    makeRoof(RoofId::DeviceL3Bandwidth, "L4", 800, Level::L4),
    makeRoof(RoofId::SlmBandwidth, "SLM", 4000, Level::Slm),
};

using Counts = std::vector<std::tuple<GpuInstruction, ArithTypeDef, unsigned, double>>;

struct Kernel {
    std::string cells = {};  // beside and instead of those in `makeResult`
    Counts operations = {{Fma, Float, 64, 200.0}};
    std::vector<std::string> boundedBy = {};
    Level memory = Level::Hbm;
};

std::shared_ptr<test::ViewModel> makeResult(const Kernel& kernel) {
    auto table = test::tableOf(
        "host\nkernel type=0x1000000 SelfGFlops=100 SelfFloatAi=0.5 SelfFloatOps=200 "
        "SelfGIntOps=10 SelfIntAi=0.05 SelfIntOps=20 GpuElapsedTime=2 "
        "GpuCarmTraffic=400 GpuL3Traffic=100 GpuSlmTraffic=50 GpuMemTraffic=50" +
            kernel.cells,
        DataType::Gpu);
    table.rows[1].boundedBy = kernel.boundedBy;
    std::string text = "host\nkernel";
    for (const auto& [instruction, type, width, count] : kernel.operations)
        text += fmt::format(
            "\n  s GpuInstructionType={}u GpuArithType={}u GpuArithWidth={}u "
            "GpuOperationCount={} GpuInstructionCount=8",
            static_cast<int>(instruction), static_cast<int>(type), width, count);
    auto result = std::make_shared<test::ViewModel>();
    result->datasets = {{DataType::Gpu, new test::Dataset(table)},
                        {DataType::GpuStatistics, test::makeDataset(text, DataType::GpuStatistics)}};
    result->memory = kernel.memory;
    result->roofs->roofs = kRoofs;
    return result;
}

std::shared_ptr<IRowRooflineInfo> rowOf(const std::shared_ptr<test::ViewModel>& result) {
    const auto dataset = result->datasets[DataType::Gpu];
    return createGpuRowRooflineInfo(test::rowsOf(dataset)[1], dataset, result, TileUsage::Multi);
}
std::shared_ptr<IRowRooflineInfo> rowOf(const Kernel& kernel) { return rowOf(makeResult(kernel)); }

std::string namesOf(const std::vector<RoofItem>& roofs) {
    std::string names;
    for (const auto& roof : roofs) names += roof.name + " ";
    return names;
}

TEST(GpuRow, ItsRoofsAreTheDevicesOwnMemoryAndThoseOfTheCountedOperations) {
    const auto hbm = Level::Hbm;
    const std::tuple<Level, Counts, std::string> rows[]{
        {hbm, {{Mad, Float, 64, 200.0}}, "HBM L4 L3 SLM L1 + XLI DRAM : NoFMA "},
        {Level::Dram, {{Mad, Float, 64, 200.0}}, "DRAM L4 L3 SLM L1 + HBM XLI : NoFMA "},
        {Level::None, {{Mad, Float, 64, 200.0}}, "XLI L4 L3 SLM L1 + HBM DRAM : NoFMA "},
        // More than 15 whole percent make an operation count.
        {hbm, {{Fma, Float, 64, 31.9}, {Basic, Float, 64, 168.1}}, ": NoFMA "},
        {hbm, {{Fma, Float, 64, 32.0}, {Basic, Float, 64, 168.0}}, ": FMA "},
        // Integers have no peak of their own for it, matrices no instruction.
        {hbm, {{Fma, Float, 64, 200.0}, {Fma, Int, 32, 20.0}}, ": FMA Int "},
        {hbm, {{Vector, Float, 64, 200.0}}, ": "},
        {hbm, {{Fma, Float, 64, 1e300}, {Basic, Int, 32, std::nan("")}}, ": FMA "},
        {hbm, {}, ": "},
    };
    for (const auto& [memory, operations, expected] : rows) {
        const auto row = rowOf({.operations = operations, .memory = memory});
        std::vector<RoofItem> others, compute;
        for (int time = 0; time < 2; ++time) row->extendMemoryRoofs(others);  // each once
        for (const auto type : {OperationsType::Float, OperationsType::Int})
            if (const RoofItem roof = row->getComputeRoof(type); !roof.name.empty()) compute.push_back(roof);
        const auto names = namesOf(row->getMemoryRoofs()) + "+ " + namesOf(others) + ": " + namesOf(compute);
        EXPECT_TRUE(names.ends_with(expected)) << names << "for " << expected;
    }
}

TEST(GpuRow, WhatItsIssuesNameOverrulesTheRoofAndMakesTheConclusions) {
    const std::string memory = " rec_memory_bound limitingRoof=",
                      compute = " rec_compute_bound limitingRoof=";
    const std::string hbm = "25 HBM 3200" + memory + "HBM rec_cache_locality";
    const std::string l3 = "3 L3 4000" + memory + "L3 rec_increase_ai";
    const std::string slm = "22 SLM 3200" + memory + "SLM rec_increase_ai";  // at the height of the old roof
    const std::string lines = l3 + " rec_cache_line_utilization cacheLineUtilizaion=";
    const std::string other = " rec_other_bound offloadBoundedBy=Latencies";
    const Counts ints{{Basic, Int, 32, 300.0}};
    const std::tuple<std::vector<std::string>, std::string, std::string, Counts> rules[]{
        {{}, " CacheLineUtilization=0.5", hbm, {}},
        {{"L1_BW"}, " CacheLineUtilization=0.5", "1 L1 4000" + memory + "L1 rec_increase_ai", {}},
        {{"L3_BW", "Latencies"}, "", l3, {}},
        {{"DRAM_BW"}, "", "6 DRAM 1600" + memory + "DRAM rec_cache_locality", {}},  // not the device's own
        {{"Compute"}, "", "8 FMA 5000" + compute + "FMA", {}},
        {{"Compute"}, " SelfGIntOps=150 SelfIntOps=300", "16 Int 1000" + compute + "Int", ints},
        {{"L1_BW"}, " SelfGIntOps=150 SelfIntOps=300", "1 L1 6000" + memory + "L1 rec_increase_ai", ints},
        {{"L2_BW", "L3_BW"}, "", hbm, {}},  // the device has no such roof
        {{"?", "Latencies", "L3_BW"}, "", "0 Latencies 3200" + other, {}},
        {{"SLM_BW"}, " GpuSlmTraffic=\"x\"", slm, {}},
        {{"SLM_BW"}, " GpuSlmTraffic=1e-13", slm, {}},
        {{"L3_BW"}, "\n  child", l3, {}},
        {{"L3_BW"}, "\n  child\n  child", hbm, {}},
        {{"L3_BW"}, " SelfGFlops=1e6", "0  0", {}},  // above all roofs
        {{"L3_BW"}, " CacheLineUtilization=0.0099", l3, {}},
        {{"L3_BW"}, " CacheLineUtilization=0.01", lines + "1%", {}},
        {{"L3_BW"}, " CacheLineUtilization=0.7499", lines + "74%", {}},
        {{"L3_BW"}, " CacheLineUtilization=0.75", l3, {}},
        {{"L3_BW"}, " CacheLineUtilization=655.86", l3, {}},  // 50 percent if 16 bits overflowed
        {{"L3_BW"}, " CacheLineUtilization=nan", l3, {}},
    };
    for (const auto& [boundedBy, cells, expected, operations] : rules) {
        Kernel kernel{.cells = cells, .boundedBy = boundedBy};
        if (!operations.empty()) kernel.operations = operations;
        const auto row = std::dynamic_pointer_cast<CRowRooflineEngine>(rowOf(kernel));
        const auto roof = row->getLimitingRoof(false);
        auto text = fmt::format("{} {} {:g}", static_cast<int>(roof.id), roof.name, roof.limitValue);
        for (const auto& [key, attributes] : row->getRooflineConclusions()) {
            text += " " + key;
            for (const auto& [name, value] : attributes) text += " " + name + "=" + value;
        }
        EXPECT_EQ(text, expected);
    }
}

TEST(GpuRow, AKernelTellsItsLevelsItsOperationsAndItsInstructions) {
    const auto result =
        makeResult({.operations = {{Load, None, 0, 2.0},
                                   {Basic, Int, 32, 0.0},  // the first counted: the mix is off
                                   {Fma, Float, 64, 160.0},
                                   {Math, Mixed, 16, 4.0},
                                   {SlmAtomic, FloatOther, 32, 3.0},
                                   {GpuInstruction(99), ArithTypeDef(77), 8, 1.0}}});
    const auto row = rowOf(result);
    EXPECT_EQ(result->roofs->asked.back(),
              roof::getGpuRoofConfiguration(TileUsage::Multi, OperationsType::Undefined));
    std::string text;
    for (const auto& point : row->getMemLevelPoints())
        text += fmt::format("{} at {:g} below {},", static_cast<int>(point.memoryLevel), point.ai,
                            static_cast<int>(point.limitingRoofId));
    const auto document = test::parse(row->getRooflineData());
    const auto& summary = document["opsAndBandwidth"];
    text += test::linesOf(summary["metrics"], {"roofName", "value"});
    for (const auto& group : summary["instructionMix"].GetArray())
        text += "\n" + test::lineOf(group, {"name", "showDataType", "enableInstructionMix"}) + " " +
                test::lineOf(group["instructions"][0], {"operationCount"}) +
                test::linesOf(group["instructions"], {"instruction", "dataType", "dataSize"});
    EXPECT_EQ(text, R"(3 at 2 below 0,9 at 4 below 0,11 at 4 below 25,
roofName=hbm value=25
roofName=fma value=100
name=Atomic showDataType=false enableInstructionMix=false operationCount={"value":3.0,"type":"f","digits":0}
instruction=SLM Atomic dataType={"id":4,"title":"Float 32"} dataSize={"value":32,"formattedValue":"SP"}
name=Compute showDataType=true enableInstructionMix=false operationCount={"value":0.0,"type":"f","digits":0}
instruction=Basic dataType={"id":2,"title":"Integer 32"} dataSize={"value":32,"formattedValue":"32"}
instruction=FMA dataType={"id":3,"title":"Float 64"} dataSize={"value":64,"formattedValue":"DP"}
instruction=Math dataType={"id":1,"title":"Integer and Float"} dataSize={"value":16,"formattedValue":"16"}
name=Memory showDataType=false enableInstructionMix=false operationCount={"value":2.0,"type":"f","digits":0}
instruction=Load dataType={"id":0,"title":""} dataSize={"value":0,"formattedValue":"0"}
name=Other showDataType=false enableInstructionMix=false operationCount={"value":1.0,"type":"f","digits":0}
instruction=Not Classified dataType={"id":77,"title":""} dataSize={"value":8,"formattedValue":"8"})");
}

TEST(GpuRow, MissingAndHostileDataGiveEmptyAnswers) {
    const test::Assertions quiet;
    const auto result = makeResult({}), noRoofs = makeResult({});
    const auto dataset = result->datasets[DataType::Gpu];
    EXPECT_FALSE(createGpuRowRooflineInfo(nullptr, dataset, result, TileUsage::Single));
    EXPECT_FALSE(createGpuRowRooflineInfo(*dataset->getRows(0), dataset, nullptr, TileUsage::Single));
    EXPECT_EQ(boost::join(quiet.reported, " "),
              "roofline_model/gpu_roofline_factory: row "
              "roofline_model/gpu_roofline_factory: viewModel");
    EXPECT_TRUE(rowOf(result)->isValid());
    EXPECT_FALSE(rowOf({.cells = " type=0x8"})->isValid());
    result->datasets.erase(DataType::GpuStatistics);
    noRoofs->roofs = nullptr;
    EXPECT_FALSE(rowOf(result) || rowOf(noRoofs));
    for (const auto* field : {"SelfGFlops", "SelfFloatAi", "SelfFloatOps", "SelfIntOps", "GpuElapsedTime",
                              "GpuL3Traffic", "GpuMemTraffic", "GpuSlmTraffic", "CacheLineUtilization"})
        for (const auto* value : {"\"x\"", "nan", "inf", "-1", "0", "1e308", "-1l"})
            for (const auto* bound : {"", "SLM_BW", "Compute", "Latencies"}) {
                const auto row = rowOf({.cells = fmt::format(" {}={}", field, value), .boundedBy = {bound}});
                ASSERT_EQ(test::faultOf(row->getRooflineData()), "") << field << " " << value;
            }
}

}  // namespace
}  // namespace data_models2
