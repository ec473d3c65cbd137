// The details of chosen loops and of pairs of rows, and what dominates a row.
#include "host_interfaces/comparison.h"

#include "roofline_model/factories.h"
#include "roofline_model/threading.h"
#include "roofline_model/translation.h"

#include "tests/embedded_host/result_text.h"
#include "tests/roofline_model/test_host.h"

#include <boost/property_tree/ptree.hpp>
#include <gtest/gtest.h>

namespace data_models2::test {
namespace {

using embedded_host::test::viewOf;

const char* const kRows = R"(
    {"id": 1, "source": 77, "cells": {"FunctionName": "stream", "SelfElapsedTime": 4, "SelfFloatOps": 4,
        "SelfIntOps": 0, "SelfL1Load": 16, "SelfL1Store": 0, "SelfDramLoad": 12, "SelfDramStore": 4}},
    {"id": 2, "kind": "function", "children": [{"id": 3, "cells": {"FunctionName": "count",
        "SelfElapsedTime": 1, "SelfFloatOps": 0, "SelfIntOps": 60, "SelfL1Load": 8, "SelfL1Store": 2,
        "SelfDramLoad": 2, "SelfDramStore": 0}}]},
    {"id": 4, "source": 77, "cells": {"FunctionName": "outer", "SelfElapsedTime": 4, "SelfFloatOps": 4,
        "SelfL1Load": 16}},
    {"id": 5, "cells": {"FunctionName": "idle", "SelfElapsedTime": 1}})";

constexpr const char* kBoth = R"("L1", "DRAM")";

// Three threads of 16 cores on two packages; L1 100, DRAM 10 GB/s and 80 giga operations per second.
std::shared_ptr<ISurveyingViewModel> makeView(const char* levels = kBoth) {
    return viewOf(kRows,
                  R"(, "levels": [)" + std::string(levels) + R"(], "program": {"name": "p", "usedThreads": 3},
        "machine": {"format": "roofline-machine", "version": 1, "name": "m",
            "cores": {"physical": 16}, "packages": 2, "roofs": [
            {"id": 1, "value": 100, "unit": "GB/s", "threads": 4},
            {"id": 6, "value": 10, "unit": "GB/s", "threads": 4},
            {"id": 9, "value": 80, "unit": "GOP/s", "threads": 4},
            {"id": 13, "value": 80, "unit": "GOP/s", "threads": 4}]})");
}

std::string infoOf(const std::string& request, const std::string& configuration = "f-1",
                   const char* levels = kBoth) {
    return createRooflineInfo(makeView(levels))->getLoopAdditionalInfo(request, nullptr, configuration);
}

TEST(LoopDetails, OfTheRowsThatTheRequestNames) {
    const std::pair<std::string, const char*> requests[]{
        {R"({"item": ["3", 1, 1, "9", "x", "", null, true, -1]})", "1 3 "},
        {R"({"item": [["1"], {"item": [[3], []]}]})", "1 3 "},
        {R"({"item": 3})", "3 "},
    };
    for (const auto& [request, expected] : requests) {
        std::string ids;
        const auto answer = parse(infoOf(request));
        ASSERT_TRUE(answer.IsArray()) << request;
        for (const auto& loop : answer.GetArray()) {
            ids += std::string(loop["id"].GetString()) + " ";
            EXPECT_EQ(boost::join(membersOf(loop), " "), "id roofline bottleneck memoryMetrics threads");
        }
        EXPECT_EQ(ids, expected) << request;
    }
    for (const std::string request : {"", "{", "[1]", "null", R"({"item": ["1"]} x)"})
        EXPECT_EQ(infoOf(request), "") << request;
    EXPECT_EQ(infoOf(R"({"item": )" + std::string(100'000, '[')), "");
    EXPECT_EQ(createRooflineInfo(nullptr)->getLoopAdditionalInfo("{}", nullptr, "f-1"), "");
}

// Each by an engine that was asked nothing before.
TEST(LoopDetails, SayWhatLimitsTheLoop) {
    using roofline::translate;
    const auto wrong = [](const char* caption) {
        return translate("roofline_bottleneck_wrong_configuration_general") + "\n" +
               translate("roofline_bottleneck_wrong_configuration_details",
                         translate("roofline_options_operations_caption"), std::string(caption));
    };
    const auto memory =
        translate("roofline_bottleneck_bound_by_memory", std::string("DRAM Bandwidth"), std::string("DRAM"));
    const auto compute =
        translate("roofline_bottleneck_bound_by_compute", std::string("Integer Scalar Add Peak"), 75);
    const std::tuple<const char*, const char*, const char*, std::string> rows[]{
        {"1", "f-1", kBoth, memory},
        {"1", "i-1", kBoth, wrong("Float")},
        {"3", "f-1", kBoth, wrong("Integer")},
        {"3", "i-1", kBoth, compute},
        {"3", "i-1", R"("L1")", memory},
        {"5", "f-1", kBoth, translate("roofline_bottleneck_general_error")},
    };
    for (const auto& [id, configuration, levels, expected] : rows) {
        SCOPED_TRACE(fmt::format("{} {} {}", id, configuration, levels));
        const auto answer = parse(infoOf(fmt::format(R"({{"item": ["{}"]}})", id), configuration, levels));
        ASSERT_EQ(answer.Size(), 1u);
        std::vector<std::string> messages;
        for (const auto& message : answer[0]["bottleneck"]["messages"].GetArray())
            messages.push_back(message.GetString());
        EXPECT_EQ(boost::join(messages, "\n"), expected);
    }
}

TEST(LoopDetails, OfARowThatIsNotInnermostNeedTotalData) {
    const auto view = makeViewModel(makeDataset("a NestingLevel=1u SelfGFlops=1 SelfFloatAi=1"));
    view->roofs = std::make_shared<RoofTable>();
    const auto text = createRooflineInfo(view)->getLoopAdditionalInfo(R"({"item": 1})", nullptr, "f-1");
    EXPECT_EQ(textOf(parse(text)[0]["bottleneck"]["messages"][0]),
              roofline::translate("roofline_bottleneck_no_stacks_error"));
}

TEST(RoofParams, AreReadOfTheRequest) {
    constexpr ThreadsInfo kMachine{16, 2, 6};
    const std::tuple<const char*, const char*, ThreadsInfo> requests[]{
        {"{}", "6 0 1", kMachine},
        {R"({"threadCount": 0})", "1 0 1", kMachine},
        {R"({"threadCount": 9})", "9 0 2", kMachine},
        {R"({"threadCount": 12, "packageCount": 1})", "12 0 2", kMachine},
        {R"({"threadCount": 4294967295})", "2147483647 0 2", kMachine},
        {R"({"threadCount": 4294967296})", "6 0 1", kMachine},
        {R"({"packageCount": 4294967295})", "6 0 2147483647", kMachine},
        {R"({"useSTRoofsStrategy": 7})", "6 1 1", kMachine},
        {R"({"useSTRoofsStrategy": true})", "6 0 1", kMachine},
        {"{}", "20 0 2", {16, 2, 20}},
        {"{}", "4 0 3", {5, 3, 4}},  // one core a package
        {R"({"threadCount": 4})", "4 0 1", {16, 0, 6}},
        {R"({"threadCount": 1})", "1 0 2", {0, 2, 6}},
    };
    for (const auto& [request, expected, info] : requests) {
        variant_bag_t bag;
        ASSERT_TRUE(loadBag(request, bag));
        RoofThreadingFeatures features{-1, RoofThreadingFeatures::Strategy::SingleThread, -1};
        roofline::parseRoofParams(bag, info, features);
        EXPECT_EQ(fmt::format("{} {} {}", features.threadCount, static_cast<int>(features.strategy),
                              features.packageCount),
                  expected)
            << request;
    }
}

TEST(ComparisonData, OfAResultWithItselfHasTwoEqualSides) {
    const auto view = makeView();
    const auto engine = createRooflineInfo(view);
    const ComparisonData data{view, view, DataType::Cpu, {}};
    const auto both = parse(engine->getComparisonData(data, R"({"first": "77", "second": 77})", "f-1"));
    EXPECT_EQ(boost::join(membersOf(both), " "), "conf first second");
    const auto loop = parse(engine->getLoopAdditionalInfo(R"({"item": ["1"]})", nullptr, "f-1"));
    EXPECT_EQ(textOf(both["first"]), textOf(loop[0])) << "the first row of the source object";
    EXPECT_EQ(textOf(both["first"]), textOf(both["second"]));

    const auto none = parse(engine->getComparisonData({}, R"({"first": "77"})", "f-1"));
    const auto one = parse(engine->getComparisonData(data, R"({"first": "77", "second": "1"})", "f-1"));
    EXPECT_EQ(textOf(one["first"]), textOf(loop[0]));
    EXPECT_EQ(textOf(one["second"]), textOf(none["second"])) << "an id of a row is no id of a source object";
    for (const auto* ids : {"", "77", "[77]"}) EXPECT_EQ(engine->getComparisonData(data, ids, "f-1"), "");
}

TEST(DominatingTypes, OfARow) {
    // Cells, instruction mix, and the types of operations, floats and integers.
    const std::tuple<const char*, const char*, const char*> rules[]{
        {"", R"("74": 1, "63": 1, "64": 1)", "0 2 7"},
        {"", R"("74": 2, "63": 1, "64": 1, "65": 1)", "1 2 7"},
        {"", R"("74": 5, "65": 10)", "0 2 7"},
        {R"("MainDataType": 32)", "", "0 1 7"},
        {R"("MainDataType": 3)", "", "0 2 7"},
        {R"("DataTypes": "<b>Float64</b>; Float32; INT8; Int4")", "", "0 1 1"},
        {R"("DataTypes": "Int256; Float16")", "", "0 2 6"},
        {R"("DataTypes": "Int4")", "", "0 2 0"},
        {R"("MainDataType": 4, "DataTypes": "Float64; Int64")", "", "0 1 3"},
        {R"("MainDataType": 16, "DataTypes": "Float64; Int64")", R"("74": 1)", "1 0 4"},
    };
    const auto typesOf = [](IRooflineInfo& engine, const sptr_t<RowNode>& row) {
        return fmt::format("{} {} {}", engine.getDominatingOperationType(row),
                           engine.getDominatingFloatType(row), engine.getDominatingIntType(row));
    };
    for (const auto& [cells, mix, types] : rules) {
        const auto view = viewOf(fmt::format(
            R"({{"id": 1, "cells": {{{}}}, "mix": {{{}}}, "children": [{{"id": 2}}]}})", cells, mix));
        const auto engine = createRooflineInfo(view);
        EXPECT_EQ(typesOf(*engine, *view->getDataset(DataType::Cpu)->getRows(0)), types) << cells << mix;
        EXPECT_EQ(typesOf(*engine, *view->getDataset(DataType::CpuTopDown)->getRows(0)), "0 2 7")
            << "foreign";
    }
}

}  // namespace
}  // namespace data_models2::test
