// The instruction mixes of a result's rows, through both of its datasets.
#include "tests/embedded_host/result_text.h"

#include <gtest/gtest.h>

namespace embedded_host::test {
namespace {
using namespace data_models2;

std::string mixText(const sptr_t<RowNode>& row, const sptr_t<IDataset>& dataset) {
    std::string text;
    for (const auto& [number, count] : getInstructionMixMap(row, dataset)) {
        EXPECT_TRUE(count.isInteger());
        text += fmt::format("{}:{} ", number, toText(count));
    }
    return text;
}

// "id(mix)" of each row, parents before children.
std::string mixesOf(const sptr_t<IDataset>& dataset, const RowIterator& top) {
    std::string text;
    for (auto rows = top; !rows.isEnd(); ++rows) {
        text += fmt::format("{}({}) ", (*rows)->getId(), mixText(*rows, dataset));
        RowIterator children;
        if ((*rows)->getChildren(children, 0, 1) > 0) text += mixesOf(dataset, children);
    }
    return text;
}

constexpr const char* kRows = R"(
    {"id": 1, "children": [
        {"id": 9, "mix": {"74": 80, "3": 0, "63": 9223372036854775807}},
        {"id": 4, "mix": {}, "children": [{"id": 5, "mix": {"2147483647": 1, "000": 2}}]}]},
    {"id": 2, "mix": {"11": 1}})";

TEST(InstructionMix, IsThatOfTheRowInBothDatasets) {
    const auto view = viewOf(kRows);
    for (const auto type : {DataType::Cpu, DataType::CpuTopDown}) {
        const auto dataset = view->getDataset(type);
        EXPECT_EQ(mixesOf(dataset, dataset->getRows(0)),
                  "1() 9(3:0 63:9223372036854775807 74:80 ) 4() 5(0:2 2147483647:1 ) 2(11:1 ) ");
    }
}

class NoMixes final : public RefCounted<IDataset> {
public:
    DataType getDataType() const override { return DataType::Cpu; }
    sptr_t<ColumnNode> getColumn(FieldId) const override { return {}; }
    bool getValue(const sptr_t<RowNode>&, const sptr_t<ColumnNode>&, int, variant_t&) const override {
        return false;
    }
    bool getString(const sptr_t<RowNode>&, const sptr_t<ColumnNode>&, int, std::string&) const override {
        return false;
    }
    RowIterator getRows(int) const override { return {}; }
    std::uint64_t getObjectId(const sptr_t<RowNode>&) const override { return 0; }
};

TEST(InstructionMix, IsEmptyForNullsAndForeignNodes) {
    const char* const rows = R"({"id": 1, "mix": {"3": 1}, "children": [{"id": 2, "mix": {"3": 2}}]})";
    const auto view = viewOf(rows);
    const auto flat = view->getDataset(DataType::Cpu);
    const auto row = *flat->getRows(0);
    const sptr_t<IDataset> foreign(new NoMixes);
    EXPECT_EQ(mixText(row, flat), "3:1 ");
    EXPECT_EQ(mixText(nullptr, flat), "");
    EXPECT_EQ(mixText(row, nullptr), "");
    EXPECT_EQ(mixText(row, foreign), "");
    EXPECT_EQ(mixText(row, view->getDataset(DataType::CpuTopDown)), "");
    EXPECT_EQ(mixText(row, viewOf(rows)->getDataset(DataType::Cpu)), "");
    EXPECT_EQ(mixText(row, viewOf("")->getDataset(DataType::Cpu)), "");
}

}  // namespace
}  // namespace embedded_host::test
