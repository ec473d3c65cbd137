// Tables as results: the text that is written, and what is refused and where.
#include "tests/embedded_host/folder_test.h"
#include "tests/embedded_host/result_text.h"

#include <gmock/gmock.h>
#include <rapidcheck.h>
#include <rapidjson/document.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>

namespace embedded_host::test {
namespace {
using testing::HasSubstr;

struct ImportCsv : FolderTest {
    // The import of a table; all else comes after.
    CsvImport importOf(const std::string& table, std::vector<ColumnMapping> map) const {
        CsvImport import;
        import.file = file("whole.csv", table);
        import.map = std::move(map);
        return import;
    }
};

std::string refusal(const CsvImport& import) {
    return faultOf([&] { importCsv(import); });
}

TEST_F(ImportCsv, WritesAResultWithOneRowALine) {
    auto import =
        importOf("kernel,time,flop,reps\nTRIAD,0.5,2e9,7\n\"a \"\"b\"\",\nc\",  1.25 ,0,\n x ,\" \",\t,3\n",
                 {{"FunctionName", "kernel"},
                  {"SelfElapsedTime", "time"},
                  {"SelfFloatOps", "flop", 1e-9},
                  {"CallCount", "reps"}});
    import.set = {{"Vectorized", "1"}, { "VectorTraits", "FMA" }};
    import.machineFile = "../machine.json";
    // A blank cell is missing, never 0.
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
                                 R"("Vectorized":1,"VectorTraits":"FMA"}},
{"id":3,"kind":"loop","cells":{"FunctionName":" x ","CallCount":3,"Vectorized":1,"VectorTraits":"FMA"}}
]
}
)");
}

TEST_F(ImportCsv, NamesKindAndProgramAsToldAndKeepsLargeRowKeysExact) {
    auto import = importOf("t,k\n1,9223372036854775807\n,4e3\n", {{"GpuElapsedTime", "t"}, {"RowKey", "k"}});
    import.kind = ResultKind::Gpu;
    import.programName = "say \"hi\"";
    EXPECT_THAT(importCsv(import), HasSubstr(R"("kind": "gpu",
"program": {"name": "say \"hi\""},
"rows": [
{"id":1,"kind":"kernel","cells":{"GpuElapsedTime":1.0,"RowKey":9223372036854775807}},
{"id":2,"kind":"kernel","cells":{"RowKey":4000}}
])"));
}

TEST_F(ImportCsv, JoinsTheSecondTablesColumnsByKey) {
    auto import =
        importOf("kernel,gpu\nA,1\nB,2\nA,3\n",
                 {{"FunctionName", "kernel"}, {"SelfElapsedTime", "gpu"}, {"SelfMemL1", "bytes", 0.5}});
    import.joinFile = file("right.csv", "host,kernel,bytes\n7,C,70\n8,A,\"80\"\n");
    import.joinColumn = "kernel";
    EXPECT_THAT(importCsv(import), HasSubstr(R"("rows": [
{"id":1,"kind":"loop","cells":{"FunctionName":"A","SelfElapsedTime":1.0,"SelfMemL1":40.0}},
{"id":2,"kind":"loop","cells":{"FunctionName":"B","SelfElapsedTime":2.0}},
{"id":3,"kind":"loop","cells":{"FunctionName":"A","SelfElapsedTime":3.0,"SelfMemL1":40.0}}
])"));
}

// Intensity and performance as the measured table gives them in columns of its own, to six digits.
TEST_F(ImportCsv, MadeTheShippedExampleWithTheNumbersOfItsSource) {
    using data_models2::FieldId;
    const std::tuple<const char*, std::size_t, const char*, double, double> cases[] = {
        {"gcc.json", 1, "Basic_DAXPY", 1.2161, 0.0833333},
        {"gcc_repeat.json", 33, "Polybench_FLOYD_WARSHALL", 0.623215, 181.062},
        {"clang.json", 45, "Stream_TRIAD", 0.89993, 0.0833333}};
    for (const auto& [name, place, kernel, performance, intensity] : cases) {
        const auto result = openResult(std::string(OMBRIX_SOURCE_DIR "/examples/two_compilers/") + name);
        const auto dataset = result->viewModel()->getDataset(data_models2::DataType::Cpu);
        const auto rows = listOf(dataset->getRows(0));
        const auto& row = rows.at(place);
        const auto number = [&](FieldId field) { return std::stod(cell(dataset, row, field)); };
        EXPECT_EQ(cell(dataset, row, FieldId::FunctionName), kernel);
        EXPECT_NEAR(number(FieldId::SelfGFlops), performance, 1e-5 * performance);
        EXPECT_NEAR(number(FieldId::SelfFloatAi), intensity, 1e-5 * intensity);
        EXPECT_EQ(cell(dataset, rows[0], FieldId::SelfFloatOps), "0") << "a copy has none, and that is known";
    }
}

TEST_F(ImportCsv, RefusesWhatIsNoValueAndNamesTheCell) {
    const std::tuple<const char*, std::string, const char*> cases[] = {
        {"SelfTime", "1.5s", "whole.csv: line 3, column \"value\": expected a number, found \"1.5s\""},
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
        const auto fault = refusal(importOf("name,value\na,1\nb," + cell + "\n", {{field, "value"}}));
        EXPECT_THAT(fault, HasSubstr(told)) << field;
        EXPECT_LT(fault.size(), 300);
    }
}

TEST_F(ImportCsv, RefusesARequestThatDoesNotFitTheTables) {
    using Maps = std::vector<ColumnMapping>;
    const Maps time{{"SelfTime", "time"}};
    const std::tuple<Maps, const char*, const char*> maps[] = {
        {{}, "", "no column is mapped"},
        {{{"SelfTme", "time"}}, "", "\"SelfTme\" (did you mean \"SelfTime\"?)"},
        {{{"SelfTime", "tine"}},
         "",
         "no column \"tine\" (did you mean \"time\"?); the columns are \"kernel\", "},
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
        auto import = importOf("kernel,time,size\nA,1,2\n", map);
        if (*second) import.joinFile = file("second.csv", second), import.joinColumn = "kernel";
        EXPECT_THAT(refusal(import), HasSubstr(fault));
    }
    auto import = importOf("time\n", time);
    EXPECT_THAT(refusal(import), HasSubstr("no rows below the header"));
    import.programName = "\xFF";
    EXPECT_THAT(refusal(import), HasSubstr("program's name: expected UTF-8"));
    import.set = {{ "SelfTime", "1" }};
    EXPECT_THAT(refusal(import), HasSubstr("SelfTime is set twice"));
    import.set = {{ "Vectorized", "yes" }};
    EXPECT_THAT(refusal(import), HasSubstr("Vectorized: expected a number, found \"yes\""));
}

TEST_F(ImportCsv, WritesEveryDoubleSoThatItReadsBackTheSame) {
    EXPECT_TRUE(rc::check([&](std::vector<std::uint64_t> bits) {
        std::vector<double> numbers{0.0, 5e-324, 1e23, 0.1 + 0.2};
        for (const std::uint64_t word : bits) {
            double number = 0.0;
            std::memcpy(&number, &word, sizeof number);
            if (std::isfinite(number)) numbers.push_back(std::fabs(number));
        }
        const auto import = importOf(fmt::format("t\n{}", fmt::join(numbers, "\n")), {{"SelfTime", "t"}});
        rapidjson::Document result;
        result.Parse<rapidjson::kParseFullPrecisionFlag>(importCsv(import).c_str());
        const rapidjson::Value& rows = result["rows"];
        RC_ASSERT(rows.Size() == numbers.size());
        for (rapidjson::SizeType i = 0; i < rows.Size(); ++i)
            RC_ASSERT(rows[i]["cells"]["SelfTime"].GetDouble() == numbers[i]);
    }));
}

TEST_F(ImportCsv, ReportsProgressAndStopsWhenToldTo) {
    std::string table = "t\n";
    for (int i = 0; i < 10000; ++i) table += "1\n";
    const auto import = importOf(table, {{"SelfTime", "t"}});
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
}  // namespace embedded_host::test
