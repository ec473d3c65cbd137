// Tables of roofs as machine files: what the reader of machine files gets of them, and what is refused.
#include "embedded_host/embedded_host.h"
#include "embedded_host/result/machine_file.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <unistd.h>

namespace {

using namespace embedded_host;
using data_models2::RoofThreadingFeatures;

std::string imported(const std::string& table, const std::string& name = "m") {
    const std::string path = testing::TempDir() + fmt::format("import_roofs_test_{}.csv", getpid());
    std::ofstream(path, std::ios::binary) << table;
    struct Removed {
        const std::string& file;
        ~Removed() { unlink(file.c_str()); }
    } removed{path};
    return importRoofs(path, name);
}

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

TEST(ImportRoofs, GivesTheReaderOfMachineFilesTheValuesOfTheTable) {
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

TEST(ImportRoofs, KnowsTheRoofsByTheirCaptionsAndByTheNamesOfBenchmarks) {
    const std::tuple<const char*, int, bool> cases[] = {
        {"L1 load bandwidth", 1, true},
        {"l2  LOAD bandwidth", 2, true},
        {"MEM load bandwidth", 6, true},
        {"memory bandwidth", 6, true},
        {"DRAM Bandwidth", 6, true},
        {"sp vector fma", 7, false},
        {"DP Vector FMA Peak", 8, false},
        {"scalar add", 9, false},
        {"sp vector add", 10, false},
        {"dp vector add", 11, false},
        {"integer scalar add", 13, false},
        {"int scalar add peak", 13, false},
        {"int8 vector add", 14, false},
        {"int16 vector add", 15, false},
        {"int32 vector add", 16, false},
        {"int64 vector add", 17, false},
        {"scalar L1 load bandwidth", 18, true},
        {"SLM bandwidth", 22, true},
        {"gpu DRAM bandwidth", 24, true},
        {"HBM bandwidth", 25, true},
        {"gpu L3 bandwidth", 26, true},
    };
    for (const auto& [name, id, isMemory] : cases) {
        const Machine machine = readBack(
            imported(fmt::format("threads,roof,unit,value\n1,{},{},1\n", name, isMemory ? "GB/s" : "GOP/s")));
        ASSERT_EQ(machine.roofs.size(), 1);
        EXPECT_EQ(static_cast<int>(machine.roofs[0].item.id), id) << name;
    }
}

TEST(ImportRoofs, RefusesWhatAMachineFileCannotHoldAndNamesTheCell) {
    const std::pair<std::string, const char*> cases[] = {
        {"threads,roof,unit\n", "no column \"value\""},
        {"threads,roof,unit,value,package\n", "unknown column \"package\" (did you mean \"packages\"?)"},
        {"threads,roof,unit,value\n", "no roofs below the header"},
        {"threads,roof,unit,value\n1,L9 bandwidth,GB/s,1\n",
         "line 2, column \"roof\": unknown roof \"L9 bandwidth\"; expected one of \"L1 Bandwidth\""},
        {"threads,roof,unit,value\n1,L1 bandwidth,Gb/s,1\n",
         "line 2, column \"unit\": expected a unit of a roof"},
        {"threads,roof,unit,value\n1,L1 bandwidth,GFLOP/s,1\n",
         "expected bytes per second for a memory roof"},
        {"threads,roof,unit,value\n1,scalar add,GB/s,1\n",
         "expected operations per second for a compute roof"},
        {"threads,roof,unit,value\n1,scalar add,GOP/s,fast\n", "column \"value\": expected a number"},
        {"threads,roof,unit,value\n1,scalar add,GOP/s,0\n", "column \"value\": expected a number, 1 to 1e19"},
        {"threads,roof,unit,value\n1,scalar add,GOP/s,1e11\n",
         "column \"value\": expected a number, 1 to 1e19"},
        {"threads,roof,unit,value\n1,scalar add,GOP/s,\n", "column \"value\": expected a number"},
        {"threads,roof,unit,value\n0,scalar add,GOP/s,1\n",
         "column \"threads\": expected a whole number from 1"},
        {"threads,roof,unit,value\n,scalar add,GOP/s,1\n",
         "column \"threads\": expected a whole number from 1"},
        {"threads,roof,unit,value,packages\n1,scalar add,GOP/s,1,1.5\n",
         "column \"packages\": expected a whole"},
        {"threads,roof,unit,value,how\n1,scalar add,GOP/s,1,guess\n",
         "column \"how\": expected one of measured, theoretical, user, found \"guess\""},
        {"threads,roof,unit,value,strategy\n1,scalar add,GOP/s,1,both\n", "expected one of multi, single"},
        {"threads,roof,unit,value\n1,scalar add,GOP/s,1\n2,scalar add,GOP/s,1\n1,Scalar Add Peak,GOP/s,2\n",
         "line 4, column \"roof\": the Scalar Add Peak stands above for the same threads"},
    };
    for (const auto& [table, fault] : cases) {
        try {
            ADD_FAILURE() << "accepted: " << imported(table);
        } catch (const FileError& error) {
            EXPECT_THAT(error.what(), testing::HasSubstr(fault)) << table;
        }
    }
}

}  // namespace
