// `roofline rows`, `row` and `loop` from their command lines to their answers.
#include "roofline_model/factories.h"

#include "cli/json.h"
#include "tests/cli/program_run.h"
#include "tests/embedded_host/result_text.h"

#include <boost/property_tree/ptree.hpp>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <map>

namespace cli {
namespace {

using test::run;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;
using Rows = test::FolderTest;

const std::string kFourLevels = OMBRIX_SOURCE_DIR "/examples/four_levels/result.json";
const std::string kQuick = OMBRIX_SOURCE_DIR "/examples/quick/result.json";

// L1 100 and DRAM 10 GB/s, scalar 8, FMA 40 and integers 8 giga operations per second for one thread; all but
// DRAM four times that for four.
std::string resultText(const std::string& rows, const std::string& levels = R"("L1", "DRAM")") {
    const auto machine = embedded_host::test::machineText(
        R"({"id": 1, "value": 100, "unit": "GB/s"}, {"id": 6, "value": 10, "unit": "GB/s"},
            {"id": 8, "value": 40, "unit": "GOP/s"}, {"id": 9, "value": 8, "unit": "GOP/s"},
            {"id": 13, "value": 8, "unit": "GOP/s"},
            {"id": 6, "value": 10, "unit": "GB/s", "threads": 4})",
        R"(, "name": "m", "cores": {"physical": 4}, "packages": 1)");
    return embedded_host::test::resultText(
        rows, R"(, "program": {"name": "p", "elapsedTime": 10.0, "usedThreads": 1},
        "levels": [)" +
                  levels + R"(], "machine": )" + machine);
}

// Below each kind of roof, above each kind, and without each thing that a point needs.
const char* const kRows = R"(
    {"id": 1, "cells": {"FunctionName": "stream", "SelfElapsedTime": 4, "SelfFloatOps": 4, "SelfIntOps": 0,
                        "SelfL1Load": 16, "SelfL1Store": 0, "SelfDramLoad": 12, "SelfDramStore": 4,
                        "Vectorized": 1, "VectorTraits": "FMA"}},
    {"id": 2, "cells": {"FunctionName": "dense", "SelfElapsedTime": 2, "SelfFloatOps": 60, "SelfIntOps": 0,
                        "SelfL1Load": 8, "SelfL1Store": 2, "SelfDramLoad": 2, "SelfDramStore": 0,
                        "Vectorized": 1, "VectorTraits": "FMA"}},
    {"id": 3, "cells": {"FunctionName": "not so scalar", "SelfElapsedTime": 1, "SelfFloatOps": 16,
                        "SelfIntOps": 0, "SelfL1Load": 20, "SelfL1Store": 0, "SelfDramLoad": 5,
                        "SelfDramStore": 0}},
    {"id": 4, "cells": {"FunctionName": "too fast", "SelfElapsedTime": 0.5, "SelfFloatOps": 10,
                        "SelfIntOps": 0, "SelfL1Load": 100, "SelfL1Store": 0, "SelfDramLoad": 100,
                        "SelfDramStore": 0, "Vectorized": 1, "VectorTraits": "FMA"}},
    {"id": 5, "cells": {"FunctionName": "copy", "SelfElapsedTime": 2.5, "SelfFloatOps": 0, "SelfL1Load": 20}},
    {"id": 6, "cells": {"FunctionName": "untimed", "SelfFloatOps": 1, "SelfL1Load": 20}},
    {"id": 7, "cells": {"FunctionName": "untouched", "SelfElapsedTime": 0.25, "SelfFloatOps": 1}})";

rapidjson::Document rowsJson(std::vector<std::string> arguments) {
    arguments.insert(arguments.end(), {"--json", "-"});
    return json::parse(run(arguments).out, "rows");
}

const json::Value& rowOf(const rapidjson::Document& document, const std::string& id) {
    for (const auto& row : json::items(document, "rows"))
        if (json::text(row, "id") == id) return row;
    throw std::runtime_error("no row " + id);
}

// Every run of blanks as one.
std::string squeezed(std::string text) {
    const auto bothBlank = [](char a, char b) { return a == ' ' && b == ' '; };
    text.erase(std::unique(text.begin(), text.end(), bothBlank), text.end());
    return text;
}

double numberOf(const json::Value& row, const char* key) { return json::number(row, key).value_or(-1.0); }

const std::string kRemarks = R"(
7 rows: 3 below a roof, 1 above every memory roof, 3 neither: 1 no operations, 1 no time, 1 no traffic
at the memory levels: 1 row above L1 Bandwidth, by up to 100 %; 1 row above DRAM Bandwidth, by up to 1900 %
! above a memory roof: no memory roof stands above the row, and its percent is of the highest one
! above a compute roof: the roof of the row's kind of code lies below its point, so it can't be the right one
)";

TEST_F(Rows, ShowsWhatLimitsEachRowAndMarksWhatCannotBe) {
    const auto result = run({"rows", file("r.json", resultText(kRows))});
    EXPECT_EQ(result.code, kDone);
    EXPECT_EQ(squeezed(result.out),
              "id name share of time intensity [OP/byte] performance [GOP/s] limiting roof of that roof "
              R"(speed-up nearest level roof of that roof remark
1 stream 40 % 0.25 1 DRAM Bandwidth 40 % 2.5 DRAM Bandwidth 40 %
5 copy 25 % N/A N/A N/A N/A N/A N/A N/A no operations
2 dense 20 % 6 30 DP Vector FMA Peak 75 % 1.333 DP Vector FMA Peak 75 %
3 not so scalar 10 % 0.8 16 L1 Bandwidth 20 % 5 DRAM Bandwidth 50 % above Scalar Add Peak: 200 %!
4 too fast 5 % 0.1 20 above L1 Bandwidth 200 %! N/A N/A N/A
7 untouched 2.5 % N/A N/A N/A N/A N/A N/A N/A no traffic
6 untimed N/A N/A N/A N/A N/A N/A N/A N/A no time
)" + kRemarks);
}

TEST_F(Rows, GivesEachLevelALine) {
    const auto result = run({"rows", file("r.json", resultText(kRows)), "--level", "all"});
    EXPECT_EQ(squeezed(result.out),
              "id name share of time level traffic [GB] intensity [OP/byte] performance [GOP/s] level's roof "
              R"(of that roof memory time nearest above remark
1 stream 40 % L1 16 0.25 1 L1 Bandwidth 4 % 9.091 %
1 stream 40 % DRAM 16 0.25 1 DRAM Bandwidth 40 % 90.91 % DRAM Bandwidth
5 copy 25 % N/A N/A N/A N/A N/A N/A N/A no operations
2 dense 20 % L1 10 6 30 L1 Bandwidth 5 % 33.33 % DP Vector FMA Peak
2 dense 20 % DRAM 2 30 30 DRAM Bandwidth 10 % 66.67 %
3 not so scalar 10 % L1 20 0.8 16 L1 Bandwidth 20 % 28.57 % above Scalar Add Peak: 200 %!
3 not so scalar 10 % DRAM 5 3.2 16 DRAM Bandwidth 50 % 71.43 % DRAM Bandwidth above Scalar Add Peak: 200 %!
4 too fast 5 % L1 100 0.1 20 L1 Bandwidth 200 %! N/A
4 too fast 5 % DRAM 100 0.1 20 DRAM Bandwidth 2000 %! N/A
7 untouched 2.5 % N/A N/A N/A N/A N/A N/A N/A no traffic
6 untimed N/A N/A N/A N/A N/A N/A N/A N/A no time
)" + kRemarks + "! above a level's roof: more traffic in this time than that level can carry\n");
}

TEST_F(Rows, SortsStablyWithMissingValuesLastAndCountsWhatIsNotShown) {
    const auto path = file("r.json", resultText(kRows));
    const std::map<std::string, std::string> orders{
        {"time", "1523476"}, {"distance", "3124567"}, {"performance", "2431567"}};
    for (const auto& [order, first] : orders) {
        const auto document = rowsJson({"rows", path, "--sort", order});
        std::string ids;
        for (const auto& row : json::items(document, "rows")) ids += json::text(row, "id");
        EXPECT_THAT(ids, StartsWith(first)) << order;
        EXPECT_EQ(ids.size(), 7u) << "no row is ever dropped";
    }
    const auto top = run({"rows", path, "--top", "2"}).out;
    EXPECT_THAT(top, HasSubstr("the first 2 of 7 rows are shown\n"));
    EXPECT_THAT(top, HasSubstr("7 rows: 3 below a roof")) << "the sentence counts all rows";
}

TEST_F(Rows, CsvAndJsonCarryTheSameValuesUnderTheSameKeys) {
    for (const std::string level : {"total", "all"}) {
        const auto path = file("r.json", resultText(kRows));
        const auto document = rowsJson({"rows", path, "--level", level});
        const auto& row = rowOf(document, "1");
        const auto csv = run({"rows", path, "--level", level, "--csv", "-"}).out;
        std::istringstream lines(csv);
        std::string header, first;
        std::getline(lines, header), std::getline(lines, first);
        std::istringstream keys(header), values(first + ",");
        const auto* levels = json::member(row, "levels");
        int compared = 0;
        for (std::string key, value; std::getline(keys, key, ',') && std::getline(values, value, ',');) {
            const auto* inLevel = levels ? json::member((*levels)[0], key.c_str()) : nullptr;
            const auto* found = inLevel ? inLevel : json::member(row, key.c_str());
            ASSERT_TRUE(found) << key;
            if (found->IsNumber())
                EXPECT_EQ(std::stod(value), found->GetDouble()) << key;
            else
                EXPECT_EQ(value, found->IsString() ? found->GetString() : "") << key;
            ++compared;
        }
        EXPECT_GT(compared, 15) << level;
    }
}

TEST_F(Rows, JsonHoldsTheLibrarysVerdictInFullPrecision) {
    const auto document = rowsJson({"rows", file("r.json", resultText(kRows))});
    EXPECT_EQ(json::text(document, "data"), "self");
    EXPECT_EQ(numberOf(document, "row_count"), 7);
    const std::tuple<const char*, const char*, double> numbers[] = {
        {"2", "limiting_roof_gop_per_s", 40},
        {"2", "fraction_of_limiting_roof", 0.75},
        {"2", "speedup_factor_to_limiting_roof", 40.0 / 30.0},
        {"3", "fraction_of_exceeded_compute_roof", 2},
        {"4", "fraction_of_exceeded_memory_roof", 2}};
    for (const auto& [row, key, number] : numbers)
        EXPECT_EQ(numberOf(rowOf(document, row), key), number) << key;
    EXPECT_TRUE(json::flag(rowOf(document, "2"), "valid"));
    EXPECT_FALSE(json::flag(rowOf(document, "4"), "valid"));
    const std::tuple<const char*, const char*, const char*> words[] = {
        {"2", "limiting_roof", "DP Vector FMA Peak"},
        {"3", "limiting_roof", "L1 Bandwidth"},
        {"3", "exceeded_compute_roof", "Scalar Add Peak"},
        {"4", "exceeded_memory_roof", "L1 Bandwidth"},
        {"5", "cause", "no operations"}};
    for (const auto& [id, key, word] : words) EXPECT_EQ(json::text(rowOf(document, id), key), word) << id;
    EXPECT_TRUE(json::member(rowOf(document, "4"), "limiting_roof")->IsNull());
    EXPECT_TRUE(json::member(rowOf(document, "5"), "performance_gop_per_s")->IsNull());
}

// The library reads a row's threads from its cells; the choice has to reach it.
TEST_F(Rows, TakesTheRoofsOfTheThreadsThatWereChosen) {
    const auto path = file("r.json", resultText(kRows));
    const std::tuple<std::vector<std::string>, const char*, double> rows[] = {
        {{}, "L1 Bandwidth", 80},
        {{"--threads", "1"}, "L1 Bandwidth", 80},
        {{"--threads", "2"}, "L1 Bandwidth", 160},
        {{"--threads", "3"}, "Scalar Add Peak", 32},
        {{"--threads", "4"}, "Scalar Add Peak", 32},
        {{"--threads", "4", "--single"}, "L1 Bandwidth", 80}};
    for (auto [arguments, roof, height] : rows) {
        SCOPED_TRACE(::testing::PrintToString(arguments));
        arguments.insert(arguments.begin(), {"rows", path});
        const auto document = rowsJson(arguments);
        EXPECT_EQ(json::text(rowOf(document, "3"), "limiting_roof"), roof);
        EXPECT_EQ(numberOf(rowOf(document, "3"), "limiting_roof_gop_per_s"), height);
    }
    EXPECT_THAT(run({"rows", path, "--threads", "2"}).out, HasSubstr("  on Scalar Add Peak\n"));
    EXPECT_THAT(run({"rows", path, "--threads", "3"}).err, HasSubstr("even number of threads: 4 here"));
    EXPECT_EQ(run({"rows", path, "--threads", "4"}).err, "");
    EXPECT_THAT(run({"row", path, "2", "--threads", "4"}).out, Not(run({"row", path, "2"}).out));
}

TEST_F(Rows, TakesTheTimeOfTheConfigurationAndTheLibrarysVerdict) {
    const auto path = file("tree.json", resultText(R"(
        {"id": 1, "cells": {"SelfElapsedTime": 1, "SelfFloatOps": 2, "SelfL1Load": 4},
         "children": [{"id": 2, "cells": {"SelfElapsedTime": 3, "SelfFloatOps": 4, "SelfL1Load": 4,
                                          "NestingLevel": 1}}]},
        {"id": 3, "cells": {"SelfElapsedTime": 1, "SelfFloatOps": 2, "SelfL1Load": 4, "NestingLevel": 1},
         "children": [{"id": 4, "cells": {"SelfElapsedTime": 1}}]})",
                                                   R"("L1")"));
    const auto self = rowsJson({"rows", path, "--config", "1"});
    const auto total = rowsJson({"rows", path, "--config", "0"});
    EXPECT_EQ(json::text(self, "data"), "self");
    EXPECT_EQ(json::text(total, "data"), "total");
    // The library takes total data where they are there, in either dataset; the line says so.
    for (const auto* const document : {&self, &total})
        EXPECT_EQ(numberOf(rowOf(*document, "1"), "performance_gop_per_s"), 1.5);
    EXPECT_EQ(json::text(rowOf(self, "1"), "doubt"), "with all that it calls");
    EXPECT_EQ(numberOf(rowOf(total, "1"), "intensity_op_per_byte"), 0.75);
    EXPECT_EQ(numberOf(rowOf(self, "1"), "share_of_time"), 0.1);
    EXPECT_EQ(numberOf(rowOf(total, "1"), "share_of_time"), 0.4);
    EXPECT_TRUE(json::flag(rowOf(self, "2"), "valid")) << "without callees self data are total data";
    EXPECT_EQ(json::text(rowOf(self, "2"), "doubt"), "");
    EXPECT_TRUE(json::flag(rowOf(total, "3"), "valid"));
    EXPECT_THAT(run({"rows", path, "--config", "i-1"}).err, HasSubstr("only 0 (total data) or 1"));
}

TEST_F(Rows, SayWhatIsMissingWithoutRoofsOrLevels) {
    const auto noMachine = file(
        "n.json", embedded_host::test::resultText(
                      R"({"id": 1, "cells": {"SelfElapsedTime": 1, "SelfFloatOps": 2, "SelfMemL1": 4}})"));
    const auto result = run({"rows", noMachine, "--level", "all"});
    EXPECT_THAT(result.out, HasSubstr("no roofs"));
    EXPECT_THAT(result.err, HasSubstr("--machine FILE"));
    EXPECT_THAT(result.err, HasSubstr("one memory level only"));

    const auto halves = file("h.json", resultText(R"(
        {"id": 1, "cells": {"SelfElapsedTime": 1, "SelfFloatOps": 2, "SelfL1Load": 4, "SelfL1Store": 0}},
        {"id": 2, "cells": {"SelfElapsedTime": 1, "SelfFloatOps": 2, "SelfIntOps": 0, "SelfL1Load": 4}})"));
    const auto levels = run({"rows", halves, "--level", "all"}).out;
    EXPECT_THAT(levels, HasSubstr("levels need float and integer counts, 0 included\n"));
    EXPECT_THAT(levels, HasSubstr("levels need loads and stores, 0 included\n"));
}

TEST_F(Rows, PrintsOneRowsDetailsToTheByte) {
    using namespace data_models2;
    const auto example = embedded_host::openResult(kFourLevels);
    const auto view = example->viewModel();
    const auto data = view->getDataset(DataType::Cpu);
    auto row = data->getRows(0);
    const auto info =
        createRowRooflineInfo(*row, data, view->getRoofManager(DataType::Cpu),
                              getInstructionMixMap(*row, data), 4, std::make_shared<RoofThreadingFeatures>());
    ASSERT_TRUE(info->isValid());
    EXPECT_EQ(run({"row", kFourLevels, "1"}).out, info->getRooflineData());
    EXPECT_EQ(run({"row", kFourLevels, "1", "--bags"}).out,
              "{\"roofline\":" + saveBag(info->getRooflineVariantBag()) +
                  ",\"memoryMetrics\":" + saveBag(info->getMemoryMetricsVariantBag()) +
                  ",\"bottleneck\":" + saveBag(info->getBotteleneckVariantBag({})) + "}");
    EXPECT_TRUE(json::parse(run({"row", kFourLevels, "1", "--bags"}).out, "bags").IsObject());
}

TEST_F(Rows, PrintsTheDetailsThatARequestNamesToTheByte) {
    using namespace data_models2;
    const auto example = embedded_host::openResult(kFourLevels);
    const auto engine = createRooflineInfo(example->viewModel());
    example->load(IViewModelBase::LoadType::Result);
    const std::string request = R"({"arrayOf":"item","item":["2","5"]})";
    const auto expected = engine->getLoopAdditionalInfo(request, nullptr, "f-1");
    EXPECT_THAT(expected, HasSubstr("\"5\""));
    EXPECT_EQ(run({"loop", kFourLevels, "--config", "f-1", "--request", request}).out, expected);
    EXPECT_EQ(run({"loop", kFourLevels, "--config", "f-1", "--request", "-"}, request).out, expected);
    EXPECT_EQ(run({"loop", kFourLevels, "--config", "f-1", "--id", "2", "--id", "5"}).out, expected);
    EXPECT_THAT(run({"loop", kFourLevels, "--id", "5", "--id", "99"}).err, HasSubstr("no loop 99"));
    const auto nothing = run({"loop", kFourLevels, "--request", R"({"item":["99"]})"});
    EXPECT_EQ(nothing.code, kNoAnswer);
    EXPECT_THAT(nothing.err, HasSubstr("none of the loops"));
}

TEST_F(Rows, RefuseWrongUsageWithOneLine) {
    const std::tuple<std::vector<std::string>, int, const char*> rows[] = {
        {{"rows", kQuick, "--level", "L1"}, kUsage, "--level"},
        {{"rows", kQuick, "--sort", "name"}, kUsage, "--sort"},
        {{"rows", kQuick, "--top", "-1"}, kUsage, "--top"},
        {{"row", kQuick, "-1"}, kUsage, "ID"},
        {{"loop", kQuick, "--id", "-1"}, kUsage, "--id"},
        {{"rows", kQuick, "--threads", "many"}, kUsage, "--threads"},
        {{"rows", kQuick, "--perspective", "1"}, kUsage, "--perspective"},
        {{"rows", kQuick, "--config", "x"}, kUsage, "'x'"},
        {{"rows", path("missing.json")}, kNoAnswer, "missing.json"},
        {{"row", kQuick}, kUsage, "ID"},
        {{"row", kQuick, "one"}, kUsage, "ID"},
        {{"row", kQuick, "99"}, kNoAnswer, "no row 99"},
        {{"loop", kQuick}, kUsage, "--request"},
        {{"loop", kQuick, "--request", "{}", "--id", "1"}, kUsage, "one of the two"},
        {{"loop", kQuick, "--request", "{\"item\":"}, kUsage, "no JSON"},
        {{"loop", kQuick, "--request", "[3]"}, kUsage, "JSON object"},
        {{"loop", kQuick, "--id", "one"}, kUsage, "--id"},
    };
    for (const auto& [arguments, code, reason] : rows) test::expectRefused(arguments, code, reason);
    for (const auto* command : {"rows", "row", "loop"})
        EXPECT_THAT(run({command, "--help"}).out, HasSubstr("Example:\n  roofline "));
}

// The example is what its script makes, and its model keeps every level below its roof.
TEST_F(Rows, ExampleOfFourLevelsIsItsModels) {
    const std::string script = OMBRIX_SOURCE_DIR "/examples/four_levels/make_result.py";
    EXPECT_EQ(std::system(("python3 " + script + " | cmp - " + kFourLevels).c_str()), 0)
        << "run make_result.py > result.json";

    const auto document = rowsJson({"rows", kFourLevels, "--level", "all"});
    std::size_t levels = 0;
    for (const auto& row : json::items(document, "rows")) {
        double shares = 0.0;
        for (const auto& level : json::items(row, "levels")) {
            EXPECT_LT(numberOf(level, "fraction_of_level_roof"), 1.0) << json::text(row, "name");
            shares += numberOf(level, "share_of_memory_time");
            ++levels;
        }
        if (json::flag(row, "valid")) EXPECT_NEAR(shares, 1.0, 1e-9) << json::text(row, "name");
    }
    EXPECT_EQ(levels, 13u * 4u) << "all but the kernel without operations";
}

}  // namespace
}  // namespace cli
