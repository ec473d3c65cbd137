// The program's subcommands on results of a device.
#include "roofline_model/report_helpers.h"

#include "cli/json.h"
#include "tests/cli/program_run.h"
#include "tests/embedded_host/result_text.h"

#include <gmock/gmock.h>

#include <cmath>
#include <map>
#include <tuple>

namespace cli {
namespace {

using test::run;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using Gpu = test::FolderTest;
using Arguments = std::vector<std::string>;

const std::string kExample = OMBRIX_SOURCE_DIR "/examples/gpu_mi200/";
const std::string kRunA = kExample + "result.json", kRunB = kExample + "result_b.json";
const std::string kCpu = OMBRIX_SOURCE_DIR "/examples/quick/result.json";
constexpr double kHbm = 1406.8727;  // GB/s, as machine.json has it

// Two sub-devices; a kernel of counted instructions, one of which only sums are known, one without
// operations.
std::string twoSubDevices(const std::string& device) {
    const auto machine = embedded_host::test::machineText(R"(
            {"id": 1, "value": 400, "unit": "GB/s", "packages": 2},
            {"id": 24, "value": 200, "unit": "GB/s", "packages": 2},
            {"id": 7, "value": 80, "unit": "GFLOP/s", "packages": 2})",
                                                          R"(, "packages": 2)" + device);
    return embedded_host::test::gpuText(R"(
        {"id": 1, "cells": {"FunctionName": "counted", "GpuElapsedTime": 1, "SelfFloatOps": 10,
             "SelfIntOps": 0, "GpuCarmTraffic": 1, "GpuL3Traffic": 1, "GpuMemTraffic": 1}, "statistics": [
             {"instruction": "fma", "type": "float", "width": 32, "operations": 10, "instructions": 1000}]},
        {"id": 2, "cells": {"FunctionName": "uncounted", "GpuElapsedTime": 1, "SelfFloatOps": 10,
             "SelfIntOps": 0, "GpuCarmTraffic": 1, "GpuMemTraffic": 1}},
        {"id": 3, "cells": {"FunctionName": "idle", "GpuElapsedTime": 1, "SelfFloatOps": 0}})",
                                        R"(, "machine": )" + machine);
}
const char* const kDevice = R"(, "device": {"name": "d", "subDevices": 2, "memory": "DRAM"})";

std::map<std::string, std::map<std::string, double>> cellsOfRunA() {
    const auto root = json::parse(embedded_host::readFile(kRunA), "run A");
    std::map<std::string, std::map<std::string, double>> rows;
    for (const auto& row : json::items(root, "rows"))
        for (const auto& [name, cell] : json::member(row, "cells")->GetObject())
            if (cell.IsNumber())
                rows[std::to_string(row["id"].GetUint64())][name.GetString()] = cell.GetDouble();
    return rows;
}

TEST_F(Gpu, SubcommandsAnswer) {
    const std::tuple<Arguments, const char*> rows[] = {
        {{"options", kRunA, "--table"}, "HBMgpu"},
        {{"threads", kRunA, "--table"}, "default"},
        {{"roofs", kRunA, "--csv", "-"}, "HBM Bandwidth,memory,1406.8727,GB/s,25"},
        {{"roofs", kRunA, "--selected", "--csv", "-"}, "HBM Bandwidth,yes,no"},
        {{"summary", kRunA}, "416.3  GOP"},
        {{"row", kRunA, "165"}, R"("limitingRoof":"DP Vector FMA Peak")"},
        {{"loop", kRunA, "--id", "165"}, R"([{"id":"165")"},
        {{"operations", kRunA, "--csv", "-"}, ",fma,float,16,34.3932928,268697600\n"},
        {{"compare", kRunA, kRunB, "--svg", "-"}, "Int32 Vector Add Peak"},
        {{"compare", kRunA, kRunB, "--details", "165"}, "DP Vector FMA Peak"},
    };
    for (const auto& [arguments, expected] : rows) {
        const auto result = run(arguments);
        EXPECT_EQ(result.code, kDone) << arguments[0];
        EXPECT_THAT(result.out, HasSubstr(expected)) << arguments[0];
        EXPECT_THAT(result.err, IsEmpty()) << arguments[0];
    }
    EXPECT_EQ(run({"operations", kRunA, "--json", "-"}).out,
              data_models2::report_helpers::getGpuOperationsMapsJson(
                  embedded_host::openResult(kRunA)->viewModel()));
}

TEST_F(Gpu, ChartsDrawWhatWasMeasuredAlsoAboveTheRoof) {
    const auto cells = cellsOfRunA();
    ASSERT_EQ(cells.size(), 167u);
    for (const auto& [option, field] : {std::pair("f", "SelfFloatOps"), std::pair("i", "SelfIntOps")}) {
        std::size_t drawn = 0, above = 0;
        const auto document =
            json::parse(run({"chart", kRunA, "--config", option, "--json", "-"}).out, "chart");
        for (const auto& record : json::items(document, "loops")) {
            const auto& row = cells.at(json::text(record, "id"));
            const double operations = row.at(field), traffic = row.at("GpuMemTraffic");
            EXPECT_NEAR(*json::number(record, "x"), std::log10(operations / traffic), 1e-9);
            EXPECT_NEAR(*json::number(record, "y"), std::log10(operations / row.at("GpuElapsedTime")), 1e-9);
            ++drawn;
            above += traffic / row.at("GpuElapsedTime") > kHbm;
        }
        const auto hasAny = [name = field](const auto& row) { return row.second.at(name) > 0.0; };
        EXPECT_EQ(drawn, static_cast<std::size_t>(std::count_if(cells.begin(), cells.end(), hasAny)));
        const auto said = std::to_string(above) + " rows above HBM Bandwidth, by up to";
        for (const char* form : {"--table", "--svg=-"})
            EXPECT_THAT(run({"chart", kRunA, "--config", option, form}).out, HasSubstr(said)) << form;
    }
    const auto text = run({"chart", kRunA}).out;
    EXPECT_THAT(text, HasSubstr("167 rows: 132 drawn, 35 not: 35 no float operations"));
    EXPECT_THAT(text, Not(HasSubstr("N/A"))) << "each has its share of time";
}

TEST_F(Gpu, RowsSayWhyTheyHaveNoLimit) {
    const auto text = run({"rows", kRunA, "--level", "all"}).out;
    EXPECT_THAT(text, HasSubstr("97 rows above HBM Bandwidth"));
    EXPECT_THAT(text, HasSubstr("31 neither: 31 no compute roof for float16"));
    EXPECT_THAT(text, Not(HasSubstr("HBMgpu")));
    const auto made = run({"rows", file("made.json", twoSubDevices(kDevice)), "--csv", "-"}).out;
    EXPECT_THAT(made, HasSubstr("1,counted,"));
    EXPECT_THAT(made, HasSubstr(",no compute roof: its instructions weren't counted,"));
    EXPECT_THAT(made, HasSubstr(",no operations,"));
}

TEST_F(Gpu, PackagesAreSubDevices) {
    const auto result = file("made.json", twoSubDevices(kDevice));
    const std::pair<const char*, const char*> rows[] = {{"0", "200"}, {"1", "100"}, {"2", "200"}};
    for (const auto& [packages, value] : rows)
        EXPECT_THAT(run({"roofs", result, "--packages", packages, "--csv", "-"}).out,
                    HasSubstr(std::string(",memory,") + value + ",GB/s,24\n"))
            << packages;
    file("machine.json", embedded_host::readFile(kExample + "machine.json"));
    const auto own = file("own.json", embedded_host::readFile(kRunA));
    const auto set = run({"roofs", own, "--set", "hbm bandwidth=2TB/s", "--csv", "-"});
    EXPECT_THAT(set.out, HasSubstr("HBM Bandwidth,memory,2000,")) << set.err;
    EXPECT_THAT(set.err, HasSubstr("for all sub-devices in "));
    EXPECT_THAT(run({"chart", own}).out, Not(HasSubstr("above HBM")));
    EXPECT_THAT(run({"roofs", own, "--clear", "--csv", "-"}).out,
                HasSubstr("HBM Bandwidth,memory,1406.8727,"));
}

TEST_F(Gpu, RefusesWhatHasNoMeaning) {
    const auto unknown = file("unknown.json", twoSubDevices(""));
    const std::tuple<Arguments, int, const char*> rows[] = {
        {{"roofs", kRunA, "--threads", "4"}, kUsage, "--threads"},
        {{"rows", kRunA, "--single"}, kUsage, "--single"},
        {{"chart", kRunA, "--packages", "3"}, kUsage, "--packages"},
        {{"operations", kCpu}, kUsage, "a CPU result"},
        {{"roofs", kRunA, "--all"}, kNoAnswer, "no cores"},
        {{"threads", unknown}, kNoAnswer, "tells of a device"},
    };
    for (const auto& [arguments, code, reason] : rows) test::expectRefused(arguments, code, reason);
    EXPECT_EQ(run({"roofs", unknown}).code, kDone) << "roofs need no device";
}

TEST_F(Gpu, TwoRunsOfOneProgramAreTheSame) {
    const auto root = json::parse(run({"compare", kRunA, kRunB, "--json", "-"}).out, "comparison");
    const auto pairs = json::items(root, "pairs");
    EXPECT_EQ(pairs.Size(), 167u);
    for (const auto& pair : pairs) {
        EXPECT_EQ(json::text(pair, "change"), "noise");
        EXPECT_EQ(json::text(pair["base"], "name"), json::text(pair["new"], "name"));
    }
}

}  // namespace
}  // namespace cli
