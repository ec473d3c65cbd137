// Importing kernel counters: the totals of a run against formulas written out here, merging, what is missing.
#include "tests/embedded_host/folder_test.h"
#include "tests/embedded_host/result_text.h"

#include <boost/property_tree/ptree.hpp>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <numeric>
#include <random>

namespace embedded_host::test {
namespace {
using namespace data_models2;
using testing::Contains;
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
    // A statistic by type, number of the class and width; together they are what the row's cell counts.
    const auto addOps = [&](const std::string& statistic, double operations) {
        totals[statistic] += operations / 1e9;
        totals[statistic.starts_with("float") ? "SelfFloatOps" : "SelfIntOps"] += operations / 1e9;
    };
    const auto addInstructions = [&](const std::string& statistic, double count, double operationsOfEach) {
        totals["instructions, " + statistic] += count;
        addOps(statistic, count * operationsOfEach);
    };
    for (const auto& p : kPrecisions) {
        const auto of = [&](const char* kind) { return d[fmt::format("SQ_INSTS_VALU_{}_{}", kind, p)]; };
        addInstructions("float 2 " + p.substr(1), of("ADD") + of("MUL"), 64.0);
        addInstructions("float 3 " + p.substr(1), of("FMA"), 128.0);
        addInstructions("float 6 " + p.substr(1), of("TRANS"), 64.0);
    }
    addInstructions("int 2 32", d["SQ_INSTS_VALU_INT32"], 64.0);
    addInstructions("int 2 64", d["SQ_INSTS_VALU_INT64"], 64.0);
    const auto blocks = [&](const std::string& type) { return 512.0 * d["SQ_INSTS_VALU_MFMA_MOPS_" + type]; };
    addOps("float 16 16", blocks("F16") + blocks("BF16"));
    addOps("float 16 32", blocks("F32"));
    addOps("float 16 64", blocks("F64"));
    addOps("int 16 8", blocks("I8"));
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

class ImportRocprof : public FolderTest {
protected:
    RocprofTexts import(bool merge = false) { return importRocprof({m_folder.string(), merge, "", ""}); }
    std::string refusal(bool merge = false) {
        return faultOf([&] { import(merge); });
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
        file("pmc_perf.csv", head + "\n" + row + "\n");
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
            using enum FieldId;
            for (const auto field : {SelfFloatOps, SelfIntOps, GpuSlmTraffic, GpuCarmTraffic, GpuL3Traffic,
                                     GpuMemTraffic, GpuElapsedTime, InstanceCount})
                totals[getFieldStringId(field)] += number(kernels, row, field);
        }
        const auto statistics = view->getDataset(DataType::GpuStatistics);
        for (const auto& row : listOf(statistics->getRows(0))) {
            for (const auto& each : listOf(dataset_helpers::getChildren(row))) {
                const auto name = fmt::format(
                    "{} {} {}", cell(statistics, each, FieldId::GpuArithType) == "3" ? "float" : "int",
                    cell(statistics, each, FieldId::GpuInstructionType),
                    cell(statistics, each, FieldId::GpuArithWidth));
                totals[name] += number(statistics, each, FieldId::GpuOperationCount);
                if (cell(statistics, each, FieldId::GpuInstructionCount) != "-")
                    totals["instructions, " + name] += number(statistics, each, FieldId::GpuInstructionCount);
            }
        }
        return totals;
    }
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
            file("pmc_perf.csv", text);
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
    file(
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
        // column left out or with the odd cell, the cell, what lacks, what is said
        {"SQ_INSTS_VALU_ADD_F64", nullptr, "\"SelfFloatOps\"",
         "no column SQ_INSTS_VALU_ADD_F64: SelfFloatOps is missing in e"},
        {"SQ_INSTS_VALU_MFMA_MOPS_I8", nullptr, "\"SelfIntOps\"", "MOPS_I8: SelfIntOps is"},
        {"TCC_EA_RDREQ_32B", nullptr, "\"GpuMemTraffic\"", "no column TCC_EA_RDREQ_32B: GpuMemTraffic is"},
        {"TCP_TCC_WRITE_REQ", " ", "\"GpuL3Traffic\"",
         "1 empty cells in column TCP_TCC_WRITE_REQ: GpuL3Traffic is missing there"},
        {"SQ_LDS_BANK_CONFLICT", "1000001", "\"GpuSlmTraffic\"", "GpuSlmTraffic would be negative in"},
        {"SQ_INSTS_VALU_MFMA_MOPS_F64", "-1", R"("vector","type":"float","width":64)",
         "the statistic vector float 64 would be negative in some rows"},
    };
    for (const auto& [column, odd, lacking, warning] : cases) {
        odd ? writeSmall("", column, odd) : writeSmall(column);
        const auto texts = import();
        EXPECT_THAT(texts.warnings, Contains(HasSubstr(warning)).Times(1));
        EXPECT_EQ(texts.warnings.size(), 3U) << "and one each for roofline.csv and sysinfo.csv";
        EXPECT_EQ(texts.result.find(lacking), std::string::npos) << lacking;
        EXPECT_NE(texts.result.find("\"GpuElapsedTime\":0.000002,"), std::string::npos) << lacking;
    }
}

TEST_F(ImportRocprof, MakesTwoRoofsOfEachVectorPeakAndDrawsMatrixPeaks) {
    writeSmall("");
    file("sysinfo.csv", "workload_name,gpu_soc,numCU,name\nmix,gfx90a,104,mi200\n");
    file("roofline.csv",
         "device,HBMBw,HBMBwLow,L2Bw,L1Bw,LDSBw,FP16Flops,FP32Flops,FP64Flops,MFMABF16Flops,MFMAF16Flops,"
         "MFMAF32Flops,MFMAF64Flops,MFMAI8Ops\n"
         "0,1400.5,1,5000,9000,20000,40000,21000,20000,170000,165000,41000,0.000000002,166000\n");
    const auto texts = import();
    EXPECT_THAT(texts.warnings, testing::IsEmpty());
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
        const int id = static_cast<int>(roof.id);
        const std::string key = R"("how": ")";
        const auto how =
            texts.machine.find(key, texts.machine.find(fmt::format("\"id\": {},", id))) + key.size();
        lines += fmt::format("{} {} level {} type {} kind {} {}\n", id, static_cast<double>(roof.value) / 1e9,
                             static_cast<int>(roof.memoryLevel), static_cast<int>(roof.arithType),
                             static_cast<int>(roof.roofOpType),
                             texts.machine.substr(how, texts.machine.find('"', how) - how));
        EXPECT_EQ(getBoundCategory(roof.id) == BoundCategory::None, roof.roofOpType == RoofOpType::Matrix)
            << id << ": rows below a roof of no category would be invalid";
    }
    EXPECT_EQ(lines, R"(1 9000 level 1 type 0 kind 0 measured
3 5000 level 3 type 0 kind 0 measured
7 21000 level 0 type 3 kind 2 measured
8 20000 level 0 type 4 kind 2 measured
9 20000 level 0 type 2 kind 1 derived
10 10500 level 0 type 3 kind 1 derived
11 10000 level 0 type 4 kind 1 derived
13 40000 level 0 type 2 kind 2 measured
16 10500 level 0 type 8 kind 1 assumed
17 10000 level 0 type 9 kind 1 assumed
22 20000 level 9 type 0 kind 0 measured
25 1400.5 level 11 type 0 kind 0 measured
111 165000 level 0 type 2 kind 3 measured
112 170000 level 0 type 2 kind 3 measured
113 41000 level 0 type 3 kind 3 measured
114 2e-09 level 0 type 4 kind 3 measured
115 166000 level 0 type 6 kind 3 measured
)");
}

TEST_F(ImportRocprof, NamesEachColumnWithoutARoofOnceWithItsRoofs) {
    file("roofline.csv", "HBMBw,L2Bw,L1Bw,LDSBw,FP32Flops,FP64Flops\n1400,5000,9000,-0.0,0,\n");
    for (const bool hasHalves : {true, false}) {
        writeSmall("");
        if (!hasHalves) file("pmc_perf.csv", "Kernel_Name,SQ_INSTS_VALU_FMA_F16\nk,0\n");
        const auto warnings = import().warnings;
        for (const char* const warning :
             {"0 in column LDSBw: missing roofs: SLM Bandwidth",
              "0 in column FP32Flops: missing roofs: SP Vector FMA Peak, SP Vector Add Peak, Int32 Vector "
              "Add Peak",
              "empty cell in column FP64Flops: missing roofs: DP Vector FMA Peak, DP Vector Add Peak, Int64 ",
              "no column MFMAI8Ops: missing roofs: Matrix I8 Peak"})
            EXPECT_THAT(warnings, Contains(HasSubstr(warning)).Times(1));
        EXPECT_THAT(warnings, Contains(HasSubstr("roofline.csv: ")).Times(hasHalves ? 9 : 8));
        EXPECT_THAT(warnings,
                    Contains(HasSubstr("no column FP16Flops: missing roofs: HP Vector FMA Peak, HP "))
                        .Times(hasHalves ? 1 : 0));
    }
}

TEST_F(ImportRocprof, RefusesWhatItCannotReadWithThePlace) {
    EXPECT_THAT(refusal(), HasSubstr("pmc_perf.csv: cannot open"));
    const std::pair<const char*, const char*> tables[] = {
        {"Name\nk\n", "no column \"Kernel_Name\""},
        {"Kernel_Name\n", "no rows below the header"},
        {"Kernel_Name,SQ_LDS_IDX_ACTIVE\nk,many\n",
         "line 2, column \"SQ_LDS_IDX_ACTIVE\": expected a number, found \"many\""},
        {"Kernel_Name\na\n\"\xFF\"\na\n\"\xFF\"\n", "pmc_perf.csv: line 3: the kernel's name"}};
    for (const auto& [table, reason] : tables) {
        file("pmc_perf.csv", table);
        for (const bool merge : {false, true}) EXPECT_THAT(refusal(merge), HasSubstr(reason));
    }
    writeSmall("");
    // Of the last one a roof takes half.
    for (const char* const cells : {"-3,1", "some,1", "1e11,1", "1,0.0000000015"}) {
        file("roofline.csv", std::string("HBMBw,FP32Flops\n") + cells + "\n");
        EXPECT_THAT(refusal(), HasSubstr("expected 0 or a number")) << cells;
    }
    EXPECT_THAT(refusal(), HasSubstr("roofline.csv: line 2, column \"FP32Flops\""));
}

}  // namespace
}  // namespace embedded_host::test
