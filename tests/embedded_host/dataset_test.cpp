// Datasets as views on the rows of a result file: tree and flat order, cells, mixes, foreign nodes, lifetime.
#include "host_interfaces/signals.h"

#include "tests/embedded_host/result_text.h"

#include <boost/property_tree/ptree.hpp>
#include <gtest/gtest.h>
#include <rapidcheck.h>

#include <thread>

namespace embedded_host::test {
namespace {
using namespace data_models2;

constexpr const char* kFamily = R"(
    {"id": 10, "source": 3, "children": [{"id": 5, "children": [{"id": 40}]}, {"id": 7}]},
    {"id": 2})";

// Writes "<row" before and "row>" after the children, with the row that the parent's bag names.
class Recorder final : public RefCounted<IVisitHandler<RowNode>> {
public:
    variant_bag_t handlePreVisit(const sptr_t<RowNode>& row, const variant_bag_t& parent,
                                 bool& skipChildren) override {
        log += fmt::format("<{}:{} ", row->getId(), toText(parent.data()));
        skipChildren = row->getId() == skipped;
        return variant_bag_t(variant_t(row->getId()));
    }
    variant_bag_t handlePostVisit(const sptr_t<RowNode>& row, const variant_bag_t& parent) override {
        log += fmt::format("{}:{}> ", row->getId(), toText(parent.data()));
        return {};
    }

    std::uint64_t skipped = ~0ull;
    std::string log;
};

TEST(Dataset, IsVisitedWithParentsFirst) {
    const std::tuple<DataType, bool, std::uint64_t, const char*> cases[] = {
        {DataType::CpuTopDown, false, 0, "<10: <5:10 <40:5 40:5> 5:10> <7:10 7:10> 10:> <2: 2:> "},
        {DataType::CpuTopDown, true, 5, "<10: <5:10 <7:10 <2: "},
        {DataType::CpuTopDown, false, 10, "<10: 10:> <2: 2:> "},
        {DataType::Cpu, true, 0, "<10: <5: <40: <7: <2: "},
    };
    for (const auto& [type, preVisitOnly, skipped, expected] : cases) {
        const sptr_t<Recorder> recorder(new Recorder);
        recorder->skipped = skipped;
        createDatasetHelper(viewOf(kFamily)->getDataset(type))->visit(recorder, preVisitOnly);
        EXPECT_EQ(recorder->log, expected);
    }
    EXPECT_FALSE(createDatasetHelper(nullptr));
    createDatasetHelper(viewOf(kFamily)->getDataset(DataType::Cpu))->visit(nullptr, true);
}

TEST(Dataset, TellsTheLibrariesOfARow) {
    const auto data = viewOf(R"({"id": 1, "cells": {"VectorTraits": "FMA; Library kernel"}}, {"id": 2})")
                          ->getDataset(DataType::Cpu);
    using library_helpers::hasLibrary;
    EXPECT_TRUE(hasLibrary(*data->getRows(0), data, 1));
    EXPECT_FALSE(hasLibrary(*data->getRows(0), data, 2)) << "no such library";
    EXPECT_FALSE(hasLibrary(*++data->getRows(0), data, 1)) << "no cell";
    EXPECT_FALSE(hasLibrary(nullptr, data, 1) || hasLibrary(*data->getRows(0), nullptr, 1));
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
    EXPECT_EQ(cell(dataset, *dataset->getRows(0), FieldId::TotalTime), "100000");
    const sptr_t<Recorder> recorder(new Recorder);
    createDatasetHelper(dataset)->visit(recorder, false);
    std::string expected = "<0: ";
    for (int i = 1; i < depth; ++i) expected += fmt::format("<{}:{} ", i, i - 1);
    for (int i = depth; --i > 0;) expected += fmt::format("{}:{}> ", i, i - 1);
    EXPECT_TRUE(recorder->log == expected + "0:> ") << "two long texts differ";
}

TEST(Dataset, GivesEachFieldTypeItsVariantKind) {
    const auto dataset =
        viewOf(R"({"id": 9223372036854775807, "cells": {"FunctionName": "", "UnrollFactor": 4294967295,
                   "SelfTime": 0.1, "SelfFloatOps": -0.0}})")
            ->getDataset(DataType::Cpu);
    const auto row = *dataset->getRows(0);
    const auto kindAndText = [&](FieldId field) {
        variant_t value;
        dataset->getValue(row, dataset->getColumn(field), 0, value);
        return fmt::format("{} {}", static_cast<int>(value.kind()), toText(value));
    };
    EXPECT_EQ(kindAndText(FieldId::RowKey), "8 9223372036854775807");
    EXPECT_EQ(kindAndText(FieldId::Rva), "12 9223372036854775807");
    EXPECT_EQ(kindAndText(FieldId::UnrollFactor), "7 4294967295");
    EXPECT_EQ(kindAndText(FieldId::SelfTime), "11 0.1");
    EXPECT_EQ(kindAndText(FieldId::SelfFloatOps), "11 0");
    for (const int absent : {static_cast<int>(FieldId::NestingLevel), -5, 100'000})
        EXPECT_EQ(dataset->getColumn(static_cast<FieldId>(absent)), nullptr);
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
    for (const auto& row : listOf(dataset->getRows(0)))
        text += fmt::format("{}:{:x} ", dataset->getObjectId(row), row->getSpecification()->getRowType());
    EXPECT_EQ(text, "77:0 2:100 3:1000400 4:8 5:0 ");
}

TEST(Dataset, MayBeReadFromSeveralThreads) {
    const auto dataset = viewOf(kFamily)->getDataset(DataType::Cpu);
    const auto read = [&] {
        for (int i = 0; i < 2000; ++i)
            for (auto rows = dataset->getRows(0); !rows.isEnd(); ++rows) cell(dataset, *rows, FieldId::Rva);
    };
    std::jthread other(read);
    read();
}

// Random trees, some self values missing and some totals given; rows stand before those below them.
TEST(Dataset, TotalsAreThoseOfASumFromBelow) {
    EXPECT_TRUE(rc::check([] {
        const int count = *rc::gen::inRange(1, 40);
        std::vector<std::string> texts(static_cast<std::size_t>(count) + 1), expected(texts);
        std::vector<std::optional<int>> sums(texts.size());  // of the children; the last one is of the top
        for (int place = count; place-- > 0;) {
            const int chosen = *rc::gen::inRange(-1, place);
            const auto parent = static_cast<std::size_t>(chosen < 0 ? count : chosen);
            auto total = sums[place];
            std::vector<std::string> cells;
            if (*rc::gen::inRange(0, 3)) {
                const int self = *rc::gen::inRange(0, 100);
                total = total.value_or(0) + self;
                cells.push_back(fmt::format("\"SelfFloatOps\": {}", self));
            }
            if (*rc::gen::inRange(0, 8) == 0) {
                total = *rc::gen::inRange(0, 100);
                cells.push_back(fmt::format("\"TotalFloatOps\": {}", *total));
            }
            if (total) sums[parent] = sums[parent].value_or(0) + *total;
            expected[place] = total ? std::to_string(*total) : "-";
            texts[parent] +=
                fmt::format(R"({}{{"id": {}, "cells": {{{}}}, "children": [{}]}})",
                            texts[parent].empty() ? "" : ", ", place, fmt::join(cells, ", "), texts[place]);
        }
        const auto dataset = viewOf(texts.back())->getDataset(DataType::Cpu);
        for (const auto& row : listOf(dataset->getRows(0)))
            RC_ASSERT(cell(dataset, row, FieldId::TotalFloatOps) == expected[row->getId()]);
    }));
}

// The value of a cell that stands in a file as `number`.
double readNumber(const std::string& number) {
    const auto dataset =
        viewOf(R"({"id": 1, "cells": {"SelfTime": )" + number + "}}")->getDataset(DataType::Cpu);
    variant_t cell;
    EXPECT_TRUE(dataset->getValue(*dataset->getRows(0), dataset->getColumn(FieldId::SelfTime), 0, cell));
    return cell.toDouble();
}

TEST(NumberReading, GivesTheNearestDoubleWhateverTheForm) {
    EXPECT_EQ(readNumber("2.2250738585072011e-308"), 2.2250738585072011e-308);
    EXPECT_EQ(readNumber("9007199254740993"), 9007199254740992.0);
    EXPECT_EQ(readNumber("179769313486231570000e288"), 1.7976931348623157e308);
    EXPECT_EQ(readNumber("0e232"), 0.0);
    EXPECT_EQ(readNumber("0." + std::string(330, '0') + "6151611032038197712"), 0.0);
    EXPECT_EQ(readNumber("0." + std::string(330, '0') + "6151611032038197712e330"), 0.6151611032038197712);
}

std::string mixText(const sptr_t<RowNode>& row, const sptr_t<IDataset>& dataset) {
    std::string text;
    for (const auto& [number, count] : getInstructionMixMap(row, dataset))
        text += fmt::format("{}:{} ", number, toText(count));
    return text;
}

constexpr const char* kRows = R"({"id": 1, "children": [
    {"id": 9, "mix": {"74": 80, "3": 0, "63": 9223372036854775807, "2147483647": 1, "000": 2}}]})";

TEST(InstructionMix, IsThatOfTheRowInBothDatasets) {
    const auto view = viewOf(kRows);
    for (const auto type : {DataType::Cpu, DataType::CpuTopDown}) {
        const auto dataset = view->getDataset(type);
        const bool isFlat = type == DataType::Cpu;
        const auto row =
            isFlat ? *++dataset->getRows(0) : *dataset_helpers::getChildren(*dataset->getRows(0));
        EXPECT_EQ(mixText(row, dataset), "0:2 3:0 63:9223372036854775807 74:80 2147483647:1 ");
    }
}

TEST(InstructionMix, IsEmptyForNullsAndForeignNodes) {
    const char* const rows = R"({"id": 1, "mix": {"3": 1}, "children": [{"id": 2, "mix": {"3": 2}}]})";
    const auto view = viewOf(rows);
    const auto flat = view->getDataset(DataType::Cpu);
    const auto row = *flat->getRows(0);
    EXPECT_EQ(mixText(row, flat), "3:1 ");
    EXPECT_EQ(mixText(nullptr, flat), "");
    EXPECT_EQ(mixText(row, nullptr), "");
    EXPECT_EQ(mixText(row, view->getDataset(DataType::CpuTopDown)), "");
    EXPECT_EQ(mixText(row, viewOf(rows)->getDataset(DataType::Cpu)), "");
}

}  // namespace
}  // namespace embedded_host::test
