// The instruction mixes of a result's rows, through both of its datasets.
#include "tests/embedded_host/result_text.h"

#include <gtest/gtest.h>

namespace embedded_host::test {
namespace {
using namespace data_models2;

std::string mixText(const sptr_t<RowNode>& row, const sptr_t<IDataset>& dataset) {
    std::string text;
    for (const auto& [number, count] : getInstructionMixMap(row, dataset)) {
        text += fmt::format("{}:{} ", number, toText(count));
    }
    return text;
}

constexpr const char* kRows = R"({"id": 1, "children": [
    {"id": 9, "mix": {"74": 80, "3": 0, "63": 9223372036854775807, "2147483647": 1, "000": 2}}]})";

TEST(InstructionMix, IsThatOfTheRowInBothDatasets) {
    const auto view = viewOf(kRows);
    for (const auto type : {DataType::Cpu, DataType::CpuTopDown}) {
        const auto dataset = view->getDataset(type);
        auto row = *dataset->getRows(0);
        RowIterator children;
        if (row->getChildren(children, 0, 1) > 0)
            row = *children;
        else
            row = *++dataset->getRows(0);
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
