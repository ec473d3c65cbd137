// Tables as results: the text that is written, and what is refused and where.
#include "embedded_host/embedded_host.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <rapidcheck.h>
#include <rapidjson/document.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <unistd.h>

namespace {

using namespace embedded_host;
using data_models2::FieldId;

// A folder of this process alone: the tests may run at once in several builds.
class TestFolder {
public:
    TestFolder() { std::filesystem::create_directories(m_path); }
    ~TestFolder() { std::filesystem::remove_all(m_path); }
    std::string write(const std::string& name, const std::string& text) const {
        std::ofstream(m_path / name, std::ios::binary) << text;
        return (m_path / name).string();
    }

private:
    const std::filesystem::path m_path = testing::TempDir() + "import_csv_test_" + std::to_string(getpid());
};

std::string fileOf(const std::string& name, const std::string& text) {
    static const TestFolder folder;
    return folder.write(name, text);
}

// The lines between the brackets of "rows".
std::string rowsOf(const std::string& result) {
    const std::string begin = "\"rows\": [\n";
    const std::size_t from = result.find(begin) + begin.size();
    return result.substr(from, result.rfind("]\n}\n") - from);
}

std::string faultOf(const CsvImport& import) {
    try {
        return "accepted: " + importCsv(import);
    } catch (const FileError& error) {
        return error.what();
    }
}

TEST(ImportCsv, WritesAResultWithOneRowALine) {
    CsvImport import;
    import.file =
        fileOf("whole.csv", "kernel,time,flop,reps\nTRIAD,0.5,2e9,7\n\"a \"\"b\"\",\nc\",  1.25 ,0,\n");
    import.map = {{"FunctionName", "kernel"}, {"SelfElapsedTime", "time"}, {"SelfFloatOps", "flop", 1e-9}, {
                      "CallCount",
                      "reps"
                  }};
    import.set = {{"Vectorized", "1"}, { "VectorTraits", "FMA" }};
    import.machineFile = "../machine.json";
    EXPECT_EQ(importCsv(import), R"({
"format": "roofline-result",
"version": 1,
"kind": "cpu",
"program": {"name": "whole"},
"machine": "../machine.json",
"rows": [
{"id":1,"kind":"loop","cells":{"FunctionName":"TRIAD","SelfElapsedTime":0.5,"SelfFloatOps":2.0,)"
                                 R"("CallCount":7,"Vectorized":1,"VectorTraits":"FMA"}},
{"id":2,"kind":"loop","cells":{"FunctionName":"a \"b\",\nc","SelfElapsedTime":1.25,"SelfFloatOps":0.0,)"
                                 R"("Vectorized":1,"VectorTraits":"FMA"}}
]
}
)");
}

TEST(ImportCsv, NamesKindAndProgramAsTold) {
    CsvImport import;
    import.file = fileOf("kinds.csv", "t\n1\n");
    import.map = {{ "GpuElapsedTime", "t" }};
    import.kind = ResultKind::Gpu;
    import.programName = "say \"hi\"";
    const std::string gpu = importCsv(import);
    EXPECT_THAT(gpu, testing::HasSubstr(
                         "\"kind\": \"gpu\",\n\"program\": {\"name\": \"say \\\"hi\\\"\"},\n\"rows\""));
    EXPECT_EQ(rowsOf(gpu), "{\"id\":1,\"kind\":\"kernel\",\"cells\":{\"GpuElapsedTime\":1.0}}\n");
    import.kind = ResultKind::Offload;
    EXPECT_THAT(importCsv(import), testing::HasSubstr("{\"id\":1,\"kind\":\"loop\""));
}

TEST(ImportCsv, TakesABlankCellForMissingAndNeverForZero) {
    CsvImport import;
    import.file = fileOf("missing.csv", "name,flop,calls\n,,\n\"\",\" \",\t\n x ,0,0\n");
    import.map = {{"FunctionName", "name"}, {"SelfFloatOps", "flop"}, { "CallCount", "calls" }};
    EXPECT_EQ(rowsOf(importCsv(import)),
              "{\"id\":1,\"kind\":\"loop\",\"cells\":{}},\n"
              "{\"id\":2,\"kind\":\"loop\",\"cells\":{}},\n"
              "{\"id\":3,\"kind\":\"loop\",\"cells\":{\"FunctionName\":\" x "
              "\",\"SelfFloatOps\":0.0,\"CallCount\":0}}\n");
}

TEST(ImportCsv, JoinsTheSecondTablesColumnsByKey) {
    CsvImport import;
    import.file = fileOf("left.csv", "kernel,gpu\nA,1\nB,2\nA,3\n");
    import.joinFile = fileOf("right.csv", "host,kernel,bytes\n7,C,70\n8,A,\"80\"\n");
    import.joinColumn = "kernel";
    import.map = {{"FunctionName", "kernel"}, {"SelfElapsedTime", "gpu"}, { "SelfMemL1", "bytes", 0.5 }};
    EXPECT_EQ(rowsOf(importCsv(import)),
              "{\"id\":1,\"kind\":\"loop\",\"cells\":{\"FunctionName\":\"A\",\"SelfElapsedTime\":1.0,"
              "\"SelfMemL1\":40.0}},\n"
              "{\"id\":2,\"kind\":\"loop\",\"cells\":{\"FunctionName\":\"B\",\"SelfElapsedTime\":2.0}},\n"
              "{\"id\":3,\"kind\":\"loop\",\"cells\":{\"FunctionName\":\"A\",\"SelfElapsedTime\":3.0,"
              "\"SelfMemL1\":40.0}}\n");
}

// The text of a cell, "missing" without one. Rows count from 0.
std::string cellOf(const Result& result, std::size_t row, FieldId field) {
    const auto dataset = result.viewModel()->getDataset(data_models2::DataType::Cpu);
    auto rows = dataset->getRows(0);
    while (row-- > 0) ++rows;
    std::string text;
    return dataset->getString(*rows, dataset->getColumn(field), 0, text) ? text : "missing";
}

TEST(ImportCsv, WritesWhatTheReaderOfResultsTakes) {
    CsvImport import;
    import.file = fileOf("opened.csv", "kernel,time,gflop,gb\n\"f(\"\"x\"\",\ny)\",0.1,0,3\nempty,,,\n");
    import.map = {{"FunctionName", "kernel"}, {"SelfElapsedTime", "time"}, {"SelfFloatOps", "gflop"}, {
                      "SelfMemL1",
                      "gb"
                  }};
    import.set = {{ "Vectorized", "1" }};
    const auto result = parseResult(importCsv(import), "opened.json");
    const auto cell = [&](std::size_t row, FieldId field) { return cellOf(*result, row, field); };
    EXPECT_EQ(cell(0, FieldId::FunctionName), "f(\"x\",\ny)");
    EXPECT_EQ(cell(0, FieldId::SelfElapsedTime), "0.1");
    EXPECT_EQ(cell(0, FieldId::SelfFloatOps), "0");
    EXPECT_EQ(cell(1, FieldId::FunctionName), "empty");
    EXPECT_EQ(cell(1, FieldId::SelfElapsedTime), "missing");
    EXPECT_EQ(cell(1, FieldId::SelfFloatOps), "missing");
    EXPECT_EQ(cell(1, FieldId::Vectorized), "1");
}

// Intensity and performance as the measured table gives them in columns of its own, to six digits.
TEST(ImportCsv, MadeTheShippedExampleWithTheNumbersOfItsSource) {
    const struct {
        const char* file;
        std::size_t row;
        const char* name;
        double performance;
        double intensity;
    } cases[] = {
        {"gcc.json", 1, "Basic_DAXPY", 1.2161, 0.0833333},
        {"gcc.json", 64, "Algorithm_REDUCE_SUM", 1.73139, 0.125},
        {"gcc_repeat.json", 33, "Polybench_FLOYD_WARSHALL", 0.623215, 181.062},
        {"clang.json", 45, "Stream_TRIAD", 0.89993, 0.0833333},
    };
    for (const auto& c : cases) {
        const auto result = openResult(std::string(OMBRIX_SOURCE_DIR "/examples/two_compilers/") + c.file);
        EXPECT_EQ(result->machineName(), "Broadwell server CPU, 18 cores, 2.3 GHz");
        EXPECT_EQ(cellOf(*result, c.row, FieldId::FunctionName), c.name);
        EXPECT_NEAR(std::stod(cellOf(*result, c.row, FieldId::SelfGFlops)), c.performance,
                    1e-5 * c.performance);
        EXPECT_NEAR(std::stod(cellOf(*result, c.row, FieldId::SelfFloatAi)), c.intensity, 1e-5 * c.intensity);
        EXPECT_EQ(cellOf(*result, 0, FieldId::SelfFloatOps), "0")
            << "a copy has no operations, and that is known";
        EXPECT_EQ(cellOf(*result, 66, FieldId::Vectorized), "1");
    }
}

TEST(ImportCsv, KeepsLargeRowKeysExact) {
    CsvImport import;
    import.file = fileOf("keys.csv", "k\n9223372036854775807\n4e3\n");
    import.map = {{ "RowKey", "k" }};
    EXPECT_EQ(rowsOf(importCsv(import)),
              "{\"id\":1,\"kind\":\"loop\",\"cells\":{\"RowKey\":9223372036854775807}},\n"
              "{\"id\":2,\"kind\":\"loop\",\"cells\":{\"RowKey\":4000}}\n");
}

TEST(ImportCsv, RefusesWhatIsNoValueAndNamesTheCell) {
    const struct {
        const char* field;
        std::string cell;
        const char* fault;
    } cases[] = {
        {"SelfTime", "1.5s", "t.csv: line 3, column \"value\": expected a number, found \"1.5s\""},
        {"SelfTime", "1 2", "expected a number"},
        {"SelfTime", "\"1,5\"", "expected a number"},
        {"SelfTime", "0x10", "expected a number"},
        {"SelfTime", "nan", "expected a number"},
        {"SelfTime", "inf", "expected a number"},
        {"SelfTime", "1e999", "expected a number"},
        {"SelfTime", "-1", "expected a number that is not negative, found -1"},
        {"SelfTime", std::string(1000, 'x'), "found \"xxxxx"},
        {"UnrollFactor", "1.5", "expected a whole number of 32 bits"},
        {"UnrollFactor", "4294967296", "expected a whole number of 32 bits"},
        {"RowKey", "9223372036854775808", "expected a whole number of 63 bits"},
        {"RowKey", "-1", "expected a number that is not negative"},
        {"FunctionName", "caf\xE9", "line 3, column \"value\": expected UTF-8 text"},
        {"FunctionName", "\xED\xA0\x80", "expected UTF-8 text"},
    };
    for (const auto& c : cases) {
        CsvImport import;
        import.file = fileOf("t.csv", "name,value\na,1\nb," + c.cell + "\n");
        import.map = {{ c.field, "value" }};
        const std::string fault = faultOf(import);
        EXPECT_THAT(fault, testing::HasSubstr(c.fault)) << c.field;
        EXPECT_LT(fault.size(), 300);
    }
}

TEST(ImportCsv, RefusesARequestThatDoesNotFitTheTables) {
    const std::string first = fileOf("first.csv", "kernel,time,size\nA,1,2\n");
    const auto second = [](const std::string& text) { return fileOf("second.csv", text); };
    const struct {
        const char* name;
        std::function<void(CsvImport&)> change;
        const char* fault;
    } cases[] = {
        {"no mapping", [](auto& i) { i.map.clear(); }, "no column is mapped"},
        {"unknown field", [](auto& i) { i.map[0].field = "SelfTme"; },
         "\"SelfTme\" (did you mean \"SelfTime\"?)"},
        {"unknown column", [](auto& i) { i.map[0].column = "tine"; },
         "first.csv: no column \"tine\" (did you mean \"time\"?); the columns are \"kernel\", \"time\", "
         "\"size\""},
        {"field mapped twice",
         [](auto& i) {
             i.map.push_back({"SelfTime", "size"});
         },
         "SelfTime is set twice"},
        {"field mapped and set",
         [](auto& i) {
             i.set = {{"SelfTime", "1"}};
         },
         "SelfTime is set twice"},
        {"set value",
         [](auto& i) {
             i.set = {{"Vectorized", "yes"}};
         },
         "Vectorized: expected a number, found \"yes\""},
        {"text with factor",
         [](auto& i) {
             i.map = {{"FunctionName", "kernel", 2.0}};
         },
         "takes no factor"},
        {"zero factor", [](auto& i) { i.map[0].factor = 0.0; }, "factor of the field SelfTime"},
        {"factor is not a number", [](auto& i) { i.map[0].factor = NAN; }, "factor of the field SelfTime"},
        {"product too large",
         [](auto& i) {
             i.map = {{"SelfTime", "size", 1e308}};
         },
         "is too large"},
        {"no such file", [](auto& i) { i.file = "/nowhere/x.csv"; }, "/nowhere/x.csv"},
        {"no rows", [](auto& i) { i.file = fileOf("none.csv", "time\n"); }, "no rows below the header"},
        {"program's name", [](auto& i) { i.programName = "\xFF"; }, "program's name: expected UTF-8"},
        {"key missing in the first",
         [&](auto& i) { i.joinFile = second("kernl,b\n"), i.joinColumn = "kernl"; },
         "first.csv: no column \"kernl\""},
        {"key missing in the second", [&](auto& i) { i.joinFile = second("k,b\n"), i.joinColumn = "kernel"; },
         "second.csv: no column \"kernel\""},
        {"key twice",
         [&](auto& i) { i.joinFile = second("kernel,b\nA,1\nB,2\nA,3\n"), i.joinColumn = "kernel"; },
         "second.csv: line 4: the key \"A\" stands in line 2 too"},
        {"column in both",
         [&](auto& i) { i.joinFile = second("kernel,time\nA,1\n"), i.joinColumn = "kernel"; },
         "the column \"time\" stands in both"},
        {"bad cell of the second",
         [&](auto& i) {
             i.joinFile = second("kernel,b\nX,1\nA,x\n"), i.joinColumn = "kernel", i.map[0].column = "b";
         },
         "second.csv: line 3, column \"b\": expected a number"},
    };
    for (const auto& c : cases) {
        CsvImport import;
        import.file = first;
        import.map = {{ "SelfTime", "time" }};
        c.change(import);
        EXPECT_THAT(faultOf(import), testing::HasSubstr(c.fault)) << c.name;
    }
}

TEST(ImportCsv, WritesEveryDoubleSoThatItReadsBackTheSame) {
    EXPECT_TRUE(rc::check([](std::vector<std::uint64_t> bits) {
        std::vector<double> numbers{0.0, 5e-324, 1e23, 0.1 + 0.2};
        for (const std::uint64_t word : bits) {
            double number = 0.0;
            std::memcpy(&number, &word, sizeof number);
            if (std::isfinite(number)) numbers.push_back(std::fabs(number));
        }
        CsvImport import;
        import.map = {{ "SelfTime", "t" }};
        std::string table = "t";
        for (const double number : numbers) table += fmt::format("\n{}", number);
        import.file = fileOf("doubles.csv", table);
        rapidjson::Document result;
        result.Parse<rapidjson::kParseFullPrecisionFlag>(importCsv(import).c_str());
        const rapidjson::Value& rows = result["rows"];
        RC_ASSERT(rows.Size() == numbers.size());
        for (rapidjson::SizeType i = 0; i < rows.Size(); ++i)
            RC_ASSERT(rows[i]["cells"]["SelfTime"].GetDouble() == numbers[i]);
    }));
}

TEST(ImportCsv, ReportsProgressAndStopsWhenToldTo) {
    std::string table = "t\n";
    for (int i = 0; i < 10000; ++i) table += "1\n";
    CsvImport import;
    import.file = fileOf("progress.csv", table);
    import.map = {{ "SelfTime", "t" }};
    std::vector<std::pair<std::size_t, std::size_t>> reports;
    importCsv(import,
              [&](std::size_t done, std::size_t all) { return reports.emplace_back(done, all), true; });
    ASSERT_GE(reports.size(), 3);
    EXPECT_EQ(reports.back(), std::pair(std::size_t{10000}, std::size_t{10000}));
    EXPECT_TRUE(std::is_sorted(reports.begin(), reports.end()));

    std::size_t calls = 0;
    EXPECT_THROW(importCsv(import, [&](std::size_t, std::size_t) { return ++calls < 2; }), FileError);
    EXPECT_EQ(calls, 2);
}

}  // namespace
