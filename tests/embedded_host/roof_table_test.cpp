// Which roofs stand for a thread set-up, and with what values.
#include "embedded_host/result/units.h"

#include "tests/embedded_host/result_text.h"

#include <gtest/gtest.h>

namespace embedded_host::test {
namespace {
using namespace data_models2;
using Strategy = RoofThreadingFeatures::Strategy;
using Perspective = IRooflineInfo::Perspective;

// Four cores; measured on 1, 2 and 4 threads, but for roof 8 only on one thread and for roof 1 on 2 and 4.
const std::string kRoofs = R"(
    {"id": 6, "value": 10, "unit": "GB/s", "threads": 1},
    {"id": 6, "value": 30, "unit": "GB/s", "threads": 4},
    {"id": 6, "value": 18, "unit": "GB/s", "threads": 2},
    {"id": 1, "value": 200, "unit": "GB/s", "threads": 2},
    {"id": 1, "value": 390, "unit": "GB/s", "threads": 4}, {"id": 8, "value": 50, "unit": "GFLOP/s"},
    {"name": "scalar l1 bandwidth", "value": 40, "unit": "GB/s"},
    {"id": 16, "value": 20, "unit": "GINTOP/s"})";

std::shared_ptr<IRoofManager> tableOf(const std::string& roofs, const std::string& members, int usedThreads) {
    return viewOf("", fmt::format(R"(, "program": {{"usedThreads": {}}}, "machine": {})", usedThreads,
                                  machineText(roofs, members)))
        ->getRoofManager(DataType::Cpu);
}

// "id=giga value" of each roof.
std::string linesOf(generic_iterator_t<RoofItem> roofs) {
    std::string text;
    for (; !roofs.isEnd(); ++roofs) {
        const auto roof = *roofs;
        text += fmt::format("{}{}={}", text.empty() ? "" : " ", static_cast<int>(roof.id),
                            double(roof.value) / 1e9);
    }
    return text;
}

std::string configurationOf(int threads, int packages = 1, Strategy strategy = Strategy::MultiThread,
                            OperationsType operations = OperationsType::Mixed,
                            Perspective perspective = Perspective::Program) {
    return roof::getCpuRoofConfiguration(threads, packages, strategy, operations, perspective);
}

struct Asked {
    const char* name;
    std::string configuration;
    const char* roofs;
};

const Asked kAsked[] = {
    {"MeasuredThreads", configurationOf(2), "1=200 6=18 8=100 16=40"},
    {"AllMeasured", configurationOf(4), "1=390 6=30 8=200 16=80"},
    {"NextSmallerScaled", configurationOf(3), "1=300 6=27 8=150 16=60"},
    {"BelowTheSmallest", configurationOf(1), "1=100 6=10 8=50 16=20"},
    {"BeyondTheCores", configurationOf(16), "1=390 6=30 8=200 16=80"},
    {"ZeroIsTheUsedThreads", configurationOf(0), "1=390 6=30 8=200 16=80"},
    {"SingleWithoutASetOfItsOwn", configurationOf(4, 1, Strategy::SingleThread), "1=100 6=10 8=50 16=20"},
    {"FloatPeaks", configurationOf(4, 1, Strategy::MultiThread, OperationsType::Float), "1=390 6=30 8=200"},
    {"IntegerPeaks", configurationOf(4, 1, Strategy::MultiThread, OperationsType::Int), "1=390 6=30 16=80"},
    {"UndefinedIsAll", configurationOf(4, 1, Strategy::MultiThread, OperationsType::Undefined),
     "1=390 6=30 8=200 16=80"},
    {"NotVectorized",
     configurationOf(4, 1, Strategy::MultiThread, OperationsType::Float, Perspective::NotVectorized),
     "1=390 6=30 8=200 18=160"},
    {"Empty", "", "1=390 6=30 8=200 16=80 18=160"},
    {"NoConfiguration", "nonsense", ""},
};

class RoofTable : public testing::TestWithParam<Asked> {};

TEST_P(RoofTable, GivesTheRoofsOfAThreadSetUp) {
    const auto table = tableOf(kRoofs, R"(, "cores": {"logical": 8, "physical": 4})", 4);
    EXPECT_EQ(linesOf(table->getRoofs(GetParam().configuration)), GetParam().roofs);
}

INSTANTIATE_TEST_SUITE_P(SetUps, RoofTable, testing::ValuesIn(kAsked),
                         [](const auto& item) { return item.param.name; });

TEST(RoofTable, OuterLevelsStayWithinTheLargestValueMeasured) {
    const auto table = tableOf(R"({"id": 2, "value": 50, "unit": "GB/s", "threads": 2},
        {"id": 3, "value": 40, "unit": "GB/s", "threads": 2},
        {"id": 3, "value": 45, "unit": "GB/s", "threads": 8})",
                               "", 1);
    EXPECT_EQ(linesOf(table->getRoofs(configurationOf(4))), "2=100 3=45");
    EXPECT_EQ(linesOf(table->getRoofs(configurationOf(16))), "2=400 3=45");
    EXPECT_EQ(linesOf(table->getRoofs(configurationOf(1))), "2=25 3=40");
}

TEST(RoofTable, AMeasurementBeyondTheCoresIsNotScaledDown) {
    const auto table = tableOf(R"({"id": 8, "value": 60, "unit": "GFLOP/s", "threads": 6})",
                               R"(, "cores": {"physical": 4})", 1);
    EXPECT_EQ(linesOf(table->getRoofs(configurationOf(8))), "8=60");
    EXPECT_EQ(linesOf(table->getRoofs(configurationOf(2))), "8=20");
}

TEST(RoofTable, PrefersMeasurementsOnNoMorePackagesThanAsked) {
    const auto table = tableOf(R"({"id": 6, "value": 60, "unit": "GB/s", "threads": 8},
        {"id": 6, "value": 90, "unit": "GB/s", "threads": 8, "packages": 2},
        {"id": 6, "value": 120, "unit": "GB/s", "threads": 16, "packages": 2})",
                               R"(, "packages": 2)", 16);
    EXPECT_EQ(linesOf(table->getRoofs(configurationOf(8, 1))), "6=60");
    EXPECT_EQ(linesOf(table->getRoofs(configurationOf(8, 2))), "6=90");
    EXPECT_EQ(linesOf(table->getRoofs(configurationOf(16, 1))), "6=60");
    EXPECT_EQ(linesOf(table->getRoofs("")), "6=120");
}

TEST(RoofTable, SingleThreadedSetUpTakesTheRoofsMarkedSo) {
    const auto table =
        tableOf(R"({"id": 6, "value": 10, "unit": "GB/s"}, {"id": 8, "value": 5, "unit": "GFLOP/s"},
        {"id": 6, "value": 12, "unit": "GB/s", "strategy": "single"})",
                "", 4);
    EXPECT_EQ(linesOf(table->getRoofs(configurationOf(4, 1, Strategy::SingleThread))), "6=12");
    EXPECT_EQ(linesOf(table->getRoofs(configurationOf(1))), "6=10 8=5");
}

TEST(RoofTable, TheUsersValueWinsForExactlyItsSetUp) {
    const auto table = tableOf(R"({"id": 6, "value": 10, "unit": "GB/s", "threads": 4})",
                               R"(, "custom": [{"id": 6, "value": 7, "unit": "GB/s", "threads": 4}])", 4);
    EXPECT_EQ(linesOf(table->getRoofs(configurationOf(0))), "6=7");
    EXPECT_EQ(linesOf(table->getRoofs(configurationOf(4, 1, Strategy::SingleThread))), "6=10");
    EXPECT_EQ(linesOf(table->getRoofs(configurationOf(5))), "6=10");
}

TEST(RoofTable, TellsWhatARoofIs) {
    const auto table = tableOf(R"roofs({"name": "My DRAM", "id": 6, "value": 1, "unit": "GB/s"},
        {"name": "DRAM bandwidth (single node)", "value": 2, "unit": "GB/s"},
        {"id": 7, "value": 3, "unit": "GFLOP/s"},
        {"id": 99, "name": "Half FMA", "value": 4, "unit": "GFLOP/s", "arith": "float16", "opKind": "fma"},
        {"id": 98, "name": "Near", "value": 5, "unit": "GiB/s", "level": "L2"})roofs",
                               "", 1);
    std::string text;
    for (auto roofs = table->getRoofs(""); !roofs.isEnd(); ++roofs) {
        const auto roof = *roofs;
        text += fmt::format("{} '{}' {} type {:x} level {} op {} arith {}\n", static_cast<int>(roof.id),
                            roof.name, roof.value, roof.typeBits, static_cast<int>(roof.memoryLevel),
                            static_cast<int>(roof.roofOpType), static_cast<int>(roof.arithType));
    }
    EXPECT_EQ(text,
              "6 'My DRAM' 1000000000 type 8 level 6 op 0 arith 0\n"
              "6 'DRAM bandwidth (single node)' 2000000000 type 28 level 6 op 0 arith 0\n"
              "7 'SP Vector FMA Peak' 3000000000 type 4 level 0 op 2 arith 3\n"
              "98 'Near' 5368709120 type 8 level 2 op 0 arith 0\n"
              "99 'Half FMA' 4000000000 type 4 level 0 op 2 arith 2\n");
}

TEST(RoofTable, IsThereWithoutAMachine) {
    const auto view = viewOf("");
    ASSERT_NE(view->getRoofManager(DataType::Cpu), nullptr);
    EXPECT_EQ(linesOf(view->getRoofManager(DataType::Cpu)->getRoofs("")), "");
    EXPECT_EQ(view->getPhysicalCoreCount() + view->getLogicalCoreCount() + view->getPackageCount(), 0);
}

TEST(RoofUnit, IsBytesOrOperationsPerSecondAndNothingElse) {
    const auto factorOf = [](std::string_view unit) {
        const auto parsed = parseRoofUnit(unit);
        return parsed ? (parsed->isMemory ? 1 : -1) * parsed->factor : 0.0;
    };
    const std::pair<const char*, double> units[] = {
        {"B/s", 1},
        {"GB/s", 1e9},
        {"GiB/s", 1073741824.0},
        {"MB/s", 1e6},
        {"TB/s", 1e12},
        {"kB/s", 1e3},
        {"GFLOP/s", -1e9},
        {"GOP/s", -1e9},
        {"GINTOP/s", -1e9},
        {"TFLOP/s", -1e12},
        {"GFLOPS", -1e9},
        {"Gb/s", 0},
        {"GiFLOP/s", 0},
        {"gb/s", 0},
        {"GB", 0},
        {"", 0},
        {"GB/s ", 0},
        {"PB/s", 0},
    };
    for (const auto& [unit, factor] : units) EXPECT_EQ(factorOf(unit), factor) << unit;
}

}  // namespace
}  // namespace embedded_host::test
