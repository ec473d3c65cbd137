// Tables of roofs as machine files: what the reader of machine files gets of them, and what is refused.
#include "embedded_host/result/machine_file.h"

#include "tests/embedded_host/folder_test.h"
#include "tests/embedded_host/result_text.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace embedded_host::test {
namespace {

using data_models2::RoofThreadingFeatures;

class ImportRoofs : public FolderTest {
protected:
    std::string imported(const std::string& table, const std::string& name = "m") const {
        return importRoofs(file("roofs.csv", table), name);
    }
};

Machine readBack(const std::string& text) {
    const JsonFile file("m.json", text);
    return readMachine(file, file.root());
}

std::string linesOf(const Machine& machine) {
    std::string lines;
    for (const auto& [roof, features] : machine.roofs)
        lines += fmt::format("{} {} {} threads {} packages {} strategy {}\n", static_cast<int>(roof.id),
                             roof.name, roof.value, features.threadCount, features.packageCount,
                             static_cast<int>(features.strategy));
    return lines;
}

TEST_F(ImportRoofs, GivesTheReaderOfMachineFilesTheValuesOfTheTable) {
    const Machine machine =
        readBack(imported("unit,value,how,strategy,roof,threads,packages\n"
                          "GB/s,130.66,measured,,L1 load bandwidth,1,\n"
                          "GiB/s,2,\"measured: best of 7\",single,MEM load bandwidth,1,1\n"
                          "GOP/s,4.6,theoretical,multi,scalar add,2,1\n"
                          "GFLOP/s,0.5,user,multi,dp vector fma,36,2\n",
                          "a \"test\" machine"));
    EXPECT_EQ(machine.name, "a \"test\" machine");
    EXPECT_EQ(machine.physicalCores, 36);
    EXPECT_EQ(machine.logicalCores, 0);
    EXPECT_EQ(machine.packages, 2);
    EXPECT_EQ(linesOf(machine),
              "1 L1 Bandwidth 130660000000 threads 1 packages 1 strategy 0\n"
              "6 DRAM Bandwidth 2147483648 threads 1 packages 1 strategy 1\n"
              "9 Scalar Add Peak 4600000000 threads 2 packages 1 strategy 0\n"
              "8 DP Vector FMA Peak 500000000 threads 36 packages 2 strategy 0\n");
}

TEST_F(ImportRoofs, KnowsTheRoofsByTheirCaptionsAndByTheNamesOfBenchmarks) {
    const std::tuple<const char*, int, bool> cases[] = {
        {"l2  LOAD bandwidth", 2, true},   {"memory bandwidth", 6, true},
        {"DRAM Bandwidth", 6, true},       {"sp vector fma", 7, false},
        {"DP Vector FMA Peak", 8, false},  {"dp vector add", 11, false},
        {"integer scalar add", 13, false}, {"int scalar add peak", 13, false},
        {"int8 vector add", 14, false},    {"int64 vector add", 17, false},
        {"SLM bandwidth", 22, true},       {"scalar L1 load bandwidth", 18, true},
        {"HBM bandwidth", 25, true},       {"gpu DRAM bandwidth", 24, true}};
    for (const auto& [name, id, isMemory] : cases) {
        const Machine machine = readBack(
            imported(fmt::format("threads,roof,unit,value\n1,{},{},1\n", name, isMemory ? "GB/s" : "GOP/s")));
        ASSERT_EQ(machine.roofs.size(), 1);
        EXPECT_EQ(static_cast<int>(machine.roofs[0].item.id), id) << name;
    }
}

TEST_F(ImportRoofs, RefusesWhatAMachineFileCannotHoldAndNamesTheCell) {
    // Below the header "threads,roof,unit,value,packages,how,strategy".
    const std::pair<const char*, const char*> cases[] = {
        {"", "no roofs below the header"},
        {"1,L9 bandwidth,GB/s,1,,,\n",
         "line 2, column \"roof\": unknown roof \"L9 bandwidth\"; expected one of \"L1 Bandwidth\""},
        {"1,L1 bandwidth,Gb/s,1,,,\n", "line 2, column \"unit\": expected a unit of a roof"},
        {"1,L1 bandwidth,GFLOP/s,1,,,\n", "expected bytes per second for a memory roof"},
        {"1,scalar add,GB/s,1,,,\n", "expected operations per second for a compute roof"},
        {"1,scalar add,GOP/s,fast,,,\n", "column \"value\": expected a number"},
        {"1,scalar add,GOP/s,0,,,\n", "column \"value\": expected a number, 1 to 1e19"},
        {"1,scalar add,GOP/s,1e11,,,\n", "column \"value\": expected a number, 1 to 1e19"},
        {"0,scalar add,GOP/s,1,,,\n", "column \"threads\": expected a whole number from 1"},
        {",scalar add,GOP/s,1,,,\n", "column \"threads\": expected a whole number from 1"},
        {"1,scalar add,GOP/s,1,1.5,,\n", "column \"packages\": expected a whole"},
        {"1,scalar add,GOP/s,1,,guess,\n", "expected one of measured, theoretical, user, found \"guess\""},
        {"1,scalar add,GOP/s,1,,,both\n", "expected one of multi, single"},
        {"1,scalar add,GOP/s,1,,,\n2,scalar add,GOP/s,1,,,\n1,Scalar Add Peak,GOP/s,2,,,\n",
         "line 4, column \"roof\": the Scalar Add Peak stands above for the same threads"},
    };
    const auto refusal = [&](const std::string& table) { return faultOf([&] { imported(table); }); };
    for (const auto& [rows, fault] : cases)
        EXPECT_THAT(refusal(std::string("threads,roof,unit,value,packages,how,strategy\n") + rows),
                    testing::HasSubstr(fault));
    EXPECT_THAT(refusal("threads,roof,unit\n"), testing::HasSubstr("no column \"value\""));
    EXPECT_THAT(refusal("threads,roof,unit,value,package\n"),
                testing::HasSubstr("unknown column \"package\" (did you mean \"packages\"?)"));
}

}  // namespace
}  // namespace embedded_host::test
