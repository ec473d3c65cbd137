// The CPU strategy's rules: which roofs fit a row, which thread set-up it asks for, which rows are innermost.
#include "embedded_host/embedded_host.h"

#include "roofline_model/cpu_row_roofline_helper.h"

#include "tests/roofline_model/row_test_host.h"

#include <climits>
#include <gtest/gtest.h>

#include <array>
#include <limits>
#include <optional>

namespace data_models2 {
namespace {

using namespace row_test;
using Field = FieldId;
using Perspective = IRooflineInfo::Perspective;

// A roof table that gives the same roofs for every set-up and keeps what it was asked.
class Roofs final : public IRoofManager {
public:
    generic_iterator_t<RoofItem> getRoofs(const std::string& configuration) const override {
        asked = configuration;
        return makeIterator(roofs);
    }
    bool setCustomRoofValues(const std::map<RoofId, std::uint64_t>&, const std::string&) override {
        return false;
    }
    bool clearCustomRoofValues(const std::string&) override { return false; }

    std::vector<RoofItem> roofs;
    mutable std::string asked;
};

std::shared_ptr<Roofs> computeRoofs() {
    const auto table = std::make_shared<Roofs>();
    for (int id = 7; id <= 17; ++id)
        table->roofs.push_back(makeRoof(static_cast<RoofId>(id), "roof", 1, MemoryLevel::None));
    return table;
}

struct Found {
    std::string compute;  // ids in the table's order
    std::string memory;
    std::string asked;
    int threads = 0;
};

Found findRoofs(const Cells& cells, const InstructionMix& mix, const std::shared_ptr<Roofs>& table,
                const RoofThreadingFeatures& features = {}) {
    const auto given = std::make_shared<RoofThreadingFeatures>(features);
    CpuRowRooflineHelper helper(table, mix, 4, given);
    helper.init(new Row, new OneRow(cells, DataType::Cpu));
    std::vector<RoofItem> memory, compute;
    helper.findRoofs(memory, compute);
    EXPECT_EQ(*given, features) << "the caller's record changed";
    const auto ids = [](const std::vector<RoofItem>& roofs) {
        std::string text;
        for (const auto& roof : roofs) text += fmt::format("{} ", static_cast<int>(roof.id));
        return text;
    };
    return {ids(compute), ids(memory), table->asked, helper.getRoofParam().threadCount};
}

TEST(CpuRowHelper, ComputeRoofsByRule) {
    const Cells vectorized{{Field::Vectorized, 1U}};
    const auto with = [](Cells cells, Field field, const variant_t& value) {
        cells[field] = value;
        return cells;
    };
    struct Rule {
        const char* name;
        Cells cells;
        InstructionMix mix;
        const char* roofs;
    };
    const Rule rules[]{
        {"nothing known", {}, {}, "9 13 "},
        {"flag", vectorized, {}, "11 17 "},
        {"flag 0", {{Field::Vectorized, 0U}}, {}, "9 13 "},
        {"flag -1", {{Field::Vectorized, -1}}, {}, "11 17 "},
        {"flag no integer", {{Field::Vectorized, 1.0}}, {}, "9 13 "},
        {"flag a text", {{Field::Vectorized, "1"}}, {}, "9 13 "},
        {"mix 11", {}, {{11, 1}}, "11 17 "},
        {"mix 12", {}, {{12, 1}}, "11 17 "},
        {"mix 49", {}, {{49, 1}}, "11 17 "},
        {"mix 0", {}, {{11, 0}, {12, 0}, {49, 0}}, "9 13 "},
        {"mix below 0", {}, {{11, -1}}, "9 13 "},
        {"mix no integer", {}, {{11, 1.0}, {12, "1"}}, "9 13 "},
        {"mix of another class", {}, {{10, 1}, {74, 1}, {3, 1}}, "9 13 "},
        {"mix without its flag", {{Field::Vectorized, 0U}}, {{49, 1}}, "11 17 "},
        {"fma by mix", vectorized, {{74, 1}}, "8 17 "},
        {"fma 0", vectorized, {{74, 0}}, "11 17 "},
        {"fma no integer", vectorized, {{74, 1.0}}, "11 17 "},
        {"fma by traits", with(vectorized, Field::VectorTraits, "Gathers; FMA"), {}, "8 17 "},
        {"fma by part of a word", with(vectorized, Field::VectorTraits, "xFMAy"), {}, "8 17 "},
        {"fma in lower case", with(vectorized, Field::VectorTraits, "fma"), {}, "11 17 "},
        {"traits no text", with(vectorized, Field::VectorTraits, 7), {}, "11 17 "},
        {"fma of a scalar row", {{Field::VectorTraits, "FMA"}}, {}, "9 13 "},
        {"single", vectorized, {{3, 1}}, "10 17 "},
        {"single 0", vectorized, {{3, 0}}, "11 17 "},
        {"single no integer", vectorized, {{3, 5.0}}, "11 17 "},
        {"single fma", vectorized, {{3, 1}, {74, 1}}, "7 17 "},
        {"single fma by traits", with(vectorized, Field::VectorTraits, "FMA"), {{3, 1}}, "7 17 "},
        {"main type 8", with(vectorized, Field::MainDataType, 8U), {}, "11 17 "},
        {"main type 4", with(vectorized, Field::MainDataType, 4U), {}, "11 17 "},
        {"Int32", with(vectorized, Field::DataTypes, "Float64, Int32"), {}, "11 16 "},
        {"Int16", with(vectorized, Field::DataTypes, "Int16"), {}, "11 16 "},
        {"Int8", with(vectorized, Field::DataTypes, "<b>UInt8</b>"), {}, "11 16 "},
        {"Int64", with(vectorized, Field::DataTypes, "Int64"), {}, "11 17 "},
        {"int32", with(vectorized, Field::DataTypes, "int32"), {}, "11 17 "},
        {"main type 8 beside Int32",
         {{Field::Vectorized, 1U}, {Field::MainDataType, 8U}, {Field::DataTypes, "Int32"}},
         {},
         "11 17 "},
        {"main type no integer",
         {{Field::Vectorized, 1U}, {Field::MainDataType, 8.0}, {Field::DataTypes, "Int32"}},
         {},
         "11 16 "},
        {"Int32 of a scalar row", {{Field::DataTypes, "Int32"}}, {}, "9 13 "},
    };
    for (const auto& [name, cells, mix, roofs] : rules) {
        const auto found = findRoofs(cells, mix, computeRoofs());
        EXPECT_EQ(found.compute, roofs) << name;
        const bool isVectorized = std::string(roofs) != "9 13 ";
        EXPECT_EQ(found.asked, roof::getCpuRoofConfiguration(
                                   {}, OperationsType::Mixed,
                                   isVectorized ? Perspective::Vectorized : Perspective::NotVectorized))
            << name;
    }
}

TEST(CpuRowHelper, RoofsAreSortedOutByTypeAndMemoryRoofsByValue) {
    const auto table = std::make_shared<Roofs>();
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
    add(RoofId::L3Bandwidth, 20, Memory);
    add(RoofId::L4Bandwidth, 0, Memory);
    const auto found = findRoofs({}, {}, table);
    EXPECT_EQ(found.compute, "13 9 ");
    EXPECT_EQ(found.memory, "4 2 6 3 1 ");
}

TEST(CpuRowHelper, ThreadCountsAreEvenAboveOne) {
    const std::pair<variant_t, int> counts[]{
        {0U, 0},
        {1U, 1},
        {2U, 2},
        {3U, 4},
        {3.9, 4},
        {"3", 0},
        {-1, INT_MAX - 1},
        {std::numeric_limits<double>::quiet_NaN(), 0},
        {UINT_MAX, INT_MAX - 1},
        {1e300, INT_MAX - 1},
        {-5.0, 0},
    };
    const RoofThreadingFeatures features{7, RoofThreadingFeatures::Strategy::SingleThread, 2};
    for (const auto& [cell, threads] : counts) {
        const auto found = findRoofs({{Field::ThreadCount, cell}}, {}, computeRoofs(), features);
        EXPECT_EQ(found.threads, threads) << toText(cell);
        EXPECT_EQ(found.asked,
                  roof::getCpuRoofConfiguration(threads, 2, features.strategy, OperationsType::Mixed,
                                                Perspective::NotVectorized));
    }
    EXPECT_EQ(findRoofs({}, {}, computeRoofs(), features).threads, 0) << "no count";
}

TEST(CpuRowHelper, InnermostRows) {
    struct Rule {
        std::optional<std::uint64_t> type;
        variant_t level, inner;  // empty: no such cell
        bool isInnermost;
    };
    const Rule rules[]{
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
        helper.init(new Row(type ? new RowType(*type) : nullptr), new OneRow(cells, DataType::Cpu));
        EXPECT_EQ(helper.isInnermost(), isInnermost);
        EXPECT_EQ(helper.isValid(false), isInnermost);
        EXPECT_TRUE(helper.isValid(true));
    }
}

TEST(CpuRowHelper, LevelsHaveTheirNumberAndTraffic) {
    constexpr auto kLast = std::numeric_limits<unsigned>::max();
    struct Rule {
        MemoryLevel level;
        unsigned number;
        std::array<int, 2> self, total;  // fields; 0: no traffic
    };
    const Rule rules[]{
        {MemoryLevel::None, kLast, {}, {}},
        {MemoryLevel::L1, 1, {119, 120}, {121, 122}},
        {MemoryLevel::L2, 2, {123, 124}, {126, 127}},
        {MemoryLevel::L3, 3, {129, 130}, {132, 133}},
        {MemoryLevel::L4, 4, {135, 136}, {138, 139}},
        {MemoryLevel::PkgRam, 5, {}, {}},
        {MemoryLevel::Dram, 3, {141, 142}, {144, 145}},
        {MemoryLevel::LastCache, 2, {135, 136}, {138, 139}},
        {static_cast<MemoryLevel>(8), kLast, {}, {}},
        {MemoryLevel::Slm, kLast, {}, {}},
        {MemoryLevel::Edram, kLast, {}, {}},
    };
    const auto mark = [](int field) { return static_cast<double>(field) * field; };
    Cells cells;
    for (const auto& field : kFields) cells[field.id] = mark(static_cast<int>(field.id));
    const sptr_t<IDataset> dataset(new OneRow(cells, DataType::Cpu));
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
            EXPECT_EQ(getter->get(dataset, new Row).toDouble(), mark(load) + mark(store));
        }
    }
    for (const unsigned count : {0U, 1U, 2U})
        EXPECT_EQ(CpuRowRooflineHelper(computeRoofs(), {}, count, std::make_shared<RoofThreadingFeatures>())
                      .areMemLevelMetricsCollected(),
                  count > 1);
}

TEST(CpuRowHelper, NullsAreAssertedAndSurvived) {
    std::vector<std::string> asserted;
    embedded_host::setAssertionHandler(
        [&](const std::string& expression, const std::string&, int) { asserted.push_back(expression); });
    CpuRowRooflineHelper helper(nullptr, {}, 4, nullptr);
    helper.init(nullptr, nullptr);
    std::vector<RoofItem> memory, compute;
    helper.findRoofs(memory, compute);
    CpuRowRooflineHelper withTable(computeRoofs(), {}, 4, nullptr);
    withTable.init(nullptr, nullptr);
    embedded_host::setAssertionHandler({});
    EXPECT_EQ(asserted, (std::vector<std::string>{"m_roofManager", "m_roofParam", "m_row", "m_dataset",
                                                  "m_roofParam", "m_row", "m_dataset"}));
    EXPECT_TRUE(memory.empty() && compute.empty());
    EXPECT_FALSE(helper.isInnermost());
    withTable.findRoofs(memory, compute);
    EXPECT_EQ(compute.size(), 2u) << "the scalar roofs";
}

}  // namespace
}  // namespace data_models2
