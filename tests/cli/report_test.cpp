// The page's data against the library's own documents, and the page as a file.
#include "host_interfaces/host_functions.h"

#include "cli/json.h"
#include "cli/page/model.h"
#include "cli/page/page_file.h"
#include "cli/page/texts.h"
#include "tests/cli/program_run.h"
#include "tests/embedded_host/result_text.h"

#include <gmock/gmock.h>

#include <cmath>
#include <zlib.h>

namespace cli::page {
namespace {

using embedded_host::test::resultText;
using json::Value;
using test::expectRefused;
using test::run;
using ::testing::HasSubstr;
using ::testing::Not;
using Report = test::FolderTest;

const std::string kExamples = OMBRIX_SOURCE_DIR "/examples/";
const std::string kQuick = kExamples + "quick/result.json", kGpu = kExamples + "gpu_mi200/result.json";
const std::string kGcc = kExamples + "two_compilers/gcc.json",
                  kClang = kExamples + "two_compilers/clang.json";

Result open(const std::string& file) { return {openSession({file, {}, {}}), file}; }

std::string modelText(const Result& result, std::size_t detailed = kMostDetails) {
    ModelRequest request;
    request.results = {&result};
    return Model(request, [] {}).text(detailed);
}

// The model of a report as its program writes it.
rapidjson::Document reportOf(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), "report");
    arguments.insert(arguments.end(), {"--json", "-"});
    const auto answer = run(arguments);
    EXPECT_EQ(answer.code, kDone) << answer.err;
    return json::parse(answer.out, "the model");
}

double valueAt(const Value& columns, const Value& column, std::size_t row) {
    const auto& value = columns[column.GetUint()][static_cast<rapidjson::SizeType>(row)];
    return value.IsNull() ? NAN : value.GetDouble();
}

// `holder` has the columns and the dictionary of `chart`.
void expectSameRecords(const Result& result, const Value& holder, const Value& chart, const Value& document) {
    const auto& columns = holder["columns"];
    const auto records = json::items(document, "loops");
    std::vector<std::size_t> places;
    std::vector<bool> isPlaced(result.rows().size());
    for (const auto& record : records) {
        const auto row = result.rows().places.at(record["id"].GetString());
        places.push_back(row);
        isPlaced[row] = true;
        for (const auto& member : record.GetObject()) {
            const std::string key = member.name.GetString();
            if (!member.value.IsNumber() || key == "parent" || key == "vec") continue;
            const double expected = member.value.GetDouble();
            ASSERT_TRUE(chart["loops"].HasMember(key.c_str())) << key;
            EXPECT_NEAR(valueAt(columns, chart["loops"][key.c_str()], row), expected,
                        5.1e-6 * std::max(1.0, std::abs(expected)))
                << key;
        }
        const auto parent = json::number(record, "parent");
        const auto found = chart["parents"].IsNull() ? NAN : valueAt(columns, chart["parents"], row);
        EXPECT_EQ(parent.has_value(), !std::isnan(found));
        if (parent) EXPECT_EQ(found, static_cast<double>(places[static_cast<std::size_t>(*parent)]));
    }
    for (std::size_t row = 0; row < isPlaced.size(); ++row) {
        const auto* const placed = json::member(chart["loops"], chart["placed"].GetString());
        EXPECT_EQ(placed && !std::isnan(valueAt(columns, *placed, row)), isPlaced[row]) << row;
        const bool hasCause =
            chart["causes"].IsArray() && !chart["causes"][static_cast<rapidjson::SizeType>(row)].IsNull();
        EXPECT_NE(hasCause, isPlaced[row]) << row;
    }
    EXPECT_FALSE(chart["document"].HasMember("loops"));
}

TEST(PageModel, HoldsWhatTheLibraryDraws) {
    for (const auto& [file, charts] :
         {std::pair(kQuick, 72u), {kExamples + "four_levels/result.json", 72u}, {kGpu, 8u}, {kGcc, 6u}}) {
        SCOPED_TRACE(file);
        const auto result = open(file);
        const auto model = json::parse(modelText(result), "the model");
        const auto& holder = model["results"][0];
        ASSERT_EQ(holder["charts"].MemberCount(), charts);
        EXPECT_TRUE(holder["charts"].HasMember(holder["configuration"].GetString()));
        const auto& session = result.session();
        for (const auto& chart : holder["charts"].GetObject()) {
            SCOPED_TRACE(chart.name.GetString());
            const auto text =
                session.engine->getRooflineData(session.rows, session.tree, chart.name.GetString());
            expectSameRecords(result, holder, chart.value, json::parse(text, "the document"));
        }
        for (const auto& column : holder["rows"].GetObject())
            EXPECT_EQ(column.value.Size(), result.rows().size()) << column.name.GetString();
        for (rapidjson::SizeType row = 0; row < holder["rows"]["id"].Size(); ++row)
            EXPECT_NE(holder["rows"]["limit"][row].IsNull(), holder["rows"]["cause"][row].IsNull()) << row;
    }
}

TEST(PageModel, TellsTheRoofsOfARowAsTheListOfRowsDoes) {
    const auto file = kExamples + "four_levels/result.json";
    const auto result = open(file);
    const auto model = json::parse(modelText(result), "the model");
    const auto& holder = model["results"][0];
    const auto listed = json::parse(run({"rows", file, "--config", "1", "--json", "-"}).out, "the rows");
    ASSERT_EQ(json::items(listed, "rows").Size(), result.rows().lines.size());
    const auto compute = json::text(*json::items(listed, "rows").begin(), "nearest_level_roof");
    EXPECT_FALSE(compute.empty());
    for (const auto& row : json::items(listed, "rows")) {
        const auto at = static_cast<rapidjson::SizeType>(result.rows().places.at(json::text(row, "id")));
        const auto expectSame = [&](const char* roof, const char* fraction, const std::string& listedRoof) {
            const auto &name = holder["rows"][roof][at], &part = holder["rows"][fraction][at];
            const auto listedPart = json::number(row, ("fraction_of_" + listedRoof).c_str());
            EXPECT_EQ(name.IsNull() ? "" : holder["dictionary"][name.GetUint()].GetString(),
                      json::text(row, listedRoof.c_str()));
            EXPECT_NEAR(part.IsNull() ? -1.0 : part.GetDouble(), listedPart.value_or(-1.0), 1e-5);
        };
        expectSame("limit", "fraction", "limiting_roof");
        expectSame("nearest", "nearestFraction", "nearest_level_roof");
    }
}

TEST(PageModel, ServesSingleAnswersAlike) {
    const auto result = open(kQuick);
    const auto text = modelText(result);
    const auto model = json::parse(text, "the model");
    const auto& whole = model["results"][0];
    const std::string configuration = "f-0-DRAM-load";
    const auto answer = json::parse(result.chart(configuration), "the answer");
    const auto& session = result.session();
    expectSameRecords(
        result, answer, answer["charts"][configuration.c_str()],
        json::parse(session.engine->getRooflineData(session.rows, session.tree, configuration), "it"));
    EXPECT_TRUE(json::parse(result.roofs("i"), "the roofs") == whole["roofs"]["i"]);
    EXPECT_TRUE(json::parse(result.details("6"), "the details") == whole["details"]["6"]);
    EXPECT_EQ(whole["details"]["6"]["roofline"]["data"]["loops"].Size(), 4U);
    EXPECT_THROW(result.chart("f-1-L1-L2-all"), UsageError);
    EXPECT_THROW(result.roofs("x"), UsageError);
    EXPECT_THROW(result.details("99"), UsageError);

    ModelRequest live;
    live.results = {&result};
    live.live = R"({"version":1})";
    const auto served = json::parse(Model(live, [] {}).text(0), "the served model");
    EXPECT_EQ(served["results"][0]["charts"].MemberCount(), 0U);
    EXPECT_EQ(served["live"]["version"].GetInt(), 1);
}

TEST(PageModel, TellsHowManyRowsHaveDetails) {
    const auto result = open(kQuick);
    const auto model = json::parse(modelText(result, 2), "the model");
    // Those with most time.
    EXPECT_THAT(modelText(result, 2), HasSubstr(R"("details":{"6":)"));
    EXPECT_EQ(model["results"][0]["details"].MemberCount(), 2U);
    EXPECT_THAT(model["notes"][0].GetString(), HasSubstr("2"));
}

TEST(PageModel, GivesMixAndConclusionsOfKernels) {
    const auto kernel = json::parse(open(kGpu).details("1"), "the details");
    EXPECT_STREQ(kernel["mix"][0]["type"].GetString(), "Integer 32");
    EXPECT_EQ(kernel["mix"][0]["instructions"].GetDouble(), 5.76717e6);
    EXPECT_GT(kernel["conclusions"].Size(), 0U);
}

TEST(PageModel, OffersTheSubDevicesOfAGpu) {
    const auto model = json::parse(modelText(open(kGpu), 0), "the model");
    const auto& roofs = model["results"][0]["roofs"]["f"];
    ASSERT_EQ(roofs["setUps"].Size(), 2U);
    const auto &one = roofs["setUps"][0], &all = roofs["setUps"][1];
    EXPECT_STREQ(one["caption"].GetString(), "Single stack");
    EXPECT_EQ(one["packageCount"].GetInt(), 1);
    EXPECT_TRUE(all["roofs"] == roofs["asRun"]);
    EXPECT_EQ(one["roofs"].Size(), roofs["asRun"].Size());
}

// The words of the kinds stand in the table of kinds, their texts for the page in the catalogue.
TEST(PageTexts, KnowTheWordsOfEachKind) {
    const auto catalogue = data_models2::loadMessageCatalogue("data_models.roofline");
    const auto expectKnown = [&](const char* sort, const std::string& words) {
        EXPECT_TRUE(catalogue->has(messageOf(sort, words))) << words;
    };
    for (const auto& kind : allKinds()) {
        expectKnown("doubt", kind.invalidRow);
        expectKnown("doubt", levelsNeed(kind.levelNeeds));
        for (const auto& each : kind.operations) expectKnown("cause", each.missing);
    }
}

TEST_F(Report, NamesPlacesAndInstructionClasses) {
    const auto model =
        reportOf({file("mix.json", resultText(R"({"id": 1, "kind": "loop", "mix": {"12": 3, "5": 1},
        "cells": {"ThreadCount": 1, "SelfElapsedTime": 1, "SelfFloatOps": 1, "SelfMemL1": 1}})"))});
    const auto& holder = model["results"][0];
    EXPECT_STREQ(holder["place"].GetString(), "1 thread on 1 package");
    const auto& mix = holder["details"]["1"]["mix"];
    EXPECT_STREQ(mix[0]["name"].GetString(), "class 5");
    EXPECT_STREQ(mix[1]["name"].GetString(), "vector (class 12)");
}

TEST_F(Report, ComparesTwoResults) {
    const auto model = reportOf({kGcc, "--compare", kClang});
    ASSERT_EQ(model["results"].Size(), 2U);
    const auto& comparison = model["comparison"];
    ASSERT_EQ(comparison["pairs"].Size(), 67U);
    double before = 0.0;
    const auto &rows = model["results"][0]["rows"], &others = model["results"][1]["rows"];
    for (const auto& pair : comparison["pairs"].GetArray()) {
        const auto base = pair["base"].GetUint(), other = pair["new"].GetUint();
        EXPECT_STREQ(rows["name"][base].GetString(), others["name"][other].GetString());
        EXPECT_EQ(pair["timeNew"].GetDouble(), others["time"][other].GetDouble());
        before += rows["time"][base].GetDouble();
    }
    EXPECT_NEAR(comparison["totals"]["pairsBase"].GetDouble(), before, 0.01);
    EXPECT_STREQ(comparison["pairs"][0]["change"].GetString(), "slower");
}

// Values beyond any chart stay JSON, and names stay names.
TEST_F(Report, EnduresHostileResults) {
    const std::string name = R"(</script><img src=x onerror=alert(1)>{{CSP}})";
    const auto rows = R"({"id": 1, "kind": "loop", "cells": {"FunctionName": ")" + name + R"(",
            "SelfElapsedTime": 1e-300, "SelfFloatOps": 1e300, "SelfMemL1": 1e-300}},
        {"id": 2, "kind": "loop", "cells": {"SelfElapsedTime": 1, "SelfMemL1": 1}})";
    const auto program = R"(, "program": {"name": ")" + name + "\"}";
    const auto model = reportOf({file("odd.json", resultText(rows, program))});
    const auto& holder = model["results"][0];
    EXPECT_EQ(holder["rows"]["name"][0].GetString(), name);
    EXPECT_TRUE(holder["rows"]["performance"][1].IsNull());
    const auto cause = holder["charts"]["f-1"]["causes"][1].GetUint();
    EXPECT_STREQ(holder["dictionary"][cause].GetString(), "no float operations");
}

TEST_F(Report, TellsTheProgramBehindItsRows) {
    const auto model = reportOf({file("nameless.json", resultText(R"({"id": 1, "kind": "loop", "cells": {
        "SelfElapsedTime": 1, "SelfFloatOps": 1, "SelfMemL1": 1}})"))});
    EXPECT_STREQ(model["results"][0]["program"].GetString(), "nameless");
    const auto calls = json::parse(modelText(open(kQuick)), "the model");
    const auto& holder = calls["results"][0];
    const auto &rows = holder["rows"], &doubts = rows["doubt"];
    EXPECT_NEAR(rows["time"][0].GetDouble() / rows["share"][0].GetDouble(), holder["seconds"].GetDouble(),
                1e-3);
    for (rapidjson::SizeType row = 0; row < doubts.Size(); ++row)
        EXPECT_EQ(
            rows["withCallees"][row].GetBool(),
            !doubts[row].IsNull() &&
                kWithCallees == std::string_view(holder["dictionary"][doubts[row].GetUint()].GetString()))
            << row;
}

std::string inflated(const std::string& bytes, std::size_t size) {
    std::string text(size, '\0');
    auto length = static_cast<uLongf>(size);
    EXPECT_EQ(uncompress(reinterpret_cast<Bytef*>(text.data()), &length,
                         reinterpret_cast<const Bytef*>(bytes.data()), static_cast<uLong>(bytes.size())),
              Z_OK);
    return text;
}

TEST(PageFile, HoldsTheModelAndKeepsItsPolicy) {
    EXPECT_EQ(base64("f") + base64("fo") + base64("foo"), "Zg==Zm8=Zm9v");
    const std::string model = R"({"format":1,"name":"</script>"})";
    EXPECT_EQ(inflated(deflated(model), model.size()), model);

    const Resources resources{{"<meta \"{{CSP}}\"><title>{{TI", "TLE}}</title><html {{LANGUAGE}}>{{MODEL}}"},
                              {"script-src 'sha256-a'"}};
    const auto page = makePage(resources, {"</title>{{MODEL}}", "de", false}, model);
    EXPECT_EQ(page,
              "<meta \"default-src 'none'; script-src 'sha256-a'; img-src data: blob:; "
              "connect-src 'none'; base-uri 'none'; form-action 'none'\">"
              "<title>&lt;/title&gt;{{MODEL}}</title><html de>" +
                  base64(deflated(model)));
    EXPECT_THAT(makePage(resources, {{}, {}, true}, model), HasSubstr("connect-src 'self'"));
}

TEST(PageFile, HasDetailsOfAsManyRowsAsFit) {
    const auto make = [](std::size_t detailed) { return std::string(10 * detailed + 5, 'x'); };
    const std::pair<double, std::size_t> rows[] = {{1e6, kMostDetails}, {505.0, 50}, {504.0, 20}, {1.0, 0}};
    for (const auto& [bytes, expected] : rows) {
        const auto page = fitPage(bytes, make);
        EXPECT_EQ(page.detailed, expected) << bytes;
        EXPECT_EQ(page.text, make(expected)) << bytes;
    }
}

TEST(PageFile, SaysHowToTurnReportsOn) {
    EXPECT_THAT([] { requireResources(nullptr); },
                ::testing::ThrowsMessage<std::runtime_error>(HasSubstr("scripts/setup.sh")));
}

TEST_F(Report, IsOneFile) {
    expectRefused({"report", kQuick}, kUsage, "-o FILE");
    expectRefused({"report", kQuick, "--compare", kGpu, "--json", "-"}, kUsage, "only results of one kind");
    if (!resources()) return expectRefused({"report", kQuick, "-o", path("a.html")}, kNoAnswer, "are off");
    const auto written = run({"report", kQuick, "-o", path("a.html")});
    EXPECT_EQ(written.code, kDone);
    EXPECT_THAT(written.err, HasSubstr("a.html (15 rows, 72 charts, details of 15 rows)"));
    const auto page = embedded_host::readFile(path("a.html"));
    EXPECT_THAT(page, HasSubstr("<title>heat</title>"));
    EXPECT_THAT(page, HasSubstr("data-fault=\"The page can&#39;t show its data: %1\""));
    for (const auto* const left :
         {"{{CSP}}", "{{LANGUAGE}}", "{{TITLE}}", "{{MODEL}}", "{{STYLE}}", "{{SCRIPT}}", "{{NEEDS}}",
          "{{OLD}}", "{{FAULT}}", "src=\"http", "href=\"http"})
        EXPECT_EQ(page.find(left), std::string::npos) << left;
    expectRefused({"report", kQuick, "-o", path("a.html")}, kNoAnswer, "exists");
    EXPECT_EQ(run({"report", kQuick, "-o", path("a.html"), "--force"}).code, kDone);
    expectRefused({"report", kQuick, "--json", path("a.json"), "--force"}, kUsage, "excludes");
}

}  // namespace
}  // namespace cli::page
