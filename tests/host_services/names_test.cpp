// Names of fields, memory levels and roofs, and the text of a roof configuration.
#include "embedded_host/services/fields.h"
#include "embedded_host/services/roof_captions.h"
#include "embedded_host/services/roof_configuration.h"

#include <gtest/gtest.h>

#include <limits>
#include <map>
#include <set>

namespace embedded_host {
namespace {

using namespace data_models2;
using Strategy = RoofThreadingFeatures::Strategy;
using Perspective = IRooflineInfo::Perspective;

TEST(Fields, AreFoundByNameAndNumber) {
    std::set<std::string> names;
    for (const auto& field : kFields) {
        EXPECT_EQ(findField(field.name), &field);
        EXPECT_EQ(findField(field.id), &field);
        names.insert(getFieldStringId(field.id));
    }
    EXPECT_EQ(names.size(), kFields.size());
    for (const auto* const name : {"", "selftime", "SelfTime ", "10"}) EXPECT_FALSE(findField(name)) << name;
    for (const int number : {0, 2, -1, 817, 100'000, std::numeric_limits<int>::min()}) {
        const auto id = static_cast<FieldId>(number);
        EXPECT_FALSE(findField(id)) << number;
        EXPECT_EQ(getFieldStringId(id), "field" + std::to_string(number));
    }
}

TEST(MemoryLevels, HaveTheNamesThatOptionsUse) {
    using roofline_helpers::getMemoryRooflineType;
    // By level number; a device's own levels answer alike for both targets.
    const std::vector<std::string> cpu{"", "L1", "L2", "L3", "L4", "PKGRAM", "DRAM", "LLC", ""};
    const std::vector<std::string> gpu{"", "L1gpu", "", "L3gpu", "", "", "DRAMgpu", "", ""};
    const std::vector<std::string> device{"SLMgpu", "XLIgpu", "HBMgpu", "GDDR6gpu", "LLCgpu", "EDRAMgpu", ""};
    for (std::size_t i = 0; i < cpu.size() + device.size(); ++i) {
        const auto level = static_cast<MemoryLevel>(i);
        const bool isShared = i < cpu.size();
        const auto& own = device[isShared ? 0 : i - cpu.size()];
        EXPECT_EQ(getMemoryRooflineType(level, TargetDeviceType::Cpu), isShared ? cpu[i] : own) << i;
        EXPECT_EQ(getMemoryRooflineType(level, TargetDeviceType::Gpu), isShared ? gpu[i] : own) << i;
    }
}

TEST(Roofs, OfTheTableAreConsistent) {
    std::set<std::pair<RoofOwner, std::string_view>> captions;
    auto last = RoofId::None;
    for (const auto& row : kRoofCaptions) {
        EXPECT_LT(last, row.id);
        last = row.id;
        EXPECT_TRUE(captions.emplace(row.owner, row.caption).second) << "an ambiguous caption";
        EXPECT_EQ(findRoofCaption(row.id), &row);
        EXPECT_EQ(row.isMemory, row.level != MemoryLevel::None);
        EXPECT_EQ(row.isMemory, row.caption.find("Bandwidth") != std::string_view::npos);
        EXPECT_EQ(row.extraTypeBits != 0, row.isMemory && row.caption.find("Scalar") == 0);
    }
    EXPECT_FALSE(findRoofCaption(static_cast<RoofId>(12)));
}

TEST(DataTypes, AreSearchedForTheWidestOfABaseName) {
    const std::tuple<const char*, unsigned, unsigned> rows[] = {
        {"float32, int64", 64, 32},     {"int8, <b>int16</b>, float64;float32", 16, 64},
        {"uint32 bfloat16", 32, 16},    {"intint16 int4", 16, 0},
        {"Int32, FLOAT64", 0, 0},  // a caller lower-cases
        {"int99999999999, int8", 8, 0}, {"int-8, float 32, 64", 0, 0},
    };
    for (const auto& [text, intWidth, floatWidth] : rows) {
        EXPECT_EQ(isa_helpers::getTypeMaxWidth(text, "int"), intWidth) << text;
        EXPECT_EQ(isa_helpers::getTypeMaxWidth(text, "float"), floatWidth) << text;
    }
}

TEST(RoofConfigurations, AreReadBackAsTheyWereWritten) {
    std::set<std::string> texts;
    for (const int threads : {0, 1, 16, -1, std::numeric_limits<int>::max()})
        for (int i = 0; i < 48; ++i) {
            const RoofConfiguration written{
                {threads, i % 2 ? Strategy::SingleThread : Strategy::MultiThread, i / 24},
                static_cast<OperationsType>(i / 2 % 4),
                static_cast<Perspective>(i / 8 % 3 + 1)};
            const auto text =
                roof::getCpuRoofConfiguration(written.features, written.operations, written.perspective);
            EXPECT_EQ(parseCpuRoofConfiguration(text), written) << text;
            EXPECT_TRUE(texts.insert(text).second) << "two configurations have one text";
        }
}

TEST(RoofConfigurations, ThatNobodyWroteAreRefused) {
    const auto good = roof::getCpuRoofConfiguration(8, 2, Strategy::SingleThread, OperationsType::Float,
                                                    Perspective::Program);
    ASSERT_TRUE(parseCpuRoofConfiguration(good));
    for (std::size_t i = 0; i < good.size(); ++i) {
        EXPECT_FALSE(parseCpuRoofConfiguration(good.substr(0, i))) << i;
        EXPECT_FALSE(parseCpuRoofConfiguration(good.substr(0, i) + ' ' + good.substr(i))) << i;
        EXPECT_FALSE(parseCpuRoofConfiguration(good.substr(0, i) + good.substr(i + 1))) << i;
    }
    EXPECT_FALSE(parseCpuRoofConfiguration(good + "0"));
    const std::pair<std::string, const char*> replaced[] = {
        {"threads=8", "threads=08"},      {"threads=8", "threads=99999999999"},
        {"threads=8", "threads="},        {"strategy=1", "strategy=2"},
        {"operations=0", "operations=4"}, {"perspective=3", "perspective=0"}};
    for (const auto& [from, to] : replaced) {
        auto text = good;
        EXPECT_FALSE(parseCpuRoofConfiguration(text.replace(text.find(from), from.size(), to))) << text;
    }
}

TEST(RoofConfigurations, OfADeviceAreReadBackAndNoOthers) {
    for (const auto usage : {TileUsage::Single, TileUsage::Multi})
        for (int type = 0; type < 4; ++type) {
            const GpuRoofConfiguration written{usage, static_cast<OperationsType>(type)};
            const auto text = roof::getGpuRoofConfiguration(usage, written.operations);
            EXPECT_EQ(parseGpuRoofConfiguration(text), written) << text;
            EXPECT_FALSE(parseCpuRoofConfiguration(text)) << text;
        }
    for (const char* const text : {"", "tiles=0;operations=0", "tiles=3;operations=0", "tiles=1;operations=4",
                                   "tiles=1;operations=0 ", "operations=0;tiles=1"})
        EXPECT_FALSE(parseGpuRoofConfiguration(text)) << text;
}

// What the options, the roofs and the texts make of one number must fit together.
TEST(DeviceMemory, NamesALevelWithARoof) {
    const std::tuple<MemoryLevel, const char*, RoofId, bool> rows[] = {
        {MemoryLevel::Dram, "DRAMgpu", RoofId::DeviceDramBandwidth, false},
        {MemoryLevel::Hbm, "HBMgpu", RoofId::DeviceHbmBandwidth, true},
        {MemoryLevel::Xli, "XLIgpu", RoofId::XliBandwidth, false},
        {MemoryLevel::Gddr6, "GDDR6gpu", RoofId::XliBandwidth, false},  // a level without a roof of its own
        {MemoryLevel::None, "XLIgpu", RoofId::XliBandwidth, false},
        {MemoryLevel::L2, "XLIgpu", RoofId::XliBandwidth, false},  // devices have none
    };
    for (const auto& [level, name, roof, isNew] : rows) {
        const auto number = static_cast<unsigned long long>(level);
        EXPECT_EQ(roofline_helpers::getGpuMemoryRooflineType(number), name);
        EXPECT_EQ(roofline_helpers::getGpuLastMemLevelRoofId(name), roof) << name;
        EXPECT_EQ(gpu_helpers::useNewGpuTerminology(number), isNew) << name;
    }
    EXPECT_EQ(roofline_helpers::getGpuMemoryRooflineType(~0ULL), "XLIgpu");
    for (const auto* const name : {"", "DRAM"})
        EXPECT_EQ(roofline_helpers::getGpuLastMemLevelRoofId(name), RoofId::XliBandwidth) << name;
}

TEST(InstructionClasses, AreGroupedWithNoneLeftOut) {
    std::map<std::string, std::string> groups;
    for (int number = -1; number <= static_cast<int>(GpuInstruction::Bit) + 1; ++number)
        groups[gpu_roofline_helpers::getInstructionType(number)] += std::to_string(number) + ' ';
    EXPECT_EQ(groups, (std::map<std::string, std::string>{{"atomic", "11 13 "},
                                                          {"compute", "2 3 4 5 6 12 16 17 "},
                                                          {"memory", "7 8 9 10 "},
                                                          {"other", "-1 0 1 14 15 18 "}}));
}

}  // namespace
}  // namespace embedded_host
