// Importing kernel counters: the totals of a run against formulas written out here, merging, what is missing.
#include "tests/embedded_host/result_text.h"

#include <boost/property_tree/ptree.hpp>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <numeric>
#include <random>
#include <unistd.h>

namespace embedded_host::test {
namespace {
using namespace data_models2;
using testing::DoubleNear;
using testing::ElementsAre;
using testing::HasSubstr;

using Dispatch = std::map<std::string, double>;  // by counter, in the short form of its name
using Totals = std::map<std::string, double>;

const std::vector<std::string> kPrecisions{"F16", "F32", "F64"};

std::vector<std::string> counters() {
    std::vector<std::string> names;
    for (const auto& precision : kPrecisions)
        for (const char* const kind : {"ADD", "MUL", "FMA", "TRANS"})
            names.push_back(fmt::format("SQ_INSTS_VALU_{}_{}", kind, precision));
    for (const char* const type : {"INT32", "INT64", "MFMA_MOPS_F16", "MFMA_MOPS_BF16", "MFMA_MOPS_F32",
                                   "MFMA_MOPS_F64", "MFMA_MOPS_I8"})
        names.push_back(fmt::format("SQ_INSTS_VALU_{}", type));
    names.insert(names.end(),
                 {"SQ_LDS_IDX_ACTIVE", "SQ_LDS_BANK_CONFLICT", "TCP_TOTAL_CACHE_ACCESSES", "TCP_TCC_READ_REQ",
                  "TCP_TCC_WRITE_REQ", "TCP_TCC_ATOMIC_WITH_RET_REQ", "TCP_TCC_ATOMIC_WITHOUT_RET_REQ",
                  "TCC_EA_RDREQ_32B", "TCC_EA_RDREQ", "TCC_EA_WRREQ_64B", "TCC_EA_WRREQ"});
    return names;
}

// What a dispatch adds to the totals of the run, in the units of the fields.
void add(Totals& totals, Dispatch d) {
    double floats = 0.0;
    for (const auto& p : kPrecisions) {
        const auto of = [&](const char* kind) { return d[fmt::format("SQ_INSTS_VALU_{}_{}", kind, p)]; };
        floats += 64.0 * (of("ADD") + of("MUL") + 2.0 * of("FMA") + of("TRANS"));
        totals["fma " + p] += 64.0 * 2.0 * of("FMA") / 1e9;
    }
    for (const char* const p : {"F16", "BF16", "F32", "F64"})
        floats += 512.0 * d[fmt::format("SQ_INSTS_VALU_MFMA_MOPS_{}", p)];
    totals["SelfFloatOps"] += floats / 1e9;
    totals["SelfIntOps"] += (64.0 * (d["SQ_INSTS_VALU_INT32"] + d["SQ_INSTS_VALU_INT64"]) +
                             512.0 * d["SQ_INSTS_VALU_MFMA_MOPS_I8"]) /
                            1e9;
    totals["GpuSlmTraffic"] += 128.0 * (d["SQ_LDS_IDX_ACTIVE"] - d["SQ_LDS_BANK_CONFLICT"]) / 1e9;
    totals["GpuCarmTraffic"] += 64.0 * d["TCP_TOTAL_CACHE_ACCESSES"] / 1e9;
    totals["GpuL3Traffic"] += 64.0 *
                              (d["TCP_TCC_READ_REQ"] + d["TCP_TCC_WRITE_REQ"] +
                               d["TCP_TCC_ATOMIC_WITH_RET_REQ"] + d["TCP_TCC_ATOMIC_WITHOUT_RET_REQ"]) /
                              1e9;
    const double read = 32.0 * d["TCC_EA_RDREQ_32B"] + 64.0 * (d["TCC_EA_RDREQ"] - d["TCC_EA_RDREQ_32B"]);
    const double write = 64.0 * d["TCC_EA_WRREQ_64B"] + 32.0 * (d["TCC_EA_WRREQ"] - d["TCC_EA_WRREQ_64B"]);
    totals["GpuMemTraffic"] += (read + write) / 1e9;
    totals["GpuElapsedTime"] += d["ns"] / 1e9;
    totals["InstanceCount"] += 1.0;
}

class ImportRocprof : public testing::Test {
protected:
    ~ImportRocprof() override { std::filesystem::remove_all(m_folder); }

    void write(const std::string& name, const std::string& text) {
        std::filesystem::create_directories(m_folder);
        std::ofstream(m_folder / name) << text;
    }
    RocprofTexts import(bool merge = false) { return importRocprof({m_folder.string(), merge, "", ""}); }
    std::string refusal() {
        try {
            import();
            return "accepted";
        } catch (const FileError& error) {
            return error.what();
        }
    }
    // A table with one dispatch of kernel "k" in which every counter is `count`, without a column; `cell`
    // stands in the column `odd`.
    void writeSmall(const std::string& without, const std::string& odd = "", const std::string& cell = "") {
        std::string head = "Kernel_Name,Start_Timestamp,End_Timestamp";
        std::string row = "k,1000,3000";
        for (const auto& name : counters()) {
            if (name == without) continue;
            head += "," + name;
            row += "," + (name == odd ? cell : "1000000");
        }
        write("pmc_perf.csv", head + "\n" + row + "\n");
    }

    static double number(const sptr_t<IDataset>& dataset, const sptr_t<RowNode>& row, FieldId field) {
        variant_t value;
        EXPECT_TRUE(dataset->getValue(row, dataset->getColumn(field), 0, value)) << getFieldStringId(field);
        return value.toDouble();
    }
    static Totals totalsOf(const std::string& result) {
        const auto view = parseResult(result, "test.json")->viewModel();
        Totals totals;
        const auto kernels = view->getDataset(DataType::Gpu);
        for (const auto& row : listOf(kernels->getRows(0))) {
            for (const char* const name :
                 {"SelfFloatOps", "SelfIntOps", "GpuSlmTraffic", "GpuCarmTraffic", "GpuL3Traffic",
                  "GpuMemTraffic", "GpuElapsedTime", "InstanceCount"}) {
                const auto field = std::find_if(kFields.begin(), kFields.end(),
                                                [&](const auto& each) { return each.name == name; });
                totals[name] += number(kernels, row, field->id);
            }
        }
        const auto statistics = view->getDataset(DataType::GpuStatistics);
        for (const auto& row : listOf(statistics->getRows(0))) {
            for (const auto& each : listOf(dataset_helpers::getChildren(row))) {
                if (cell(statistics, each, FieldId::GpuInstructionType) != "3") continue;
                totals["fma F" + cell(statistics, each, FieldId::GpuArithWidth)] +=
                    number(statistics, each, FieldId::GpuOperationCount);
            }
        }
        return totals;
    }

private:
    const std::filesystem::path m_folder =
        testing::TempDir() + "import_rocprof_test_" + std::to_string(getpid());
};

TEST_F(ImportRocprof, TotalsFollowFromTheFormulasHoweverColumnsAreNamed) {
    std::mt19937 random(5);
    const auto upTo = [&](int limit) { return static_cast<int>(random() % static_cast<unsigned>(limit)); };
    const std::vector<std::string> kernels{R"("k<int, 2>(a, b) [clone .kd]")", R"("say ""hi"".kd")", "plain"};
    for (const char* const port : {"EA", "EA0"}) {
        for (const char* const suffix : {"", "_sum"}) {
            auto names = counters();
            std::shuffle(names.begin(), names.end(), random);
            std::string text = "Dispatch_ID,Start_Timestamp,Kernel_Name";
            for (auto name : names) {
                if (const auto at = name.find("EA_"); at != name.npos) name.replace(at, 2, port);
                text += "," + name + (name.starts_with("TC") ? suffix : "");
            }
            text += ",End_Timestamp\n";
            Totals expected;
            for (int i = 0; i < 50; ++i) {
                Dispatch dispatch{{"ns", 1.0 + upTo(1'000'000)}};
                // Unix time in nanoseconds, which a double can't hold.
                const std::int64_t start = 1'700'000'000'000'000'001 + upTo(1000);
                text += fmt::format("{},{},{}", i, start, kernels[static_cast<std::size_t>(upTo(3))]);
                for (const auto& name : names) {
                    const bool isWhole = name == "SQ_LDS_IDX_ACTIVE" || name == "TCC_EA_RDREQ";
                    dispatch[name] = isWhole ? 1'000'000 : upTo(3) ? upTo(1'000'000) : 0;
                    text += fmt::format(",{}{}", dispatch[name], upTo(2) ? "" : ".0");
                }
                text += fmt::format(",{}\n", start + static_cast<std::int64_t>(dispatch["ns"]));
                add(expected, dispatch);
            }
            write("pmc_perf.csv", text);
            for (const bool merge : {false, true}) {
                const auto result = import(merge).result;
                const auto view = parseResult(result, "test.json")->viewModel();
                EXPECT_EQ(listOf(view->getDataset(DataType::Gpu)->getRows(0)).size(), merge ? 3U : 50U);
                const auto actual = totalsOf(result);
                ASSERT_EQ(actual.size(), expected.size());
                for (const auto& [name, total] : expected)
                    EXPECT_THAT(actual.at(name), DoubleNear(total, 1e-12 * total)) << name << port << suffix;
            }
        }
    }
}

TEST_F(ImportRocprof, MergesTheDispatchesOfAKernelOfTheSameName) {
    write(
        "pmc_perf.csv",
        "Kernel_Name,Start_Timestamp,End_Timestamp,TCP_TOTAL_CACHE_ACCESSES\n"
        "a(x).kd,0,1000,1000000\n\"b, c [clone .kd]\",0,500,2000000\na(x).kd,2000,5000,3000000\na(x),0,1,\n");
    const auto view = parseResult(import(true).result, "test.json")->viewModel();
    const auto dataset = view->getDataset(DataType::Gpu);
    std::vector<std::string> lines;
    for (const auto& row : listOf(dataset->getRows(0))) lines.push_back(cellsOf(dataset, row));
    // The last one isn't the first: that it is called alike without its ending is chance.
    EXPECT_THAT(lines,
                ElementsAre("FunctionName=a(x) MangledName=a(x).kd InstanceCount=2 GpuElapsedTime=4e-06 "
                            "GpuCarmTraffic=0.256",
                            "FunctionName=b, c MangledName=b, c [clone .kd] InstanceCount=1 "
                            "GpuElapsedTime=5e-07 GpuCarmTraffic=0.128",
                            "FunctionName=a(x) MangledName=a(x) InstanceCount=1 GpuElapsedTime=1e-09"));
}

TEST_F(ImportRocprof, WhatIsMissingMakesItsCellsMissingAndIsNamedOnce) {
    const std::tuple<const char*, const char*, const char*, const char*> cases[] = {
        // column left out, column with the odd cell, the cell, what lacks
        {"SQ_INSTS_VALU_ADD_F64", "", "", "SelfFloatOps"},
        {"SQ_INSTS_VALU_MFMA_MOPS_I8", "", "", "SelfIntOps"},
        {"TCC_EA_RDREQ_32B", "", "", "GpuMemTraffic"},
        {"", "TCP_TCC_WRITE_REQ", " ", "GpuL3Traffic"},
        {"", "SQ_LDS_BANK_CONFLICT", "1000001", "GpuSlmTraffic"},
    };
    for (const auto& [column, odd, text, name] : cases) {
        const std::string without = column;
        const std::string field = name;
        writeSmall(without, odd, text);
        const auto texts = import();
        const auto named =
            std::count_if(texts.warnings.begin(), texts.warnings.end(), [&](const auto& warning) {
                return warning.find(field) != warning.npos && warning.find(without) != warning.npos;
            });
        EXPECT_EQ(named, 1) << field;
        EXPECT_EQ(texts.warnings.size(), 3U) << "and one each for roofline.csv and sysinfo.csv";
        EXPECT_EQ(texts.result.find(fmt::format("\"{}\"", field)), std::string::npos) << field;
        EXPECT_NE(texts.result.find("\"GpuElapsedTime\":0.000002,"), std::string::npos) << field;
    }
}

TEST_F(ImportRocprof, MakesTwoRoofsOfEachVectorPeakAndDrawsMatrixPeaks) {
    writeSmall("");
    write("sysinfo.csv", "workload_name,gpu_soc,numCU,name\nmix,gfx90a,104,mi200\n");
    write("roofline.csv",
          "device,HBMBw,HBMBwLow,L2Bw,L1Bw,LDSBw,FP32Flops,FP64Flops,MFMABF16Flops,MFMAF16Flops,MFMAF32Flops,"
          "MFMAI8Ops\n0,1400.5,1,5000,9000,20000,21000,20000,170000,165000,41000,166000\n");
    const auto texts = import();
    ASSERT_EQ(texts.warnings.size(), 1U);
    EXPECT_THAT(texts.warnings[0], HasSubstr("no column MFMAF64Flops: the Matrix F64 Peak is missing"));
    const auto result = parseResult(texts.result, "test.json");
    EXPECT_EQ(result->machineName(), "mi200 (gfx90a)");
    EXPECT_EQ(result->viewModel()->getProgramInfo().name, "mix");
    EXPECT_EQ(result->viewModel()->getGpuDeviceProperties().computeUnitCount, 104U);
    std::string lines;
    auto roofs = result->viewModel()
                     ->getRoofManager(DataType::Gpu)
                     ->getRoofs(roof::getGpuRoofConfiguration(TileUsage::Multi, OperationsType::Undefined));
    for (; !roofs.isEnd(); ++roofs) {
        const auto roof = *roofs;
        lines += fmt::format("{} {} level {} type {} kind {}\n", static_cast<int>(roof.id),
                             static_cast<double>(roof.value) / 1e9, static_cast<int>(roof.memoryLevel),
                             static_cast<int>(roof.arithType), static_cast<int>(roof.roofOpType));
    }
    EXPECT_EQ(lines,
              "1 9000 level 1 type 0 kind 0\n3 5000 level 3 type 0 kind 0\n"
              "7 21000 level 0 type 3 kind 2\n8 20000 level 0 type 4 kind 2\n"
              "10 10500 level 0 type 3 kind 1\n11 10000 level 0 type 4 kind 1\n"
              "16 10500 level 0 type 8 kind 1\n17 10000 level 0 type 9 kind 1\n"
              "22 20000 level 9 type 0 kind 0\n25 1400.5 level 11 type 0 kind 0\n"
              "111 165000 level 0 type 2 kind 3\n112 170000 level 0 type 2 kind 3\n"
              "113 41000 level 0 type 3 kind 3\n115 166000 level 0 type 6 kind 3\n");
}

TEST_F(ImportRocprof, RefusesWhatItCannotReadWithThePlace) {
    EXPECT_THAT(refusal(), HasSubstr("pmc_perf.csv: cannot open"));
    write("pmc_perf.csv", "Name\nk\n");
    EXPECT_THAT(refusal(), HasSubstr("no column \"Kernel_Name\""));
    write("pmc_perf.csv", "Kernel_Name\n");
    EXPECT_THAT(refusal(), HasSubstr("no rows below the header"));
    writeSmall("", "SQ_LDS_IDX_ACTIVE", "many");
    EXPECT_THAT(refusal(),
                HasSubstr("line 2, column \"SQ_LDS_IDX_ACTIVE\": expected a number, found \"many\""));
    writeSmall("");
    write("roofline.csv", "HBMBw\n-3\n");
    EXPECT_THAT(refusal(), HasSubstr("roofline.csv: line 2, column \"HBMBw\": expected a number"));
}

}  // namespace
}  // namespace embedded_host::test
