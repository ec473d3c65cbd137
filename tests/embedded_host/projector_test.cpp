// The projector against bounds worked out by hand: G operations and GB over the target's round figures.
#include "embedded_host/result/projector.h"

#include "embedded_host/result/json_reader.h"

#include "tests/embedded_host/result_text.h"

#include <boost/property_tree/ptree.hpp>
#include <gtest/gtest.h>

namespace embedded_host::test {
namespace {
using namespace data_models2;

const std::string kMachine = OMBRIX_SOURCE_DIR "/examples/quick/machine.json";  // any: it is only named

// A second takes 1000 GFLOP of 64 bits, 2000 of 32, 500 GINTOP of 64 bits; 400 GB of L1, 100 of L3, 50 of
// HBM. What is lower, of matrix units, or of no level in question must not count.
Projection projectionOf(const std::string& rows, bool fillLevels = false, const std::string& taxes = "") {
    const std::string roofs = R"(
        {"id": 11, "value": 500, "unit": "GFLOP/s"}, {"id": 8, "value": 1000, "unit": "GFLOP/s"},
        {"id": 7, "value": 2000, "unit": "GFLOP/s"}, {"id": 17, "value": 500, "unit": "GINTOP/s"},
        {"id": 99, "name": "M", "value": 9000, "unit": "GFLOP/s", "arith": "float64", "opKind": "matrix"},
        {"id": 1, "value": 400, "unit": "GB/s"}, {"id": 3, "value": 100, "unit": "GB/s"},
        {"id": 25, "value": 50, "unit": "GB/s"}, {"id": 24, "value": 1, "unit": "GB/s"})";
    const JsonFile machine("t.json",
                           machineText(roofs, R"(, "device": {"name": "T", "memory": "HBM"})" + taxes));
    const auto host = readResult(JsonFile("h.json", resultText(rows)));
    return project(host, readMachine(machine, machine.root()), kMachine, fillLevels);
}

struct ProjectedCase {
    const char* what;
    std::string cells;
    std::string expected;  // seconds and bound, or the cause
    bool fillLevels = false;
    std::string taxes = {};
};

TEST(Projector, TakesTheLongestBoundPlusTaxes) {
    const std::string tax = R"(, "taxes": {"launch": 0.25, "transfer": 2})";
    const ProjectedCase cases[] = {
        {"64 bits", R"("SelfFloatOps": 2000, "SelfMemL1": 400)", "2 Compute"},
        {"32 bits", R"("SelfFloatOps": 2000, "SelfMemL1": 4, "DataTypes": "<b>float32</b>, int64")",
         "1 Compute"},
        {"integers beside floats", R"("SelfFloatOps": 1000, "SelfIntOps": 1000, "SelfMemL1": 4)",
         "2 Compute"},
        {"first cache", R"("SelfFloatOps": 1000, "SelfMemL1": 800, "SelfMemDram": 50)", "2 L1_BW"},
        {"shared cache", R"("SelfFloatOps": 1, "SelfMemL1": 400, "SelfMemL3": 300)", "3 L3_BW"},
        {"memory", R"("SelfFloatOps": 1, "SelfMemL1": 4, "SelfMemL3": 300, "SelfMemDram": 200)", "4 HBM_BW"},
        {"loads and stores", R"("SelfFloatOps": 1, "SelfDramLoad": 50, "SelfDramStore": 25)", "1.5 HBM_BW"},
        {"a level that wasn't counted", R"("SelfFloatOps": 1, "SelfMemL1": 400)", "1 L1_BW"},
        {"the same filled", R"("SelfFloatOps": 1, "SelfMemL1": 400)", "8 HBM_BW", true},
        {"a counted 0 stays", R"("SelfFloatOps": 1, "SelfMemL1": 400, "SelfMemL3": 0)", "1 L1_BW", true},
        {"a tax on one call", R"("SelfFloatOps": 4000, "SelfMemL1": 4)", "6.25 Compute", false, tax},
        {"a tax on each call", R"("SelfFloatOps": 4000, "SelfMemL1": 4, "CallCount": 4)", "13 Transfer_Tax",
         false, tax},
        {"no peak: traffic alone", R"("SelfIntOps": 9e9, "SelfMemL1": 400, "DataTypes": "int32")", "1 L1_BW"},
        {"no roof at all", R"("SelfIntOps": 9, "SelfMemL2": 4, "DataTypes": "int32")",
         "the target has neither a peak nor a bandwidth for it"},
        {"operations unknown", R"("SelfMemL1": 400)", "its operations aren't known"},
        {"no operations", R"("SelfFloatOps": 0, "SelfMemL1": 400)", "it has no operations"},
        {"traffic unknown", R"("SelfFloatOps": 4, "SelfMemL4": 3)", "its traffic isn't known"},
        {"no traffic", R"("SelfFloatOps": 4, "SelfMemL1": 0, "SelfMemDram": 0)", "it has no traffic"},
        {"beyond a double", R"("SelfFloatOps": 1, "SelfMemL1": 1e305)", "its figures are too large"},
    };
    for (const auto& [what, cells, expected, fillLevels, taxes] : cases) {
        const auto projection =
            projectionOf(R"({"id": 5, "cells": {"FunctionName": "f", )" + cells + "}}", fillLevels, taxes);
        const auto view = parseResult(projection.result, "o.json")->projection();
        const auto regions = view->getDataset(DataType::Offload);
        const auto rows = listOf(regions->getRows(0));
        if (rows.empty()) {
            ASSERT_EQ(projection.left.size(), 1U) << what;
            EXPECT_EQ(projection.left[0].cause, expected) << what;
            continue;
        }
        EXPECT_TRUE(projection.left.empty()) << what;
        const auto bound = issue_helpers::getRowIssues(rows[0]).get_child("bounded_by").back().second;
        EXPECT_EQ(cell(regions, rows[0], FieldId::OffloadElapsedTime) + " " + toText(bound.data()), expected)
            << what;
    }
}

TEST(Projector, KeepsIdsAndSaysWhatItLeavesOut) {
    const auto projection = projectionOf(R"(
        {"id": 8, "cells": {"FunctionName": "main"}, "children": [
            {"id": 3, "cells": {"FunctionName": "f", "SourceLocation": "a.cpp:7", "SourceLine": 7,
             "SelfElapsedTime": 60, "SelfFloatOps": 100, "SelfIntOps": 1, "DataTypes": "float32, int32",
             "SelfMemL1": 4, "SelfMemL2": 2, "SelfMemDram": 1, "CallCount": 2}},
            {"id": 2, "cells": {"FunctionName": "copy", "SelfFloatOps": 0, "SelfMemL1": 1}}]})");
    std::string left;
    for (const auto& row : projection.left) left += fmt::format("{} {}: {}\n", row.id, row.name, row.cause);
    EXPECT_EQ(projection.gapCount, 1U) << "no traffic of L3";
    EXPECT_EQ(left, "8 main: its operations aren't known\n2 copy: it has no operations\n");
    EXPECT_EQ(fmt::format("{}", fmt::join(projection.warnings, "\n")),
              "no peak of int32 on the target: such operations take no time\n"
              "no roof for L2_BW on the target: that traffic takes no time");
    const auto result = parseResult(projection.result, "o.json");
    EXPECT_EQ(result->targetName(), "T");
    EXPECT_TRUE(result->isProjected());
    EXPECT_EQ(result->projection()->getTargetMemoryName(), "HBM");
    const auto regions = result->projection()->getDataset(DataType::Offload);
    const auto row = *regions->getRows(0);
    EXPECT_EQ(row->getId(), 3U);
    std::string given;
    for (const auto field :
         {FieldId::FunctionName, FieldId::SourceLine, FieldId::TotalElapsedTime, FieldId::OffloadFloat32Ops,
          FieldId::OffloadInt32Ops, FieldId::CallCount, FieldId::OffloadSourceLocation,
          FieldId::OffloadL1Bytes, FieldId::OffloadL2Bytes, FieldId::OffloadHbmBytes})
        given += cell(regions, row, field) + " ";
    EXPECT_EQ(given, "f 7 60 100 1 2 a.cpp 4e+09 2e+09 1e+09 ");
}

}  // namespace
}  // namespace embedded_host::test
