// Names, captions and tokens of roofs, levels and types of operations.
#include "roofline_model/roof_names.h"

#include "tests/roofline_model/test_host.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace data_models2::roofline {
namespace {

using testing::ElementsAre;

TEST(RoofNames, AreThoseOfTheirIdsAndOfSomeIdsThereAreNone) {
    std::string names;
    for (int id = -1; id < 28; ++id)
        names += " " + std::to_string(id) + helpers::getRoofNameById(static_cast<RoofId>(id));
    EXPECT_EQ(names,
              " -1 0 1l1bandwidth 2l2bandwidth 3l3bandwidth 4l4bandwidth 5pkgrambandwidth 6drambandwidth"
              " 7spvectorfmapeak 8dpvectorfmapeak 9scalaraddpeak 10spvectoraddpeak 11dpvectoraddpeak 12"
              " 13integerscalaraddpeak 14int8vectoraddpeak 15int16vectoraddpeak 16int32vectoraddpeak"
              " 17int64vectoraddpeak 18scalarl1bandwidth 19scalarl2bandwidth 20scalarl3bandwidth"
              " 21scalarl4bandwidth 22slmbandwidth 23xlibandwidth 24 25 26 27");
}

TEST(RoofNames, AreComparedWithoutCaseBlanksAndTheThreadMark) {
    EXPECT_EQ(helpers::getRoofShortName("DRAM Bandwidth (single-threaded)"), "drambandwidth");
    EXPECT_EQ(helpers::getRoofShortName("\tDRAM\n(Single-Threaded) Band\vwidth "), "drambandwidth");
    EXPECT_EQ(helpers::getRoofShortName("DRAM Bandwidth (single node)"), "drambandwidth(singlenode)");
    EXPECT_EQ(helpers::getRoofShortName("\xC3\x84 \xFF"), "\xC3\x84\xFF");
}

TEST(RoofNames, HaveADescriptionByCaptionAndDevice) {
    using enum TargetDeviceType;
    EXPECT_NE(helpers::getRoofDescription("L1 Bandwidth", Cpu), "");
    EXPECT_NE(helpers::getRoofDescription("SLM Bandwidth", Gpu), "");
    EXPECT_EQ(helpers::getRoofDescription("L1 Bandwidth", Gpu), "");
    EXPECT_EQ(helpers::getRoofDescription("Bandwidth of nothing", Cpu), "");
}

TEST(RoofNames, OfLevelsAreCaptionsByTokenAndAnUnknownTokenIsALookUpError) {
    std::string captions;
    for (const char* level :
         {"L1", "L2", "L3", "L4", "DRAM", "CARMgpu", "L3gpu", "XLIgpu", "SLMgpu", "DRAMgpu", "HBMgpu"})
        captions += " " + helpers::getMemLevelPrefixName(level);
    EXPECT_EQ(captions, " L1 L2 L3 L4 DRAM CARM L3 XLI SLM DRAM HBM");
    EXPECT_THROW(helpers::getMemLevelPrefixName("PKGRAM"), std::out_of_range);
    EXPECT_EQ(helpers::getMemLevelCaption("PKGRAM"), "PKGRAM");
    EXPECT_EQ(getMemoryLevelCaption({"L1"}), "L1-");
    EXPECT_EQ(getMemoryLevelCaption({"L1", "DRAM"}), "L1-DRAM-");
    EXPECT_EQ(getMemoryLevelCaption({}), "");
}

TEST(RoofNames, MeasuresAndAxesFollowTheOperations) {
    using enum OperationsType;
    EXPECT_EQ(helpers::getRoofMeasureTranslated(true, Int), "GB/s");
    EXPECT_EQ(helpers::getRoofMeasureTranslated(false, Int), "GINTOP/s");
    EXPECT_EQ(helpers::getRoofMeasureTranslated(false, Float), "GFLOP/s");
    EXPECT_EQ(helpers::getRoofMeasureTranslated(false, Mixed), "GFLOP/s");
    std::string axes;
    for (const auto& field : kFields)
        if (const auto axis = helpers::getRoofAxesTranslated(field.id); !axis.caption.empty())
            axes += fmt::format("\n{}: {}, {}", field.name, axis.caption, axis.measure);
    EXPECT_EQ(axes, R"(
SelfFloatAi: Arithmetic Intensity, FLOP/byte
SelfGFlops: Performance, GFLOP/s
SelfGIntOps: Performance, GINTOP/s
SelfIntAi: Arithmetic Intensity, INTOP/byte
SelfGMixedOps: Performance, (GINTOP+GFLOP)/s
SelfMixedAi: Arithmetic Intensity, (INTOP+FLOP)/byte)");
}

TEST(OperationsTokens, AreFoundAmongTheTokensOfAConfiguration) {
    using enum OperationsType;
    const std::pair<const char*, OperationsType> cases[]{
        {"f-1-L1", Float}, {"1-i", Int},   {"b", Mixed},         {"f-i", Mixed},
        {"f-f", Float},    {"f-b", Mixed}, {"", Undefined},      {"all-1-L1", Undefined},
        {"fi", Undefined}, {"-f-", Float}, {"DRAMb", Undefined},
    };
    for (const auto& [configuration, expected] : cases)
        EXPECT_EQ(getRooflineOperationType(configuration), expected) << configuration;
    std::string tokens;
    for (const auto type : {Float, Int, Mixed, Undefined}) tokens += getRooflineTypeFromOpsType(type) + ",";
    EXPECT_EQ(tokens, "f,i,b,,");
    EXPECT_THAT(transformRooflineTypes({"b-1-DRAM", "ball-f", ""}, Float),
                ElementsAre("f-1-DRAM", "ball-f", ""));
    EXPECT_THAT(transformRooflineTypes({"1-b", "b"}, Int), ElementsAre("1-i", "i"));
    EXPECT_THAT(transformRooflineTypes({"b"}, Mixed), ElementsAre("i"));
}

TEST(ArithmeticTypes, FoldABaseTypeAndAWidth) {
    std::string table;
    for (unsigned base = 0; base < 6; ++base) {
        table += "\n";
        for (const unsigned bits : {0u, 8u, 16u, 24u, 32u, 64u, 128u})
            table +=
                std::to_string(static_cast<int>(getArithTypeExtDef(static_cast<ArithTypeDef>(base), bits)));
    }
    EXPECT_EQ(table, "\n0000000\n0000000\n0670890\n0120340\n0120340\n0000000");
}

TEST(Ids, AreDecimalAndEmptyWithoutARow) {
    const auto dataset = test::makeDataset("a\nb object=18446744073709551615");
    const auto row = test::rowsOf(dataset)[1];
    EXPECT_EQ(helpers::getLoopId(row), "2");
    EXPECT_EQ(getObjectId(row, dataset), "18446744073709551615");
    EXPECT_EQ(helpers::getLoopId(nullptr) + getObjectId(nullptr, dataset) + getObjectId(row, nullptr), "");
}

}  // namespace
}  // namespace data_models2::roofline
