// Names, captions and tokens of roofs, levels and types of operations.
#include "roofline_model/roof_names.h"

#include "tests/roofline_model/test_host.h"

#include <gtest/gtest.h>

namespace data_models2::roofline {
namespace {

using enum OperationsType;

TEST(RoofNames, AreThoseOfTheirIdsAndComparedWithoutCaseBlanksAndTheThreadMark) {
    std::string names;
    for (int id = -1; id < 28; ++id)
        names += " " + std::to_string(id) + helpers::getRoofNameById(static_cast<RoofId>(id));
    EXPECT_EQ(names,
              " -1 0 1l1bandwidth 2l2bandwidth 3l3bandwidth 4l4bandwidth 5pkgrambandwidth 6drambandwidth"
              " 7spvectorfmapeak 8dpvectorfmapeak 9scalaraddpeak 10spvectoraddpeak 11dpvectoraddpeak 12"
              " 13integerscalaraddpeak 14int8vectoraddpeak 15int16vectoraddpeak 16int32vectoraddpeak"
              " 17int64vectoraddpeak 18scalarl1bandwidth 19scalarl2bandwidth 20scalarl3bandwidth"
              " 21scalarl4bandwidth 22slmbandwidth 23xlibandwidth 24 25 26 27");
    EXPECT_EQ(helpers::getRoofShortName("\tDRAM\n(Single-Threaded) Band\vwidth "), "drambandwidth");
    EXPECT_EQ(helpers::getRoofShortName("\xC3\x84 \xFF (single node)"), "\xC3\x84\xFF(singlenode)");
}

TEST(RoofNames, OfLevelsAreCaptionsByTokenAndAnUnknownTokenIsALookUpError) {
    std::string captions;
    for (const char* level :
         {"L1", "L2", "L3", "L4", "DRAM", "CARMgpu", "L3gpu", "XLIgpu", "SLMgpu", "DRAMgpu", "HBMgpu"})
        captions += " " + helpers::getMemLevelPrefixName(level);
    EXPECT_EQ(captions, " L1 L2 L3 L4 DRAM CARM L3 XLI SLM DRAM HBM");
    EXPECT_THROW(helpers::getMemLevelPrefixName("PKGRAM"), std::out_of_range);
    EXPECT_EQ(helpers::getMemLevelCaption("PKGRAM"), "PKGRAM");
}

TEST(OperationsTokens, AreFoundAmongTheTokensOfAConfiguration) {
    const std::pair<const char*, OperationsType> cases[]{
        {"1-i", Int}, {"b", Mixed}, {"f-i", Mixed}, {"f-f", Float}, {"all-1-L1", Undefined}, {"-f-", Float}};
    for (const auto& [configuration, expected] : cases)
        EXPECT_EQ(getRooflineOperationType(configuration), expected) << configuration;
    const std::vector<std::string> mixed{"b-1-DRAM", "1-b", "ball-f", ""};
    EXPECT_EQ(boost::join(transformRooflineTypes(mixed, Float), " "), "f-1-DRAM 1-f ball-f ");
    EXPECT_EQ(boost::join(transformRooflineTypes(mixed, Mixed), " "), "i-1-DRAM 1-i ball-f ");
}

TEST(ArithmeticTypes, FoldABaseTypeAndAWidth) {
    std::string table;
    for (unsigned base = 0; base < 6; ++base)
        for (const unsigned bits : {0u, 8u, 16u, 24u, 32u, 64u, 128u})
            table += fmt::format("{}{}", bits ? "" : "\n",
                                 static_cast<int>(getArithTypeExtDef(static_cast<ArithTypeDef>(base), bits)));
    EXPECT_EQ(table, "\n0000000\n0000000\n0670890\n0120340\n0120340\n0000000");
}

}  // namespace
}  // namespace data_models2::roofline
