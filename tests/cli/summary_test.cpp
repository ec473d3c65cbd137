// `roofline summary` and the selected roofs of a picture.
#include "cli/chart_document.h"
#include "tests/cli/program_run.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace cli {
namespace {

using testing::HasSubstr;

const std::string kExamples = OMBRIX_SOURCE_DIR "/examples/";

TEST(Summary, TellsHowMuchOfEachRoofIsReached) {
    const auto csv = test::run({"summary", kExamples + "quick/result.json", "--csv", "-"});
    EXPECT_EQ(csv.code, kDone) << csv.err;
    const auto table = test::run({"summary", kExamples + "quick/result.json"});
    EXPECT_THAT(table.out, HasSubstr("52.16 %  ##########..........  DRAM Bandwidth"));
    // 77.08 of 192 giga operations a second.
    EXPECT_THAT(csv.out, HasSubstr("\nCompute (GFLOP/s),77.0819672131147"));
    EXPECT_THAT(csv.out, HasSubstr(",0.401468579"));
    const auto one = test::run({"summary", kExamples + "two_compilers/gcc.json"});
    EXPECT_THAT(one.out,
                HasSubstr("DRAM                   N/A  GB/s         N/A  ....................  DRAM"));
}
TEST(SelectedRoofs, AreMarkedAndHiddenOnesLeftOut) {
    const std::string roofs = R"([{"name":"L1 Bandwidth","val":9,"isMem":true},
        {"name":"Scalar L1 Bandwidth","val":5,"isMem":true},{"name":"Scalar Add Peak","val":3},
        {"name":"DP Vector Add Peak","val":4}])";
    const auto print = [&](const std::string& selected) {
        std::string names;
        for (const auto& roof : chooseRoofs(parseRoofs(roofs), selected))
            names += roof.name + (roof.isSelected ? "! " : " ");
        return names;
    };
    EXPECT_EQ(print(""), "L1 Bandwidth! Scalar L1 Bandwidth Scalar Add Peak DP Vector Add Peak! ");
    EXPECT_EQ(print(R"({"roofsState":{"l1bandwidth":{"selected":false,"hidden":false},
                       "scalarl1bandwidth":{"selected":true,"hidden":true},
                       "scalaraddpeak":{"selected":true,"hidden":false}}})"),
              "L1 Bandwidth Scalar Add Peak! DP Vector Add Peak ");
}

}  // namespace
}  // namespace cli
