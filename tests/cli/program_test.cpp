// The program from its command line to its answers and exit codes, within this process.
#include "cli/program.h"

#include "embedded_host/embedded_host.h"

#include "roofline_model/factories.h"

#include "cli/chart_document.h"
#include "cli/unplaced_rows.h"
#include "tests/cli/program_run.h"
#include "tests/embedded_host/result_text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>

namespace cli {
namespace {

using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::StartsWith;

using test::run;
using Program = test::FolderTest;

const std::string kExample = OMBRIX_SOURCE_DIR "/examples/quick/result.json";

std::string resultText(const std::string& rows) {
    return embedded_host::test::resultText(
        rows, R"(, "program": {"name": "p", "elapsedTime": 10.0, "usedThreads": 1})");
}

TEST_F(Program, RefusesWrongUsageWithOneLine) {
    const auto twice = path("x.json");
    const std::tuple<std::vector<std::string>, int, const char*> rows[] = {
        {{}, kUsage, "subcommand"},
        {{"chart"}, kUsage, "RESULT"},
        {{"chart", kExample, "--bogus"}, kUsage, "--bogus"},
        {{"chart", kExample, "--threads", "many"}, kUsage, "--threads"},
        {{"chart", kExample, "--config", "f-L9"}, kUsage, "L9"},
        {{"chart", kExample, "--json", "-", "--table"}, kUsage, "stdout"},
        {{"chart", kExample, "--json", twice, "--svg", twice}, kUsage, "same file"},
        {{"chart", kExample, "--language", "xx"}, kUsage, "'xx'; known: de, en"},
        {{"import", "csv", "t.csv"}, kUsage, "--map"},
        {{"import", "csv", "t.csv", "--map", "NoEqualSign"}, kUsage, "FIELD=COLUMN"},
        {{"import", "csv", "t.csv", "--map", "A=b*inf"}, kUsage, "finite"},
        {{"import", "csv", "t.csv", "--map", "A=b", "--join", "u.csv"}, kUsage, "--on"},
        {{"import", "csv", "t.csv", "--map", "A=b", "--kind", "fpga"}, kUsage, "--kind"},
        {{"chart", path("missing.json")}, kNoAnswer, "missing.json"},
        {{"chart", kExample, "--json", path("no/such/folder.json")}, kNoAnswer, "folder.json"},
    };
    for (const auto& [arguments, code, reason] : rows) test::expectRefused(arguments, code, reason);
}

TEST_F(Program, ExplainsItselfEverywhere) {
    EXPECT_THAT(run({"--version"}).out, StartsWith("roofline "));
    const std::vector<std::string> commands[]{{},        {"fields"}, {"options"},       {"threads"},
                                              {"roofs"}, {"chart"},  {"import", "csv"}, {"import", "roofs"}};
    for (auto arguments : commands) {
        arguments.push_back("--help");
        EXPECT_THAT(run(arguments).out, HasSubstr("Example:\n  roofline "));
    }
}

TEST_F(Program, PrintsTheLibrarysAnswersToTheByte) {
    using namespace data_models2;
    const auto example = embedded_host::openResult(kExample);
    const auto engine = createRooflineInfo(example->viewModel());
    example->load(IViewModelBase::LoadType::Result);
    EXPECT_EQ(run({"options", kExample}).out, engine->getRooflineOptions());
    EXPECT_EQ(run({"threads", kExample}).out, engine->getThreadsInfo());
    EXPECT_EQ(run({"roofs", kExample, "--threads", "4", "--config", "i"}).out,
              engine->getRoofs("i", {4, {}, 1}, IRooflineInfo::Perspective::Program));
    EXPECT_EQ(run({"roofs", kExample, "--all"}).out,
              engine->getAllRoofs(engine->getRooflineConfigurationStr({})));
    EXPECT_TRUE(embedded_host::pumpTasks(std::chrono::seconds(60)));
    EXPECT_EQ(run({"template", kExample}).out, engine->getReportTemplate(nullptr));
    const auto view = example->viewModel();
    const auto document = engine->getRooflineData(view->getDataset(DataType::Cpu),
                                                  view->getDataset(DataType::CpuTopDown), "f-L1-DRAM");
    EXPECT_GT(document.size(), 1000u);
    const auto printed = run({"chart", kExample, "--config", "f-L1-DRAM", "--json", "-"}).out;
    EXPECT_TRUE(printed == document) << "two long texts differ";
}

TEST_F(Program, WritesSeveralAnswersAtOnceAndReplacesThem) {
    file("chart.json", "old");
    const auto result =
        run({"chart", kExample, "--json", path("chart.json"), "--svg", path("chart.svg"), "--csv", "-"});
    EXPECT_EQ(result.code, kDone);
    EXPECT_THAT(result.out, StartsWith("id,name,location,type,level,intensity,performance,"));
    EXPECT_FALSE(parseChartDocument(embedded_host::readFile(path("chart.json"))).points.empty());
    EXPECT_THAT(embedded_host::readFile(path("chart.svg")), EndsWith("</svg>\n"));
}

TEST_F(Program, ImportsAndChartsATable) {
    const auto table = file("t.csv", "kernel,ms,gflop,gb\nscale*2,500,2,4\ncopy,250,0,8\n");
    const auto roofs =
        file("r.csv", "threads,roof,unit,value\n1,L1 bandwidth,GB/s,100\n1,scalar add,GOP/s,8\n");
    EXPECT_EQ(run({"import", "roofs", roofs, "--name", "m", "-o", path("m.json")}).code, kDone);
    std::vector<std::string> import{"import", "csv", table, "--machine", "m.json", "-o", path("r.json")};
    for (const auto* map :
         {"--map", "FunctionName=kernel", "SelfElapsedTime=ms*1e-3", "SelfFloatOps=gflop", "SelfMemL1=gb"})
        import.emplace_back(map);
    EXPECT_EQ(run(import).code, kDone);
    EXPECT_EQ(run(import).code, kNoAnswer) << "an existing file is replaced only with --force";
    import.emplace_back("--force");
    EXPECT_EQ(run(import).code, kDone);
    EXPECT_EQ(run({"chart", path("r.json")}).out,
              "name             intensity [FLOP/byte]  performance [GFLOP/s]  share of time\n"
              "scale*2                            0.5                      4        66.67 %\n"
              "(program total)                 0.1667                  2.667          total\n"
              "\n"
              "2 rows: 1 drawn, 1 not: 1 no float operations\n");
    EXPECT_EQ(
        run({"roofs", path("r.json"), "--csv", "-"}).out,
        "roof,kind,value,measure,id\nL1 Bandwidth,memory,100,GB/s,1\nScalar Add Peak,compute,8,GFLOP/s,9\n");
}

TEST_F(Program, HelpsWhereANewcomerIsStuck) {
    const auto onlyIntegers =
        file("i.json", resultText(R"({"id": 1, "kind": "loop", "cells": {"SelfElapsedTime": 1.0,
            "SelfIntOps": 3.0, "SelfMemL1": 2.0}})"));
    const auto result = run({"chart", onlyIntegers, "--config", "f", "--json", "-"});
    EXPECT_EQ(result.code, kNoAnswer);
    EXPECT_THAT(result.out, StartsWith(R"({"noDataMessage":)"))
        << "a document that says why is an answer too";
    EXPECT_THAT(result.err, HasSubstr("try --config i"));
    EXPECT_THAT(result.err, HasSubstr("--machine FILE"));
    EXPECT_EQ(run({"chart", onlyIntegers}).code, kDone) << "integers are this result's default";
}

// Every row is drawn or has a cause, whatever it lacks.
TEST_F(Program, CountsRowsThatCannotBePlacedByCause) {
    const auto result = file("rows.json", resultText(R"(
        {"id": 1, "kind": "loop", "cells": {"SelfElapsedTime": 1, "SelfFloatOps": 3, "SelfMemL1": 2}},
        {"id": 2, "kind": "loop", "cells": {"SelfElapsedTime": 1, "SelfFloatOps": 0, "SelfMemL1": 2}},
        {"id": 3, "kind": "loop", "cells": {"SelfElapsedTime": 1, "SelfMemL1": 2}},
        {"id": 4, "kind": "loop", "cells": {"SelfElapsedTime": 1, "SelfFloatOps": 3}},
        {"id": 5, "kind": "loop", "cells": {"SelfFloatOps": 3, "SelfMemL1": 2}},
        {"id": 6, "type": 2, "cells": {"SelfElapsedTime": 1, "SelfFloatOps": 3, "SelfMemL1": 2}},
        {"id": 7, "kind": "loop", "cells": {"SelfFloatAi": 2, "SelfGFlops": 3}})"));
    EXPECT_THAT(run({"chart", result}).out,
                HasSubstr("6 rows: 2 drawn, 4 not: 2 no float operations, 1 no traffic, 1 no time\n"));
}

TEST_F(Program, CountsRowsBelowACallerThatFellOffTheChart) {
    const std::string cells = R"("cells": {"SelfElapsedTime": 1, "SelfFloatOps": 3, "SelfMemL1": 2})";
    const auto result = file("tree.json", resultText(R"(
        {"id": 1, "kind": "loop", )" + cells + R"(, "children": [{"id": 2, "kind": "loop", )" +
                                                     cells + R"(}]},
        {"id": 3, "type": 8, "cells": {"SelfElapsedTime": 1}, "children": [{"id": 4, "kind": "loop", )" +
                                                     cells + "}]}"));
    EXPECT_THAT(run({"chart", result, "--config", "0"}).out,
                HasSubstr("3 rows: 2 drawn, 1 not: 1 caller not on the chart\n"));
    EXPECT_THAT(run({"chart", result, "--config", "1"}).out, HasSubstr("3 rows: 3 drawn\n"));
}

}  // namespace
}  // namespace cli
