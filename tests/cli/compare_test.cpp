// `roofline compare` from its command line to its answers, exit codes and picture.
#include "roofline_model/factories.h"

#include "cli/json.h"
#include "results_comparer/factories.h"
#include "tests/cli/program_run.h"

#include <boost/property_tree/ptree.hpp>
#include <boost/property_tree/xml_parser.hpp>
#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <csignal>
#include <random>

namespace cli {
namespace {

using test::run;
using ::testing::HasSubstr;
using ::testing::Not;
using Arguments = std::vector<std::string>;

const std::string kCompilers = OMBRIX_SOURCE_DIR "/examples/two_compilers/";
const std::string kGcc = kCompilers + "gcc.json", kClang = kCompilers + "clang.json";
const std::string kMachine = kCompilers + "machine.json";

std::string row(int id, const char* name, const char* cells) {
    return fmt::format(R"({{"id": {}, "cells": {{"FunctionName": "{}", "SourceLocation": "{}.cpp:1", {}}}}})",
                       id, name, name, cells);
}

// One memory roof and one compute roof, `factor` times as high as usual.
std::string resultText(const std::vector<std::string>& rows, const char* kind = "cpu", int factor = 1) {
    return fmt::format(
        R"({{"format": "roofline-result", "version": 1, "kind": "{}", "program": {{"name": "p"}},
            "machine": {{"format": "roofline-machine", "version": 1, "name": "m{}",
                "cores": {{"physical": 4}}, "packages": 1, "roofs": [
                {{"id": 1, "value": {}, "unit": "GB/s"}}, {{"id": 9, "value": {}, "unit": "GOP/s"}}]}},
            "rows": [{}]}})",
        kind, factor, 100 * factor, 8 * factor, fmt::join(rows, ","));
}

constexpr auto kTimed = R"("SelfElapsedTime": 2, "SelfFloatOps": 4, "SelfMemL1": 8)";
constexpr auto kTenPercentSlower = R"("SelfElapsedTime": 2.2, "SelfFloatOps": 4, "SelfMemL1": 8)";
constexpr auto kTwiceAsFast = R"("SelfElapsedTime": 1, "SelfFloatOps": 4, "SelfMemL1": 8)";
constexpr auto kUntimed = R"("SelfFloatOps": 4, "SelfMemL1": 8)";
constexpr auto kInstant = R"("SelfElapsedTime": 0, "SelfFloatOps": 4)";

struct Compare : test::FolderTest {
    std::string base(const std::vector<std::string>& rows) { return file("base.json", resultText(rows)); }
    std::string other(const std::vector<std::string>& rows) { return file("new.json", resultText(rows)); }
};

rapidjson::Document comparisonOf(Arguments arguments) {
    arguments.insert(arguments.begin(), "compare");
    arguments.insert(arguments.end(), {"--json", "-"});
    return json::parse(run(arguments).out, "comparison");
}

std::size_t countPairs(const rapidjson::Document& document, const std::vector<std::string>& changes) {
    std::size_t count = 0;
    for (const auto& pair : json::items(document, "pairs"))
        count +=
            static_cast<std::size_t>(std::count(changes.begin(), changes.end(), json::text(pair, "change")));
    return count;
}

// The lines of clang's table in another order, imported anew.
std::string shuffled(const std::string& table) {
    const auto result = json::parse(embedded_host::readFile(kClang), "clang.json");
    std::vector<std::string> lines;
    for (const auto& each : json::items(result, "rows")) {
        const auto& cells = *json::member(each, "cells");
        const auto number = [&](const char* name) { return json::number(cells, name).value_or(0.0); };
        lines.push_back(fmt::format("{},{},{},{},{}\n", json::text(cells, "FunctionName"),
                                    json::text(cells, "Location"), number("SelfElapsedTime"),
                                    number("SelfFloatOps"), number("SelfMemL1")));
    }
    std::shuffle(lines.begin(), lines.end(), std::mt19937(1));
    embedded_host::writeFile(table, fmt::format("name,group,s,gflop,gb\n{}", fmt::join(lines, "")), true);
    const auto imported = table + ".json";
    run({"import", "csv", table, "--map", "FunctionName=name", "Location=group", "SelfElapsedTime=s",
         "SelfFloatOps=gflop", "SelfMemL1=gb", "--set", "Vectorized=1", "VectorTraits=FMA", "-o", imported});
    return imported;
}

TEST_F(Compare, FindsTheSixtySevenKernelsOfTwoCompilersInAnyOrder) {
    for (const auto& clang : {kClang, shuffled(path("clang.csv"))}) {
        const auto document = comparisonOf({kGcc, clang, "--machine", kMachine, "--noise", "20"});
        EXPECT_EQ(json::items(document, "pairs").Size(), 67u);
        EXPECT_EQ(countPairs(document, {"faster", "slower"}), 14u);
        for (const auto& pair : json::items(document, "pairs"))
            EXPECT_EQ(json::text(*json::member(pair, "base"), "name"),
                      json::text(*json::member(pair, "new"), "name"));
    }
    const auto repeat = comparisonOf({kGcc, kCompilers + "gcc_repeat.json"});
    EXPECT_EQ(json::items(repeat, "pairs").Size(), 67u);
    EXPECT_GE(countPairs(repeat, {"noise"}), 66u);
}

TEST_F(Compare, EndsAsTheGateAndThePairsSay) {
    const std::tuple<const char*, const char*, const char*, Arguments, int, const char*> rows[] = {
        {"no gate", kTimed, kTenPercentSlower, {}, kDone, ""},
        {"at the limit", kTimed, kTenPercentSlower, {"--fail-if", "slower=10"}, kDone, ""},
        {"past the limit", kTimed, kTenPercentSlower, {"--fail-if", "slower=9.9"}, kGate, "2 s -> 2.2 s  a"},
        {"the noise doesn't count",
         kTimed,
         kTenPercentSlower,
         {"--fail-if", "slower=1", "--noise", "50"},
         kGate,
         "1 of 1 pairs"},
        {"faster", kTimed, kTwiceAsFast, {"--fail-if", "slower=0"}, kDone, ""},
        {"no time before", kInstant, kTimed, {"--fail-if", "slower=1000"}, kGate, "0 s -> 2 s"},
        {"nothing to judge", kTimed, kUntimed, {"--fail-if", "slower=1"}, kNoAnswer, "nothing to judge"},
        {"no pair takes part",
         kUntimed,
         kUntimed,
         {"--roofline", "--threshold", "100"},
         kNoAnswer,
         "--threshold"},
    };
    for (const auto& [name, before, after, options, code, words] : rows) {
        Arguments arguments{"compare", base({row(1, "a", before)}), other({row(7, "a", after)})};
        arguments.insert(arguments.end(), options.begin(), options.end());
        const auto result = run(arguments);
        EXPECT_EQ(result.code, code) << name << ": " << result.err;
        EXPECT_THAT(result.err, HasSubstr(words)) << name;
        if (code == kDone) EXPECT_EQ(result.err, "") << name;
    }
    EXPECT_EQ(run({"compare", base({row(1, "a", kTimed)}), other({}), "--fail-if", "slower=10"}).code,
              kNoAnswer);
}

TEST_F(Compare, ListsPairsRestAndTotals) {
    const Arguments files{base({row(1, "steady", kTimed), row(2, "slow", kTimed), row(3, "fast", kTimed),
                                row(4, "gone", kTimed)}),
                          other({row(9, "fast", kTwiceAsFast), row(8, "slow", kTenPercentSlower),
                                 row(7, "steady", kTimed), row(6, "untimed", kUntimed)})};
    const auto names = [&](const char* order) {
        auto arguments = files;
        arguments.insert(arguments.end(), {"--sort", order});
        std::string text;
        const auto document = comparisonOf(arguments);
        for (const auto& pair : json::items(document, "pairs"))
            text += json::text(*json::member(pair, "base"), "name") + '/' +
                    json::text(*json::member(pair, "new"), "id") + ' ' + json::text(pair, "change") + ' ';
        return text;
    };
    EXPECT_EQ(names("delta"), "fast/9 faster slow/8 slower steady/7 noise ");
    EXPECT_EQ(names("time"), "steady/7 noise slow/8 slower fast/9 faster ");

    const auto document = comparisonOf(files);
    const auto& totals = *json::member(document, "totals");
    const auto speedUp = [&](const char* what) {
        return json::number(*json::member(totals, what), "speedup_factor");
    };
    EXPECT_DOUBLE_EQ(speedUp("pairs").value(), 6.0 / 5.2);
    EXPECT_DOUBLE_EQ(speedUp("all_rows").value(), 8.0 / 5.2);
    EXPECT_DOUBLE_EQ(json::number(totals, "geometric_mean_speedup_factor").value(),
                     std::cbrt(2.0 * 1.0 * (2.0 / 2.2)));

    const auto text = run({"compare", files[0], files[1]}).out;
    EXPECT_THAT(text, ::testing::ContainsRegex("1 +steady +[0-9.]+ % +2 +2 +~ "));
    EXPECT_THAT(text, ::testing::ContainsRegex("base +4 +gone +2 "));
    EXPECT_THAT(text, ::testing::ContainsRegex("new +6 +untimed +N/A "));
    const auto csv = run({"compare", files[0], files[1], "--csv", "-"}).out;
    EXPECT_EQ(std::count(csv.begin(), csv.end(), '\n'), 1 + 3 + 1 + 1);
    EXPECT_THAT(csv, HasSubstr("\nbase,,,,4,gone,"));
}

TEST_F(Compare, RefusesWhatCannotBeCompared) {
    const auto cpu = base({row(1, "a", kTimed)});
    const auto offload = file("offload.json", resultText({row(1, "a", kTimed)}, "offload"));
    const auto gpu = file("gpu.json", resultText({row(1, "a", kTimed)}, "gpu"));
    const std::tuple<Arguments, int, const char*> rows[] = {
        {{offload, offload}, kUsage, "offload"},
        {{cpu, gpu}, kUsage, "one kind"},
        {{cpu, path("missing.json")}, kNoAnswer, "missing.json"},
        {{cpu, cpu, "--threshold", "nan"}, kUsage, "--threshold"},
        {{cpu, cpu, "--noise", "-1"}, kUsage, "--noise"},
        {{cpu, cpu, "--fail-if", "faster=3"}, kUsage, "slower=PERCENT"},
        {{cpu, cpu, "--fail-if", "slower=3%"}, kUsage, "slower=PERCENT"},
        {{cpu, cpu, "--sort", "name"}, kUsage, "--sort"},
        {{cpu, cpu, "--config", "f"}, kUsage, "--details"},
        {{cpu, cpu, "--details", "1", "--csv", "-"}, kUsage, "JSON"},
        {{cpu, cpu, "--details", "2"}, kNoAnswer, "no row 2"},
    };
    for (auto [arguments, code, reason] : rows) {
        arguments.insert(arguments.begin(), "compare");
        test::expectRefused(arguments, code, reason);
    }
}

TEST_F(Compare, PrintsTheLibrarysDetailsOfAPairToTheByte) {
    const auto before = base({row(1, "a", kTimed), row(2, "b", kTimed)});
    const auto after = other({row(5, "b", kTwiceAsFast), row(6, "a", kTimed)});
    const auto first = embedded_host::openResult(before), second = embedded_host::openResult(after);
    const auto engine = data_models2::createRooflineInfo(first->viewModel());
    first->load(data_models2::IViewModelBase::LoadType::Result);
    const auto expected =
        engine->getComparisonData({first->viewModel(), second->viewModel(), data_models2::DataType::Cpu, {}},
                                  R"({"first":"2","second":"5"})", "f");
    EXPECT_THAT(expected, HasSubstr("bottleneck"));
    EXPECT_EQ(run({"compare", before, after, "--details", "2", "--config", "f"}).out, expected);
}

// Elements of that class that say several lines on hovering, as the legend's don't.
std::size_t countClass(const boost::property_tree::ptree& tree, const std::string& name) {
    std::size_t count =
        tree.get("<xmlattr>.class", "") == name && tree.get("title", "").find('\n') != std::string::npos;
    for (const auto& child : tree) count += countClass(child.second, name);
    return count;
}

TEST_F(Compare, DrawsAnArrowAPairAndAHollowMarkARowWithoutAPartner) {
    const auto before = base({row(1, "<a>", kTimed), row(2, "b", kTimed), row(3, "gone", kTimed)});
    const auto draw = [&](int factor) {
        const auto after = file("new.json", resultText({row(1, "<a>", kTwiceAsFast), row(2, "b", kTimed),
                                                        row(4, "came", kTimed), row(5, "void", kUntimed)},
                                                       "cpu", factor));
        return run({"compare", before, after, "--svg", "-", "--threshold", "90"}).out;
    };
    const auto svg = draw(1);
    boost::property_tree::ptree tree;
    std::istringstream stream(svg);
    ASSERT_NO_THROW(boost::property_tree::read_xml(stream, tree));
    EXPECT_EQ(countClass(tree, "arrow"), 2u);
    EXPECT_EQ(countClass(tree, "mark hollow"), 2u);
    EXPECT_THAT(
        svg,
        HasSubstr("2 drawn, 0 without a point on one side or both; 1 base only: 1 drawn, 0 without a point; "
                  "2 new only: 1 drawn, 1 without a point"));
    EXPECT_THAT(svg, Not(HasSubstr("new: m")));
    EXPECT_THAT(draw(3), HasSubstr("new: m3"));
}

// A terminal whose user interrupts as soon as a bar is drawn.
struct ImpatientTerminal : std::stringbuf {
    std::streamsize xsputn(const char* text, std::streamsize size) override {
        const std::string_view written(text, static_cast<std::size_t>(size));
        if (written.find('[') != std::string_view::npos && !std::exchange(hasRaised, true))
            std::raise(SIGINT);
        return size;
    }
    bool hasRaised = false;  // a second interrupt would end the program
};

TEST_F(Compare, AnInterruptLeavesNothingBehind) {
    ImpatientTerminal terminal;
    std::ostream err(&terminal);
    std::ostringstream out;
    Console console{out, err, false, true, nullptr};
    const auto svg = path("x.svg");
    const char* const argv[] = {"roofline", "compare", kGcc.c_str(), kClang.c_str(), "--svg", svg.c_str()};
    EXPECT_EQ(runRoofline(6, argv, console), kCancelled);
    EXPECT_EQ(out.str(), "");
    EXPECT_TRUE(std::filesystem::is_empty(m_folder));
}

}  // namespace
}  // namespace cli
