// The program's sums against loops over the rows, and what is read from them.
#include "roofline_model/memory_metrics.h"

#include "tests/roofline_model/test_host.h"

#include <boost/property_tree/ptree.hpp>
#include <gtest/gtest.h>

#include <cmath>

namespace data_models2::test {
namespace {

using enum OperationsType;

const std::vector<std::pair<OperationsType, std::string>> kOperations{
    {Float, "SelfFloatOps"}, {Int, "SelfIntOps"}, {Mixed, "SelfMixedOps"}};
const std::vector<std::pair<std::string, std::string>> kTraffic{{"L1", "SelfMemL1"},
                                                                {"L2", "SelfMemL2"},
                                                                {"L3", "SelfMemL3"},
                                                                {"L4", "SelfMemL4"},
                                                                {"DRAM", "SelfMemDram"}};

Table randomTable() {
    Table table;
    table.type = *rc::gen::element(DataType::Cpu, DataType::CpuTopDown, DataType::Gpu, DataType::Offload);
    const std::vector<variant_t> values{0.0, 1e-13, 0.5, 2.0, 1e3, 3u, -1, "text", variant_t()};
    for (int i = pick(0, 12); i > 0; --i) {
        TestRow row;
        row.parent = pick(-1, static_cast<int>(table.rows.size()));
        row.type = *rc::gen::element<std::uint64_t>(0, 0x8, 0x1000000, 0x1000008, 0x106);
        if (pick(0, 12) == 0) row.type.reset();
        for (const char* field : {"SelfFloatOps", "SelfIntOps", "SelfMixedOps", "SelfMemL1", "SelfMemL2",
                                  "SelfMemL3", "SelfMemL4", "SelfMemDram", "SelfTime", "SelfElapsedTime"})
            if (pick(0, 4)) row.cells[fieldOf(field)] = *rc::gen::elementOf(values);
        table.rows.push_back(row);
    }
    return table;
}

bool isCounted(const TestRow& row, DataType type) {
    if (!row.type) return false;
    if (type == DataType::Gpu) return *row.type & 0x1000000;
    return type == DataType::Offload || !(*row.type & 8);
}

// The sum of `field` over the rows that count and have a value in every one of `needed`.
double sumOf(const Table& table, const std::string& field, std::vector<std::string> needed = {}) {
    needed.push_back("SelfElapsedTime");
    double sum = 0.0;
    for (const auto& row : table.rows) {
        const auto cell = [&row](const std::string& name) {
            const auto found = row.cells.find(fieldOf(name));
            return found == row.cells.end() ? 0.0 : found->second.toDouble();
        };
        const auto isThere = [&](const std::string& name) { return cell(name) > 1e-12; };
        if (isCounted(row, table.type) && std::all_of(needed.begin(), needed.end(), isThere))
            sum += cell(field);
    }
    return sum;
}

double ratio(double a, double b) { return a > 1e-12 && b > 1e-12 ? a / b : 0.0; }

TEST(MemoryMetrics, AreTheSumsOverTheRows) {
    EXPECT_TRUE(rc::check([] {
        const auto table = randomTable();
        const auto metrics = makeMemoryMetrics(new Dataset(table), {});
        std::string differences;
        const auto expect = [&](const char* name, double value, double expected) {
            if (std::abs(value - expected) > 1e-9 * (1.0 + std::abs(expected)))
                differences += fmt::format(" {} {} and not {}", name, value, expected);
        };
        expect("elapsed time", metrics->getTotalElapsedTime(), sumOf(table, "SelfElapsedTime"));
        expect("time", metrics->getTotalTime(), sumOf(table, "SelfTime"));
        for (const auto& [type, ops] : kOperations) {
            expect("operations", metrics->getTotalOpCount(type), sumOf(table, ops));
            for (const auto& [level, gb] : kTraffic) {
                const auto both = [&, o = ops, g = gb](const auto& field) {
                    return sumOf(table, field, {o, g});
                };
                const double elapsed = both("SelfElapsedTime"), time = both("SelfTime");
                expect("GB", metrics->getTotalGBs(level), sumOf(table, gb));
                expect("intensity", metrics->getTotalAI(type, level),
                       ratio(sumOf(table, ops), sumOf(table, gb)));
                expect("nonzero GB", metrics->getTotalNonZeroGBs(type, level), both(gb));
                expect("nonzero elapsed time", metrics->getTotalNonZeroElapsedTime(type, level), elapsed);
                expect("nonzero time", metrics->getTotalNonZeroTime(type, level), time > 1e-12 ? time : 0.0);
                expect("nonzero rate", metrics->getTotalNonZeroOps(type, level), ratio(both(ops), elapsed));
                expect("nonzero intensity", metrics->getTotalNonZeroAI(type, level),
                       ratio(both(ops), both(gb)));
            }
        }
        if (!differences.empty()) RC_FAIL(differences);
    }));
}

TEST(MemoryMetrics, TakeTheirGettersAndTimesFromTheRecipe) {
    const auto dataset =
        makeDataset("a TotalFloatOps=8 OffloadL3Bytes=2e9 OffloadElapsedTime=4 SelfFloatOps=1");
    const MetricRecipe recipe{
        {{defGetter(FieldId::TotalFloatOps), Float}, {nullptr, Int}},
        {{divGetter(FieldId::OffloadL3Bytes, fakeGetter(1e9)), "L3gpu"}, {nullptr, "none"}},
        FieldId::OffloadElapsedTime,
        FieldId::OffloadElapsedTime};
    const auto metrics = makeMemoryMetrics(dataset, recipe);
    EXPECT_EQ(metrics->getTotalAI(Float, "L3gpu"), 4.0);
    EXPECT_EQ(metrics->getTotalNonZeroOps(Float, "L3gpu"), 2.0);
    EXPECT_EQ(metrics->getTotalOpCount(Int) + metrics->getTotalGBs("none") + metrics->getTotalGBs("L1"), 0.0);
    EXPECT_FALSE(recipe.operations.front().first->isValid()) << "unbound after the walk";
}

TEST(MemoryMetrics, TellTheTypeThatIsShownAtFirst) {
    const std::tuple<const char*, OperationsType, bool> cases[]{
        {"a SelfElapsedTime=1 SelfFloatOps=2 SelfIntOps=2 SelfMemL1=1", Float, false},
        {"a SelfElapsedTime=1 SelfFloatOps=2 SelfIntOps=3 SelfMemL1=1", Int, false},
        {"a SelfElapsedTime=1 SelfFloatOps=2 SelfMemL2=1", Float, true},
        {"a SelfElapsedTime=1 SelfMixedOps=9 SelfMemL1=1", Float, true},
        {"", Float, true},
    };
    for (const auto& [rows, dominating, isIntAtL1] : cases) {
        const auto metrics = makeMemoryMetrics(makeDataset(rows), {});
        EXPECT_EQ(roofline::getDominatingType(metrics), dominating) << rows;
        EXPECT_EQ(roofline::checkDefaultFloatType(metrics, "L1"), isIntAtL1) << rows;
    }
    EXPECT_EQ(makeMemoryMetrics(nullptr, {}), nullptr);
    EXPECT_EQ(roofline::getDominatingType(nullptr), Float);
}

}  // namespace
}  // namespace data_models2::test
