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

// The files of this process alone: the tests may run at once in several builds.
std::string fileOf(const std::string& name, const std::string& text) {
    struct Folder {
        const std::filesystem::path path = testing::TempDir() + "import_csv_test_" + std::to_string(getpid());
        Folder() { std::filesystem::create_directories(path); }
        ~Folder() { std::filesystem::remove_all(path); }
    };
    static const Folder folder;
    std::ofstream(folder.path / name, std::ios::binary) << text;
    return (folder.path / name).string();
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

TEST(ImportCsv, NamesKindAndProgramAsToldAndKeepsLargeRowKeysExact) {
    CsvImport import;
    import.file = fileOf("kinds.csv", "t,k\n1,9223372036854775807\n,4e3\n");
    import.map = {{"GpuElapsedTime", "t"}, { "RowKey", "k" }};
    import.kind = ResultKind::Gpu;
    import.programName = "say \"hi\"";
    EXPECT_THAT(
        importCsv(import),
        testing::HasSubstr("\"kind\": \"gpu\",\n\"program\": {\"name\": \"say \\\"hi\\\"\"},\n\"rows\": [\n"
                           "{\"id\":1,\"kind\":\"kernel\",\"cells\":{\"GpuElapsedTime\":1.0,"
                           "\"RowKey\":9223372036854775807}},\n"
                           "{\"id\":2,\"kind\":\"kernel\",\"cells\":{\"RowKey\":4000}}\n]\n"));
}

TEST(ImportCsv, JoinsTheSecondTablesColumnsByKey) {
    CsvImport import;
    import.file = fileOf("left.csv", "kernel,gpu\nA,1\nB,2\nA,3\n");
    import.joinFile = fileOf("right.csv", "host,kernel,bytes\n7,C,70\n8,A,\"80\"\n");
    import.joinColumn = "kernel";
    import.map = {{"FunctionName", "kernel"}, {"SelfElapsedTime", "gpu"}, { "SelfMemL1", "bytes", 0.5 }};
    EXPECT_THAT(importCsv(import), testing::HasSubstr(R"("rows": [
{"id":1,"kind":"loop","cells":{"FunctionName":"A","SelfElapsedTime":1.0,"SelfMemL1":40.0}},
{"id":2,"kind":"loop","cells":{"FunctionName":"B","SelfElapsedTime":2.0}},
{"id":3,"kind":"loop","cells":{"FunctionName":"A","SelfElapsedTime":3.0,"SelfMemL1":40.0}}
])"));
}

// The text of a cell, "missing" without one. Rows count from 0.
std::string cellOf(const Result& result, std::size_t row, FieldId field) {
    const auto dataset = result.viewModel()->getDataset(data_models2::DataType::Cpu);
    auto rows = dataset->getRows(0);
    while (row-- > 0) ++rows;
    std::string text;
    return dataset->getString(*rows, dataset->getColumn(field), 0, text) ? text : "missing";
}

TEST(ImportCsv, TakesABlankCellForMissingAndNeverForZero) {
    CsvImport import;
    import.file = fileOf("opened.csv", "kernel,time,gflop\n\"f(\"\"x\"\",\ny)\",0.1,0\n x ,\" \",\t\n");
    import.map = {{"FunctionName", "kernel"}, {"SelfElapsedTime", "time"}, { "SelfFloatOps", "gflop" }};
    import.set = {{ "Vectorized", "1" }};
    const auto result = parseResult(importCsv(import), "opened.json");
    std::string cells;
    for (const std::size_t row : {0, 1})
        for (const auto field :
             {FieldId::FunctionName, FieldId::SelfElapsedTime, FieldId::SelfFloatOps, FieldId::Vectorized})
            cells += cellOf(*result, row, field) + '|';
    EXPECT_EQ(cells, "f(\"x\",\ny)|0.1|0|1| x |missing|missing|1|");
}

// Intensity and performance as the measured table gives them in columns of its own, to six digits.
TEST(ImportCsv, MadeTheShippedExampleWithTheNumbersOfItsSource) {
    const std::tuple<const char*, std::size_t, const char*, double, double> cases[] = {
        {"gcc.json", 1, "Basic_DAXPY", 1.2161, 0.0833333},
        {"gcc_repeat.json", 33, "Polybench_FLOYD_WARSHALL", 0.623215, 181.062},
        {"clang.json", 45, "Stream_TRIAD", 0.89993, 0.0833333},
    };
    for (const auto& [file, row, name, performance, intensity] : cases) {
        const auto result = openResult(std::string(OMBRIX_SOURCE_DIR "/examples/two_compilers/") + file);
        EXPECT_EQ(result->machineName(), "Broadwell server CPU, 18 cores, 2.3 GHz");
        EXPECT_EQ(cellOf(*result, row, FieldId::FunctionName), name);
        EXPECT_NEAR(std::stod(cellOf(*result, row, FieldId::SelfGFlops)), performance, 1e-5 * performance);
        EXPECT_NEAR(std::stod(cellOf(*result, row, FieldId::SelfFloatAi)), intensity, 1e-5 * intensity);
        EXPECT_EQ(cellOf(*result, 0, FieldId::SelfFloatOps), "0") << "a copy has none, and that is known";
    }
}

TEST(ImportCsv, RefusesWhatIsNoValueAndNamesTheCell) {
    const std::tuple<const char*, std::string, const char*> cases[] = {
        {"SelfTime", "1.5s", "t.csv: line 3, column \"value\": expected a number, found \"1.5s\""},
        {"SelfTime", "\"1,5\"", "expected a number"},
        {"SelfTime", "0x10", "expected a number"},
        {"SelfTime", "nan", "expected a number"},
        {"SelfTime", "1e999", "expected a number"},
        {"SelfTime", "-1", "expected a number that is not negative, found -1"},
        {"SelfTime", std::string(1000, 'x'), "found \"xxxxx"},
        {"UnrollFactor", "1.5", "expected a whole number of 32 bits"},
        {"UnrollFactor", "4294967296", "expected a whole number of 32 bits"},
        {"RowKey", "9223372036854775808", "expected a whole number of 63 bits"},
        {"FunctionName", "\xED\xA0\x80", "line 3, column \"value\": expected UTF-8 text"},
    };
    for (const auto& [field, cell, told] : cases) {
        CsvImport import;
        import.file = fileOf("t.csv", "name,value\na,1\nb," + cell + "\n");
        import.map = {{ field, "value" }};
        const std::string fault = faultOf(import);
        EXPECT_THAT(fault, testing::HasSubstr(told)) << field;
        EXPECT_LT(fault.size(), 300);
    }
}

TEST(ImportCsv, RefusesARequestThatDoesNotFitTheTables) {
    using Maps = std::vector<ColumnMapping>;
    const Maps time{{"SelfTime", "time"}};
    const std::tuple<Maps, const char*, const char*> maps[] = {
        {{}, "", "no column is mapped"},
        {{{"SelfTme", "time"}}, "", "\"SelfTme\" (did you mean \"SelfTime\"?)"},
        {{{"SelfTime", "tine"}},
         "",
         "no column \"tine\" (did you mean \"time\"?); the columns are \"kernel\", \"time\", \"size\""},
        {{{"SelfTime", "time"}, {"SelfTime", "size"}}, "", "SelfTime is set twice"},
        {{{"FunctionName", "kernel", 2.0}}, "", "takes no factor"},
        {{{"SelfTime", "time", 0.0}}, "", "factor of the field SelfTime"},
        {{{"SelfTime", "time", NAN}}, "", "factor of the field SelfTime"},
        {{{"SelfTime", "size", 1e308}}, "", "is too large"},
        {time, "k,b\n", "second.csv: no column \"kernel\""},
        {time, "kernel,b\nA,1\nB,2\nA,3\n", "second.csv: line 4: the key \"A\" stands in line 2 too"},
        {time, "kernel,time\nA,1\n", "the column \"time\" stands in both"},
        {{{"SelfTime", "b"}}, "kernel,b\nX,1\nA,x\n", "second.csv: line 3, column \"b\": expected a number"},
    };
    for (const auto& [map, second, fault] : maps) {
        CsvImport import;
        import.file = fileOf("first.csv", "kernel,time,size\nA,1,2\n");
        import.map = map;
        if (*second) import.joinFile = fileOf("second.csv", second), import.joinColumn = "kernel";
        EXPECT_THAT(faultOf(import), testing::HasSubstr(fault));
    }
    CsvImport import;
    import.file = fileOf("first.csv", "time\n");
    import.map = time;
    EXPECT_THAT(faultOf(import), testing::HasSubstr("no rows below the header"));
    import.programName = "\xFF";
    EXPECT_THAT(faultOf(import), testing::HasSubstr("program's name: expected UTF-8"));
    import.set = {{ "SelfTime", "1" }};
    EXPECT_THAT(faultOf(import), testing::HasSubstr("SelfTime is set twice"));
    import.set = {{ "Vectorized", "yes" }};
    EXPECT_THAT(faultOf(import), testing::HasSubstr("Vectorized: expected a number, found \"yes\""));
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
