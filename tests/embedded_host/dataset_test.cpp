// Datasets as views on the rows of a result file: tree and flat order, cells, foreign nodes, lifetime.
#include "host_interfaces/signals.h"

#include "tests/embedded_host/result_text.h"

#include <gtest/gtest.h>
#include <rapidcheck.h>

#include <thread>

namespace embedded_host::test {
namespace {
using namespace data_models2;

constexpr const char* kFamily = R"(
    {"id": 10, "source": 3, "children": [{"id": 5, "children": [{"id": 40}]}, {"id": 7}]},
    {"id": 2})";

// "10(5(40) 7) 2", checked against the parents on the way.
std::string shapeOf(RowIterator rows, const sptr_t<RowNode>& parent = nullptr) {
    std::string text;
    for (; !rows.isEnd(); ++rows) {
        const auto row = *rows;
        EXPECT_EQ(row->getParent(), parent);
        text += fmt::format("{}{}", text.empty() ? "" : " ", row->getId());
        RowIterator children;
        const int count = row->getChildren(children, 0, 1);
        EXPECT_EQ(count == -1 ? 0 : count, static_cast<int>(listOf(children).size()));
        if (count != -1) text += "(" + shapeOf(children, row) + ")";
    }
    return text;
}

TEST(Dataset, HasTheFilesTreeAndTheSameRowsFlat) {
    const auto view = viewOf(kFamily);
    EXPECT_EQ(shapeOf(view->getDataset(DataType::CpuTopDown)->getRows(0)), "10(5(40) 7) 2");
    EXPECT_EQ(shapeOf(view->getDataset(DataType::Cpu)->getRows(0)), "10 5 40 7 2");
    EXPECT_EQ(view->getDataset(DataType::Gpu), nullptr);
}

TEST(Dataset, OfAFileWithoutChildrenHasNoTree) {
    for (const char* rows : {"", R"({"id": 1}, {"id": 2, "children": []})"}) {
        const auto view = viewOf(rows);
        EXPECT_EQ(view->getDataset(DataType::CpuTopDown), nullptr);
        EXPECT_NE(view->getDataset(DataType::Cpu), nullptr);
    }
}

TEST(Dataset, AVisitedTreeNeedsNoStackWhateverItsDepth) {
    constexpr int depth = 100'000;
    std::string rows;
    for (int i = 0; i < depth; ++i)
        rows += fmt::format(R"({{"id": {}, "cells": {{"SelfTime": 1}}, "children": [)", i);
    for (int i = 0; i < depth; ++i) rows += "]}";
    const auto dataset = viewOf(rows)->getDataset(DataType::CpuTopDown);
    auto row = *dataset->getRows(0);
    EXPECT_EQ(cell(dataset, row, FieldId::TotalTime), "100000");
    RowIterator children;
    int seen = 1;
    for (; row->getChildren(children, 0, 1) != -1; ++seen) row = *children;
    EXPECT_EQ(seen, depth);
}

TEST(Dataset, GivesEachFieldTypeItsVariantKind) {
    const auto dataset =
        viewOf(R"({"id": 9223372036854775807, "cells": {"FunctionName": "", "UnrollFactor": 4294967295,
                   "SelfTime": 0.1, "SelfFloatOps": -0.0}})")
            ->getDataset(DataType::Cpu);
    const auto row = *dataset->getRows(0);
    const auto kindAndText = [&](FieldId field) {
        variant_t value;
        if (!dataset->getValue(row, dataset->getColumn(field), 0, value)) return std::string("missing");
        return fmt::format("{} {}", static_cast<int>(value.kind()), toText(value));
    };
    EXPECT_EQ(kindAndText(FieldId::RowKey), "8 9223372036854775807");
    EXPECT_EQ(kindAndText(FieldId::Rva), "12 9223372036854775807");
    EXPECT_EQ(kindAndText(FieldId::FunctionName), "12 ");
    EXPECT_EQ(kindAndText(FieldId::UnrollFactor), "7 4294967295");
    EXPECT_EQ(kindAndText(FieldId::SelfTime), "11 0.1");
    EXPECT_EQ(kindAndText(FieldId::SelfFloatOps), "11 0");
    EXPECT_EQ(kindAndText(FieldId::NestingLevel), "missing");
    EXPECT_EQ(dataset->getColumn(FieldId::NestingLevel), nullptr);
    EXPECT_EQ(dataset->getColumn(static_cast<FieldId>(2)), nullptr);
    EXPECT_EQ(dataset->getColumn(static_cast<FieldId>(-5)), nullptr);
    EXPECT_EQ(dataset->getColumn(static_cast<FieldId>(100'000)), nullptr);
}

TEST(Dataset, RefusesNodesThatAreNotItsOwn) {
    const auto view = viewOf(R"({"id": 1, "cells": {"SelfTime": 1}, "children": [{"id": 2}]})");
    const auto flat = view->getDataset(DataType::Cpu);
    const auto tree = view->getDataset(DataType::CpuTopDown);
    const auto row = *flat->getRows(0);
    const auto column = flat->getColumn(FieldId::SelfTime);
    variant_t value;
    EXPECT_TRUE(flat->getValue(row, column, 0, value));
    EXPECT_FALSE(flat->getValue(*tree->getRows(0), column, 0, value));
    EXPECT_FALSE(flat->getValue(row, tree->getColumn(FieldId::SelfTime), 0, value));
    EXPECT_FALSE(flat->getValue(nullptr, column, 0, value));
    EXPECT_FALSE(flat->getValue(row, nullptr, 0, value));
    EXPECT_FALSE(flat->getValue(*++flat->getRows(0), column, 0, value));  // a missing cell
    EXPECT_EQ(flat->getObjectId(*tree->getRows(0)), 0U);
    EXPECT_EQ(value.toDouble(), 1.0);
}

TEST(Dataset, LivesAsLongAsAnythingThatItGave) {
    auto dataset = viewOf(kFamily)->getDataset(DataType::CpuTopDown);
    auto rows = dataset->getRows(0);
    auto column = dataset->getColumn(FieldId::Rva);
    dataset.reset();
    const auto top = *rows;
    rows = {};
    EXPECT_EQ(column->getSpecification()->getField(), FieldId::Rva);
    column.reset();
    RowIterator children;
    ASSERT_EQ(top->getChildren(children, 0, 1), 2);
    const auto copy = children;
    ++children;
    EXPECT_EQ((*children)->getId(), 7U);
    EXPECT_EQ((*copy)->getId(), 5U);
    EXPECT_EQ((*copy)->getParent(), top);
}

TEST(Dataset, TellsSourceObjectsAndTypeBits) {
    const auto dataset = viewOf(R"(
        {"id": 1, "source": 77}, {"id": 2, "kind": "loop", "cells": {"Vectorized": 1}},
        {"id": 3, "kind": "kernel", "executed": false}, {"id": 4, "type": 8, "cells": {"Vectorized": 0}},
        {"id": 5, "kind": "function", "executed": true})")
                             ->getDataset(DataType::Cpu);
    std::string text;
    for (const auto& row : listOf(dataset->getRows(0))) {
        text += fmt::format("{}:{:x} ", dataset->getObjectId(row), row->getSpecification()->getRowType());
    }
    EXPECT_EQ(text, "77:0 2:100 3:1000400 4:8 5:0 ");
}

TEST(Dataset, MayBeReadFromSeveralThreads) {
    const auto dataset = viewOf(kFamily)->getDataset(DataType::Cpu);
    const auto read = [&] {
        for (int i = 0; i < 2000; ++i) {
            for (auto rows = dataset->getRows(0); !rows.isEnd(); ++rows) cell(dataset, *rows, FieldId::Rva);
        }
    };
    std::jthread other(read);
    read();
}

// A random tree as text, with self times, some of them missing, and some totals given.
struct RandomRow {
    int parent;
    std::optional<int> self;
    std::optional<int> given;
};

std::string rowText(const std::vector<RandomRow>& rows, int place) {
    std::vector<std::string> cells, children;
    if (rows[place].self) cells.push_back(fmt::format("\"SelfFloatOps\": {}", *rows[place].self));
    if (rows[place].given) cells.push_back(fmt::format("\"TotalFloatOps\": {}", *rows[place].given));
    for (int row = place + 1; row < static_cast<int>(rows.size()); ++row) {
        if (rows[row].parent == place) children.push_back(rowText(rows, row));
    }
    return fmt::format(R"({{"id": {}, "cells": {{{}}}, "children": [{}]}})", place, fmt::join(cells, ", "),
                       fmt::join(children, ", "));
}

std::optional<int> naiveTotal(const std::vector<RandomRow>& rows, int place) {
    if (rows[place].given) return rows[place].given;
    auto total = rows[place].self;
    for (int row = place + 1; row < static_cast<int>(rows.size()); ++row) {
        if (rows[row].parent != place) continue;
        if (const auto below = naiveTotal(rows, row)) total = total.value_or(0) + *below;
    }
    return total;
}

TEST(Dataset, TotalsAreThoseOfARecursiveSum) {
    rc::check([] {
        std::vector<RandomRow> rows(static_cast<std::size_t>(*rc::gen::inRange(1, 40)));
        for (int place = 0; place < static_cast<int>(rows.size()); ++place) {
            auto& row = rows[place];
            row.parent = *rc::gen::inRange(-1, place);
            if (*rc::gen::inRange(0, 3)) row.self = *rc::gen::inRange(0, 100);
            if (*rc::gen::inRange(0, 8) == 0) row.given = *rc::gen::inRange(0, 100);
        }
        std::vector<std::string> top;
        for (int place = 0; place < static_cast<int>(rows.size()); ++place) {
            if (rows[place].parent < 0) top.push_back(rowText(rows, place));
        }
        const auto dataset = viewOf(fmt::format("{}", fmt::join(top, ", ")))->getDataset(DataType::Cpu);
        for (const auto& row : listOf(dataset->getRows(0))) {
            const auto total = naiveTotal(rows, static_cast<int>(row->getId()));
            const auto expected = total ? std::to_string(*total) : "-";
            RC_ASSERT(cell(dataset, row, FieldId::TotalFloatOps) == expected);
        }
    });
}

}  // namespace
}  // namespace embedded_host::test
