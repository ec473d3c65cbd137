// The CPU strategy's rules: which roofs fit a row, which thread set-up it asks for, which rows are innermost.
#include "roofline_model/cpu_row_roofline_helper.h"

#include "tests/roofline_model/row_test_host.h"
#include "tests/roofline_model/test_host.h"

#include <climits>
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>
#include <optional>

namespace data_models2 {
namespace {

using namespace row_test;
using Field = FieldId;
using Perspective = IRooflineInfo::Perspective;

std::shared_ptr<test::RoofTable> computeRoofs() {
    const auto table = std::make_shared<test::RoofTable>();
    for (int id = 7; id <= 17; ++id)
        table->roofs.push_back(makeRoof(RoofId(id), "roof", 1, MemoryLevel::None));
    return table;
}

struct Found {
    std::string compute, memory;  // ids in the table's order
    std::string asked;
    int threads;
};

Found findRoofs(const Cells& cells, const InstructionMix& mix, const std::shared_ptr<test::RoofTable>& table,
                const RoofThreadingFeatures& features = {}) {
    const auto given = std::make_shared<RoofThreadingFeatures>(features);
    CpuRowRooflineHelper helper(table, mix, 4, given);
    const auto dataset = oneRow(cells);
    helper.init(*dataset->getRows(0), dataset);
    std::vector<RoofItem> memory, compute;
    helper.findRoofs(memory, compute);
    EXPECT_EQ(*given, features) << "the caller's record changed";
    Found found{{}, {}, table->asked.back(), helper.getRoofParam().threadCount};
    for (const auto& roof : compute) found.compute += fmt::format("{} ", static_cast<int>(roof.id));
    for (const auto& roof : memory) found.memory += fmt::format("{} ", static_cast<int>(roof.id));
    return found;
}

TEST(CpuRowHelper, ComputeRoofsByRule) {
    const std::string vectorized = " Vectorized=1u";
    const std::tuple<std::string, InstructionMix, const char*> rules[]{
        {"", {}, "9 13 "},
        {vectorized, {}, "11 17 "},
        {" Vectorized=1", {}, "9 13 "},  // no integer
        {"", {{11, 1}}, "11 17 "},
        {"", {{49, 1}}, "11 17 "},
        {"", {{11, 0}, {12, 1.0}, {49, -1}}, "9 13 "},
        {" Vectorized=0u", {{49, 1}}, "11 17 "},
        {vectorized, {{74, 1}}, "8 17 "},
        {vectorized, {{74, 1.0}}, "11 17 "},
        {vectorized + " VectorTraits=\"Gathers; FMA\"", {}, "8 17 "},
        {vectorized + " VectorTraits=\"fma\"", {}, "11 17 "},
        {vectorized, {{3, 1}}, "10 17 "},
        {vectorized, {{3, 5.0}}, "11 17 "},
        {vectorized + " MainDataType=8u", {}, "11 17 "},
        {vectorized + " DataTypes=\"<b>UInt8</b>\"", {}, "11 16 "},
        {vectorized + " DataTypes=\"Int64, int32\"", {}, "11 17 "},
        {vectorized + " DataTypes=\"Int32\" MainDataType=8u", {}, "11 17 "},
        {vectorized + " DataTypes=\"Int32\" MainDataType=8", {}, "11 16 "},
    };
    for (const auto& [cells, mix, roofs] : rules) {
        const auto found = findRoofs(test::tableOf("a" + cells).rows.front().cells, mix, computeRoofs());
        EXPECT_EQ(found.compute, roofs) << cells;
        const bool isScalar = std::string(roofs) == "9 13 ";
        const auto perspective = isScalar ? Perspective::NotVectorized : Perspective::Vectorized;
        EXPECT_EQ(found.asked, roof::getCpuRoofConfiguration({}, OperationsType::Mixed, perspective))
            << cells;
    }
}

TEST(CpuRowHelper, RoofsAreSortedOutByTypeAndMemoryRoofsByValue) {
    const auto table = std::make_shared<test::RoofTable>();
    const auto add = [&](RoofId id, std::uint64_t giga, std::uint64_t bits) {
        table->roofs.push_back(makeRoof(id, "roof", giga, MemoryLevel::None));
        table->roofs.back().typeBits = bits;
    };
    using enum RoofItem::Type;
    add(RoofId::IntScalarAddPeak, 5, Compute | OnlyNotVectorized);
    add(RoofId::L1Bandwidth, 90, Memory);
    add(RoofId::ScalarAddPeak, 4, Compute);
    add(RoofId::ScalarAddPeak, 3, SingleNode);  // of neither kind
    add(RoofId::L2Bandwidth, 20, Memory | Compute);
    add(RoofId::DramBandwidth, 20, Memory | SingleNode);
    add(RoofId::DpVectorAddPeak, 9, Compute);
    add(RoofId::L4Bandwidth, 0, Memory);
    const auto found = findRoofs({}, {}, table);
    EXPECT_EQ(found.compute, "13 9 ");
    EXPECT_EQ(found.memory, "4 2 6 1 ");
}

TEST(CpuRowHelper, ThreadCountsAreEvenAboveOne) {
    const variant_t cells[]{0U, 1U, 3U, 3.9, "3", -5.0, std::nan(""), -1, 1e300, UINT_MAX};
    const RoofThreadingFeatures features{7, RoofThreadingFeatures::Strategy::SingleThread, 2};
    std::string counts;
    for (const auto& cell : cells) {
        const auto found = findRoofs({{Field::ThreadCount, cell}}, {}, computeRoofs(), features);
        counts += fmt::format("{} ", found.threads);
        EXPECT_EQ(found.asked,
                  roof::getCpuRoofConfiguration(found.threads, 2, features.strategy, OperationsType::Mixed,
                                                Perspective::NotVectorized));
    }
    EXPECT_EQ(counts, "0 1 4 4 0 0 0 2147483646 2147483646 2147483646 ");
}

TEST(CpuRowHelper, InnermostRows) {
    // Type, nesting level and inner nesting; empty: no such cell.
    const std::tuple<std::optional<std::uint64_t>, variant_t, variant_t, bool> rules[]{
        {{}, {}, {}, true},     {{}, 0U, 1U, true},     {{}, 1U, 0U, false},
        {{}, 1.0, 0U, true},  // no integer: no level
        {{}, "1", {}, true},    {0x0, {}, 1U, true},    {0x8, 0U, 1U, true},
        {0x8, 1U, 0U, false},   {0x108, 2U, 0U, false}, {0x4, {}, {}, false},
        {0x4, {}, 0U, true},    {0x4, 0U, 0.0, false},  {0x4, 0U, "0", false},
        {0x4, 0U, 1U, false},   {0x4, 1U, 0U, true},    {0x4, 2U, 0U, false},
        {0xc, 2U, 0U, true},    {0xc, 2U, 1U, false},   {0xc, 3U, 0U, false},
        {0x104, 2U, 0U, false}, {~0ULL, 1U, 0U, true},
    };
    int number = 0;
    for (const auto& [type, level, inner, isInnermost] : rules) {
        SCOPED_TRACE(number++);
        Cells cells;
        if (!level.isEmpty()) cells[Field::NestingLevel] = level;
        if (!inner.isEmpty()) cells[Field::InnerNesting] = inner;
        CpuRowRooflineHelper helper(computeRoofs(), {}, 1, std::make_shared<RoofThreadingFeatures>());
        const auto dataset = oneRow(cells, DataType::Cpu, type);
        helper.init(*dataset->getRows(0), dataset);
        EXPECT_EQ(helper.isInnermost(), isInnermost);
        EXPECT_EQ(helper.isValid(false), isInnermost);
    }
}

TEST(CpuRowHelper, LevelsHaveTheirNumberAndTraffic) {
    constexpr auto kLast = std::numeric_limits<unsigned>::max();
    using Fields = std::array<int, 2>;  // load and store; 0: no traffic
    const std::tuple<MemoryLevel, unsigned, Fields, Fields> rules[]{
        {MemoryLevel::None, kLast, {}, {}},
        {MemoryLevel::L1, 1, {119, 120}, {121, 122}},
        {MemoryLevel::L2, 2, {123, 124}, {126, 127}},
        {MemoryLevel::L3, 3, {129, 130}, {132, 133}},
        {MemoryLevel::L4, 4, {135, 136}, {138, 139}},
        {MemoryLevel::PkgRam, 5, {}, {}},
        {MemoryLevel::Dram, 3, {141, 142}, {144, 145}},
        {MemoryLevel::LastCache, 2, {135, 136}, {138, 139}},
    };
    const auto mark = [](int field) { return static_cast<double>(field) * field; };
    Cells cells;
    for (const auto& field : kFields) cells[field.id] = mark(static_cast<int>(field.id));
    const auto dataset = oneRow(cells);
    const CpuRowRooflineHelper helper(computeRoofs(), {}, 3, std::make_shared<RoofThreadingFeatures>());
    for (const auto& [level, number, self, total] : rules) {
        SCOPED_TRACE(static_cast<int>(level));
        EXPECT_EQ(helper.getMemoryLevelNumber(level), number);
        for (const bool useTotal : {false, true}) {
            const auto getter = helper.getTrafficGetter(level, useTotal);
            const auto [load, store] = useTotal ? total : self;
            ASSERT_EQ(getter != nullptr, load != 0);
            if (!getter) continue;
            getter->init(dataset);
            EXPECT_EQ(getter->get(dataset, *dataset->getRows(0)).toDouble(), mark(load) + mark(store));
        }
    }
    EXPECT_TRUE(helper.areMemLevelMetricsCollected());
    const CpuRowRooflineHelper one(computeRoofs(), {}, 1, std::make_shared<RoofThreadingFeatures>());
    EXPECT_FALSE(one.areMemLevelMetricsCollected());
}

}  // namespace
}  // namespace data_models2
