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

std::string configurationOf(int threads, int packages = 1, Strategy strategy = Strategy::MultiThread,
                            OperationsType operations = OperationsType::Mixed,
                            Perspective perspective = Perspective::Program) {
    return roof::getCpuRoofConfiguration(threads, packages, strategy, operations, perspective);
}

TEST(RoofTable, GivesTheRoofsOfAThreadSetUp) {
    const auto multi = [](OperationsType operations, Perspective perspective = Perspective::Program) {
        return configurationOf(4, 1, Strategy::MultiThread, operations, perspective);
    };
    const std::tuple<const char*, std::string, const char*> cases[] = {
        {"measured threads", configurationOf(2), "1=200 6=18 8=100 16=40"},
        {"next smaller scaled", configurationOf(3), "1=300 6=27 8=150 16=60"},
        {"below the smallest", configurationOf(1), "1=100 6=10 8=50 16=20"},
        {"beyond the cores", configurationOf(16), "1=390 6=30 8=200 16=80"},
        {"zero is the used threads", configurationOf(0), "1=390 6=30 8=200 16=80"},
        {"single", configurationOf(4, 1, Strategy::SingleThread), "1=100 6=10 8=50 16=20"},
        {"float peaks", multi(OperationsType::Float), "1=390 6=30 8=200"},
        {"integer peaks", multi(OperationsType::Int), "1=390 6=30 16=80"},
        {"undefined is all", multi(OperationsType::Undefined), "1=390 6=30 8=200 16=80"},
        {"not vectorized", multi(OperationsType::Float, Perspective::NotVectorized),
         "1=390 6=30 8=200 18=160"},
        {"empty", "", "1=390 6=30 8=200 16=80 18=160"},
        {"no configuration", "nonsense", ""},
    };
    const auto table = tableOf(kRoofs, R"(, "cores": {"logical": 8, "physical": 4})", 4);
    for (const auto& [name, configuration, roofs] : cases)
        EXPECT_EQ(roofsOf(table->getRoofs(configuration)), roofs) << name;
}

TEST(RoofTable, KeepsWithinWhatWasMeasured) {
    const auto outer = tableOf(R"({"id": 2, "value": 50, "unit": "GB/s", "threads": 2},
        {"id": 3, "value": 40, "unit": "GB/s", "threads": 2},
        {"id": 3, "value": 45, "unit": "GB/s", "threads": 8})",
                               "", 1);
    const auto beyond = tableOf(R"({"id": 8, "value": 60, "unit": "GFLOP/s", "threads": 6})",
                                R"(, "cores": {"physical": 4})", 1);
    const auto packages = tableOf(R"({"id": 6, "value": 60, "unit": "GB/s", "threads": 8},
        {"id": 6, "value": 90, "unit": "GB/s", "threads": 8, "packages": 2},
        {"id": 6, "value": 120, "unit": "GB/s", "threads": 16, "packages": 2})",
                                  R"(, "packages": 2)", 16);
    const auto single = tableOf(R"({"id": 6, "value": 10, "unit": "GB/s"},
        {"id": 8, "value": 5, "unit": "GFLOP/s"},
        {"id": 6, "value": 12, "unit": "GB/s", "strategy": "single"})",
                                "", 4);
    const auto users = tableOf(R"({"id": 6, "value": 10, "unit": "GB/s", "threads": 4})",
                               R"(, "custom": [{"id": 6, "value": 7, "unit": "GB/s", "threads": 4}])", 4);
    const std::tuple<const char*, std::shared_ptr<IRoofManager>, std::string, const char*> cases[] = {
        {"an outer level stays at its largest value", outer, configurationOf(4), "2=100 3=45"},
        {"an outer level scales down", outer, configurationOf(1), "2=25 3=40"},
        {"beyond the cores, not scaled down", beyond, configurationOf(8), "8=60"},
        {"scaled from the cores", beyond, configurationOf(2), "8=20"},
        {"no more packages than asked", packages, configurationOf(8, 1), "6=60"},
        {"both packages", packages, configurationOf(8, 2), "6=90"},
        {"one package's values", packages, configurationOf(16, 1), "6=60"},
        {"all of the machine", packages, "", "6=120"},
        {"marked single", single, configurationOf(4, 1, Strategy::SingleThread), "6=12"},
        {"not marked", single, configurationOf(1), "6=10 8=5"},
        {"the user's value wins", users, configurationOf(0), "6=7"},
        {"not for another strategy", users, configurationOf(4, 1, Strategy::SingleThread), "6=10"},
        {"not for other threads", users, configurationOf(5), "6=10"},
    };
    for (const auto& [name, table, configuration, roofs] : cases)
        EXPECT_EQ(roofsOf(table->getRoofs(configuration)), roofs) << name;
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
    EXPECT_EQ(roofsOf(view->getRoofManager(DataType::Cpu)->getRoofs("")), "");
    EXPECT_EQ(view->getPhysicalCoreCount() + view->getLogicalCoreCount() + view->getPackageCount(), 0);
}

TEST(RoofUnit, IsBytesOrOperationsPerSecondAndNothingElse) {
    const auto factorOf = [](std::string_view unit) {
        const auto parsed = parseRoofUnit(unit);
        return parsed ? (parsed->isMemory ? 1 : -1) * parsed->factor : 0.0;
    };
    const std::pair<const char*, double> units[] = {
        {"B/s", 1},         {"kB/s", 1e3},     {"GB/s", 1e9},   {"GiB/s", 1073741824.0},
        {"TB/s", 1e12},     {"GFLOP/s", -1e9}, {"GOP/s", -1e9}, {"GINTOP/s", -1e9},
        {"TFLOP/s", -1e12}, {"GFLOPS", -1e9},  {"Gb/s", 0},     {"GiFLOP/s", 0},
        {"gb/s", 0},        {"GB", 0},         {"GB/s ", 0}};
    for (const auto& [unit, factor] : units) EXPECT_EQ(factorOf(unit), factor) << unit;
}

}  // namespace
}  // namespace embedded_host::test
