// Regions of a projection under their target's roofs: what limits them, which roofs fit, what is told of
// them.
#include "roofline_model/factories.h"

#include "tests/roofline_model/row_model.h"

#include <rapidcheck.h>

namespace data_models2 {
namespace {

using namespace row_test;
using Level = MemoryLevel;

// The levels of a target from the core, with the fields that count their bytes.
constexpr std::tuple<Level, RoofId, FieldId> kLevels[]{
    {Level::Slm, RoofId::SlmBandwidth, FieldId::OffloadSlmBytes},
    {Level::L1, RoofId::L1Bandwidth, FieldId::OffloadL1Bytes},
    {Level::L2, RoofId::L2Bandwidth, FieldId::OffloadL2Bytes},
    {Level::L3, RoofId::DeviceL3Bandwidth, FieldId::OffloadL3Bytes},
    {Level::Xli, RoofId::XliBandwidth, FieldId::OffloadXliBytes},
    {Level::Hbm, RoofId::DeviceHbmBandwidth, FieldId::OffloadHbmBytes},
};

std::shared_ptr<CRowRooflineEngine> regionOf(const Cells& cells, std::vector<RoofItem> roofs) {
    const auto table = std::make_shared<test::RoofTable>();
    table->roofs = std::move(roofs);
    const auto dataset = oneRow(cells, DataType::Offload);
    auto row = createOffloadRowRooflineInfo(*dataset->getRows(0), dataset, table, true);
    EXPECT_EQ(table->asked,
              std::vector{roof::getGpuRoofConfiguration(TileUsage::Single, OperationsType::Undefined)});
    return std::dynamic_pointer_cast<CRowRooflineEngine>(row);
}
std::shared_ptr<CRowRooflineEngine> regionOf(const std::string& cells, const std::vector<RoofItem>& roofs) {
    return regionOf(test::tableOf("a " + cells).rows.front().cells, roofs);
}

TEST(OffloadRow, BytesOfRandomRegionsGiveTheVerdictsOfTheModel) {
    const auto isRight = rc::check("verdicts", [] {
        const auto positive = [] { return test::pick(1, 100'000'000) / 1e6; };
        Machine machine{.compute = positive(), .memory = {}};
        const double performance = positive(), ai = positive(), operations = positive();
        Cells cells{{FieldId::TotalGFlops, performance},
                    {FieldId::TotalFloatAi, ai},
                    {FieldId::TotalFloatOps, operations},
                    {FieldId::TotalIntOps, 0.0},
                    {FieldId::OffloadFloat64Ops, operations}};
        using Type = ArithTypeExtDef;
        std::vector<RoofItem> roofs{
            makeRoof(RoofId::SpVectorFmaPeak, "single", 1, Level::None, Type::Float32),
            makeRoof(RoofId::DpVectorFmaPeak, "compute", 1, Level::None, Type::Float64)};
        roofs.back().value = static_cast<std::uint64_t>(std::llround(machine.compute * 1e9));
        std::vector<std::pair<Level, double>> intensities;
        for (const auto& [level, id, bytes] : kLevels) {
            const double gigabytes = positive(), bandwidth = positive();
            machine.memory[level] = bandwidth;
            roofs.push_back(makeRoof(id, nameOf(level), 1, level));
            roofs.back().value = static_cast<std::uint64_t>(std::llround(bandwidth * 1e9));
            cells[bytes] = gigabytes * 1e9;
            intensities.emplace_back(level, operations / gigabytes);
        }
        const auto region = regionOf(cells, roofs);
        RC_ASSERT(verdictOf(*region, true) == totalModel(machine, performance, ai));
        RC_ASSERT(verdictOf(*region, false) == levelModel(machine, performance, intensities));
        const auto last = region->getMemLevelPoints().at(5);
        RC_ASSERT(last.memoryLevel == Level::Hbm);
        RC_ASSERT(std::abs(last.ai * last.traffic - operations) < 1e-9 * operations);
    });
    EXPECT_TRUE(isRight);
}

const std::vector<RoofItem> kRoofs = [] {
    using enum ArithTypeExtDef;
    std::vector<RoofItem> roofs{makeRoof(RoofId::None, "Matrix", 9000, Level::None, Float32),
                                makeRoof(RoofId::SpVectorFmaPeak, "SP", 4000, Level::None, Float32),
                                makeRoof(RoofId::Int64VectorAddPeak, "Int64", 100, Level::None, Int64),
                                makeRoof(RoofId::DpVectorFmaPeak, "DP", 2000, Level::None, Float64),
                                makeRoof(RoofId::Int32VectorAddPeak, "Int32", 900, Level::None, Int32),
                                makeRoof(RoofId::L4Bandwidth, "L4", 2000, Level::L4),
                                makeRoof(RoofId::DeviceHbmBandwidth, "HBM", 800, Level::Hbm)};
    roofs.front().roofOpType = RoofOpType::Matrix;
    return roofs;
}();

// The row's compute roofs, and what bounds it; nothing of a row that isn't valid.
TEST(OffloadRow, ItsWidthsChooseTheRoofsAndAWholePointTheBound) {
    const std::string floats = "TotalGFlops=100 TotalFloatAi=2 TotalFloatOps=50 TotalIntOps=0 ",
                      ints = "TotalGIntOps=100 TotalIntAi=2 TotalIntOps=50 TotalFloatOps=0 ",
                      memory = "OffloadHbmBytes=25e9 ";
    const std::pair<std::string, const char*> rows[]{
        {"", "SP Int32"},
        {"OffloadFloat32Ops=5 OffloadFloat64Ops=5 OffloadInt32Ops=2 OffloadInt64Ops=2", "SP Int32"},
        {"OffloadFloat32Ops=5 OffloadFloat64Ops=5.1 OffloadInt32Ops=3 OffloadInt64Ops=2", "DP Int32"},
        {"OffloadInt64Ops=1e-9 OffloadFloat64Ops=\"x\"", "SP Int64"},
        {memory + floats, "SP Int32 rec_memory_bound HBM"},
        {memory + ints, "SP Int32 rec_compute_bound Int32"},
        {memory + floats + "TotalFloatOps=0", "SP Int32"},
        {memory + floats + "TotalFloatAi=\"x\"", "SP Int32"},
        {memory + ints + "TotalGFlops=1 TotalFloatAi=1", "SP Int32 rec_compute_bound Int32"},
        {floats + "OffloadHbmBytes=25", "SP Int32 rec_compute_bound SP"},
        {floats + "OffloadHbmBytes=0", "SP Int32"},  // no level has a point
        {memory + floats + "TotalGFlops=1e6", "SP Int32"},
    };
    for (const auto& [cells, expected] : rows) {
        const auto region = regionOf(cells, kRoofs);
        std::string text = region->getComputeRoof(OperationsType::Float).name + " " +
                           region->getComputeRoof(OperationsType::Int).name;
        for (const auto& conclusion : region->getRooflineConclusions())
            text += " " + conclusion.key + " " + conclusion.attributes.front().second;
        EXPECT_EQ(text, expected) << cells;
    }
    const auto mix =
        valuesOf(regionOf(floats + " OffloadInt64Ops=3 OffloadFloat32Ops=47", kRoofs)->getRooflineData());
    EXPECT_EQ(mix.at("opsAndBandwidth.instructionMix.0.instructions.0.dataType.title"), "\"Integer 64\"");
    EXPECT_EQ(mix.at("opsAndBandwidth.instructionMix.0.instructions.1.operationCount.value"), "47");
    const auto summary =
        valuesOf(regionOf(floats + memory + " OffloadElapsedTime=0.5", kRoofs)->getRooflineData());
    EXPECT_EQ(summary.at("opsAndBandwidth.metrics.0.children.1.value"), "2") << "intensity over HBM";
    EXPECT_EQ(summary.at("opsAndBandwidth.metrics.1.value"), "100") << "its operations in its time";
    const test::Assertions quiet;
    const auto nowhere = createOffloadRowRooflineInfo(nullptr, nullptr, nullptr, false);
    EXPECT_FALSE(nowhere->isValid());
    EXPECT_EQ(test::faultOf(nowhere->getRooflineData()), "");
}

}  // namespace
}  // namespace data_models2
