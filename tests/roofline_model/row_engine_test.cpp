// Which point a row has and which roof limits it, against naive models of both verdicts.
#include "tests/roofline_model/row_model.h"
#include "tests/roofline_model/test_host.h"

#include <gtest/gtest.h>
#include <rapidcheck.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>

namespace data_models2 {
namespace {

using namespace row_test;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kStep = 1e-9;

RowCase rowOn(const Machine& machine, double performance, double ai) {
    const auto roofOf = [](RoofId id, const auto& name, double giga, MemoryLevel level, auto type) {
        RoofItem roof = makeRoof(id, name, 0, level, type);
        roof.value = static_cast<std::uint64_t>(std::llround(giga * 1e9));
        return roof;
    };
    using Type = ArithTypeExtDef;
    RowCase row{.cells = {{FieldId::SelfGFlops, performance},
                          {FieldId::SelfFloatAi, ai},
                          {FieldId::SelfFloatOps, 1.0},
                          {FieldId::SelfIntOps, 0.0}}};
    row.memoryRoofs.clear();
    for (const auto& [level, giga] : machine.memory)
        row.memoryRoofs.push_back(roofOf(RoofId(level), nameOf(level), giga, level, Type::None));
    std::ranges::stable_sort(row.memoryRoofs, {}, &RoofItem::value);
    constexpr auto kNone = MemoryLevel::None;
    row.computeRoofs = {roofOf(RoofId::IntScalarAddPeak, "int", 1.0, kNone, Type::Int32),
                        roofOf(RoofId::ScalarAddPeak, "compute", machine.compute, kNone, Type::Float64),
                        roofOf(RoofId::DpVectorAddPeak, "second", 1.0, kNone, Type::Float64)};
    return row;
}

// Both verdicts on every tie and just beside it; all levels but L1 have the same traffic.
TEST(RowEngine, BothVerdictsAroundEveryRidgeAndRoof) {
    const auto around = [](std::initializer_list<double> values) {
        std::vector<double> all{0.0, -0.0, 0.125, 128.0};
        for (const double value : values)
            for (const double step : {-kStep, 0.0, kStep}) all.push_back(value * (1.0 + step));
        return all;
    };
    for (const double compute : {64.0, 16.0, 0.0})
        for (const double dram : {8.0, 32.0, 0.0})
            for (const double ai : around({1.0, 2.0, 4.0, 8.0}))
                for (const double performance : around({compute, dram * ai, 32.0 * ai, 16.0 * ai})) {
                    Machine machine{.compute = compute};
                    machine.memory[MemoryLevel::Dram] = dram;
                    RowCase row = rowOn(machine, performance, ai);
                    std::map<MemoryLevel, double> intensities;
                    for (const auto& [level, giga] : machine.memory) {
                        intensities[level] = level == MemoryLevel::L1 || ai <= 0.0 ? 2.0 : ai;
                        row.traffic[level] = 1.0 / intensities[level];
                    }
                    const auto engine = makeEngine(row);
                    const auto expected = totalModel(machine, performance, ai);
                    SCOPED_TRACE(fmt::format("{} at {} below {} and {}", performance, ai, compute, dram));
                    ASSERT_EQ(verdictOf(*engine, true), expected);
                    ASSERT_EQ(verdictOf(*engine, false), levelModel(machine, performance, intensities));
                    row.traffic.clear();
                    ASSERT_EQ(makeEngine(row)->isValid(), !expected.roof.empty());
                }
}

double positive(int most) { return *rc::gen::inRange(1, most) / 1000.0; }

bool isClose(double a, double b) { return std::abs(a - b) <= 1e-9 * std::abs(a); }

TEST(RowEngine, BothVerdictsAndTheTablesOfRandomRows) {
    const auto isRight = rc::check("verdicts and tables", [] {
        Machine machine{.compute = positive(200'000)};
        const double performance = positive(200'000);
        const double ai = positive(50'000);
        std::map<MemoryLevel, double> intensities;
        for (auto& [level, giga] : machine.memory) giga = positive(400'000);
        RowCase row = rowOn(machine, performance, ai);
        const double operations = positive(50'000);
        row.cells[FieldId::SelfFloatOps] = operations;
        for (const auto& [level, giga] : machine.memory) {
            row.traffic[level] = positive(50'000);
            intensities[level] = operations / row.traffic[level];
            for (const double i : {ai, intensities[level]})
                for (const double height : {performance, machine.compute}) RC_PRE(!isClose(giga * i, height));
        }
        RC_PRE(!isClose(performance, machine.compute));
        const auto engine = makeEngine(row);
        RC_ASSERT(verdictOf(*engine, true) == totalModel(machine, performance, ai));
        RC_ASSERT(verdictOf(*engine, false) == levelModel(machine, performance, intensities));

        double most = 0.0;
        double time = 0.0;
        std::map<MemoryLevel, double> times;
        for (const auto& [level, traffic] : row.traffic) {
            most = std::max(most, traffic);
            if (performance >= machine.memory[level] * intensities[level]) continue;
            time += times[level] = traffic / machine.memory[level];
        }
        using Table = RooflineMemoryValuesType;
        const auto shares = engine->getMemoryValues(Table::Time);
        RC_ASSERT(shares.size() == times.size());
        for (const auto& share : shares) {
            RC_ASSERT(std::abs(share.value - times.at(share.memoryLevel) / time * 100.0) < 1e-6);
            RC_ASSERT(share.text == std::to_string(static_cast<int>(share.value)));
        }
        for (const auto& value : engine->getMemoryValues(Table::Utilization)) {
            const double height = machine.memory[value.memoryLevel] * intensities[value.memoryLevel];
            RC_ASSERT(std::abs(value.value - performance / height * 100.0) < 1e-6);
        }
        const auto traffic = engine->getMemoryValues(Table::Traffic);
        RC_ASSERT(traffic.size() == 4u);
        for (const auto& value : traffic)
            RC_ASSERT(isClose(value.value, row.traffic[value.memoryLevel] / most * 100.0));
    });
    EXPECT_TRUE(isRight);
}

TEST(RowEngine, NumbersThatAreNotFiniteOrNotPositive) {
    const std::tuple<double, double, Verdict> rows[]{
        {1.0, kInfinity, {"compute", 64.0}},
        {64.0, kInfinity, {"memory 6", kInfinity}},
        {kInfinity, 1.0, {}},
        {kNan, 1.0, {}},
        {1.0, kNan, {}},
        {-1.0, 0.0, {}},
        {-1.0, 1.0, {"memory 6", 8.0}},
    };
    for (const auto& [performance, ai, expected] : rows)
        EXPECT_EQ(verdictOf(*makeEngine(rowOn({}, performance, ai)), true), expected)
            << performance << " at " << ai;

    const std::tuple<double, double, bool> levels[]{
        {1e-12, 1.0, false}, {2e-12, 1.0, true}, {1.0, 2e-12, true},     {kNan, 1.0, false},
        {1.0, kNan, false},  {-1.0, 1.0, false}, {kInfinity, 1.0, false}};
    for (const auto& [traffic, operations, isPoint] : levels) {
        RowCase row = rowOn({}, 1e-9, 1.0);
        row.traffic = {{MemoryLevel::L1, traffic}};
        row.cells[FieldId::SelfFloatOps] = operations;
        EXPECT_EQ(makeEngine(row)->getMemLevelPoints().size(), isPoint ? 1u : 0u) << traffic;
    }
}

TEST(RowEngine, ChoosesThePoint) {
    const std::string total = " TotalGFlops=1 TotalFloatAi=2", totalInt = " TotalGIntOps=3 TotalIntAi=4";
    const std::string self = " SelfGFlops=5 SelfFloatAi=6", selfInt = " SelfGIntOps=7 SelfIntAi=8";
    const std::string totalCounts = " TotalFloatOps=1 TotalIntOps=2";
    const std::pair<std::string, const char*> rows[]{
        {"", "3 0 0 self"},
        {self, "0 5 6 self"},
        {total + self + selfInt + " SelfFloatOps=0 SelfIntOps=9", "0 1 2 total"},
        {totalInt + self, "1 3 4 total"},
        {" TotalGFlops=1" + self, "0 5 6 self"},
        {self + selfInt + " SelfFloatOps=10 SelfIntOps=10", "0 5 6 self"},
        {self + selfInt + " SelfFloatOps=10 SelfIntOps=11", "1 7 8 self"},
        {self + selfInt + " SelfFloatOps=nan SelfIntOps=10", "0 5 6 self"},
        {total + totalInt + totalCounts + " SelfFloatOps=2 SelfIntOps=1", "1 3 4 total"},
        // A count that the self set lacks is the total set's.
        {self + selfInt + totalCounts, "1 7 8 self"},
        {" SelfGFlops=\"x\" SelfFloatAi=6u", "0 0 6 self"},
    };
    for (const auto& [cells, expected] : rows) {
        const auto engine = makeEngine({.cells = test::tableOf("a" + cells).rows.front().cells});
        const auto [performance, ai, traffic, level, limit, type] = engine->getPoint();
        EXPECT_EQ(fmt::format("{} {:g} {:g} {}", static_cast<int>(type), performance, ai,
                              engine->areTotalMetricsAvailable() ? "total" : "self"),
                  expected)
            << cells;
    }
}

TEST(RowEngine, LevelsOfOneNumberKeepTheirOrderAndTheRestAscend) {
    using Level = MemoryLevel;
    const std::pair<std::map<Level, unsigned>, const char*> orders[]{
        {{{Level::L1, 5}, {Level::L2, 5}, {Level::L3, 5}, {Level::Dram, 5}}, "1236"},
        {{{Level::L1, 9}, {Level::L2, 8}, {Level::L3, 7}}, "6321"},
        {{{Level::L1, 9}, {Level::L3, 9}}, "2613"}};
    RowCase row = rowOn({}, 1.0, 1.0);
    for (const auto& roof : row.memoryRoofs) row.traffic[roof.memoryLevel] = 1.0;
    for (const auto& [numbers, expected] : orders) {
        row.levelNumbers = numbers;
        std::string levels;
        for (const auto& point : makeEngine(row)->getMemLevelPoints())
            levels += std::to_string(static_cast<int>(point.memoryLevel));
        EXPECT_EQ(levels, expected);
    }
}

}  // namespace
}  // namespace data_models2
