// Visiting the rows of a dataset, and what a row says of libraries.
#include "host_interfaces/host_functions.h"

#include <boost/property_tree/ptree.hpp>
#include <gtest/gtest.h>

#include <map>
#include <sstream>

namespace data_models2 {
namespace {

// Row n of a tree given by the parent of each row; the dataset owns all rows, so that none owns another.
struct Tree {
    std::vector<std::vector<int>> children;
    std::vector<sptr_t<RowNode>> rows;
};

class Row final : public RefCounted<RowNode> {
public:
    Row(const Tree& tree, int index) : m_tree(tree), m_index(index) {}
    std::uint64_t getId() const override { return static_cast<std::uint64_t>(m_index); }
    sptr_t<IRowSpecification> getSpecification() const override { return {}; }
    sptr_t<RowNode> getParent() const override { return {}; }
    int getChildren(RowIterator& children, int, int) const override {
        const auto& indexes = m_tree.children[static_cast<std::size_t>(m_index)];
        if (indexes.empty()) return -1;
        std::vector<sptr_t<RowNode>> rows;
        for (const int index : indexes)
            rows.push_back(index < 0 ? nullptr : m_tree.rows[static_cast<std::size_t>(index)]);
        children = makeIterator(std::move(rows));
        return static_cast<int>(indexes.size());
    }

private:
    const Tree& m_tree;
    const int m_index;
};

class Column final : public RefCounted<ColumnNode> {
public:
    std::uint64_t getId() const override { return 0; }
    sptr_t<IColumnSpecification> getSpecification() const override { return {}; }
    sptr_t<ColumnNode> getParent() const override { return {}; }
    int getChildren(generic_iterator_t<sptr_t<ColumnNode>>&, int, int) const override { return -1; }
};

class Dataset final : public RefCounted<IDataset> {
public:
    // The children of each row; -1 is a null row.
    explicit Dataset(std::vector<std::vector<int>> children, int topRows) : m_topRows(topRows) {
        m_tree.children = std::move(children);
        for (std::size_t i = 0; i < m_tree.children.size(); ++i)
            m_tree.rows.emplace_back(new Row(m_tree, static_cast<int>(i)));
    }
    DataType getDataType() const override { return DataType::Cpu; }
    sptr_t<ColumnNode> getColumn(FieldId field) const override {
        return field == FieldId::VectorTraits && !traits.empty() ? sptr_t<ColumnNode>(new Column) : nullptr;
    }
    bool getValue(const sptr_t<RowNode>&, const sptr_t<ColumnNode>&, int, variant_t&) const override {
        return false;
    }
    bool getString(const sptr_t<RowNode>& row, const sptr_t<ColumnNode>&, int,
                   std::string& out) const override {
        const auto found = traits.find(row->getId());
        if (found == traits.end()) return false;
        out = found->second;
        return true;
    }
    RowIterator getRows(int) const override {
        return makeIterator(std::vector(m_tree.rows.begin(), m_tree.rows.begin() + m_topRows));
    }
    std::uint64_t getObjectId(const sptr_t<RowNode>& row) const override { return row->getId(); }
    sptr_t<RowNode> row(std::size_t index) const { return m_tree.rows[index]; }

    std::map<std::uint64_t, std::string> traits;

private:
    Tree m_tree;
    const int m_topRows;
};

// Writes "<row" before and "row>" after the children, with the row that the parent's bag names.
class Recorder final : public RefCounted<IVisitHandler<RowNode>> {
public:
    variant_bag_t handlePreVisit(const sptr_t<RowNode>& row, const variant_bag_t& parent,
                                 bool& skipChildren) override {
        log << '<' << row->getId() << ':' << toText(parent.data()) << ' ';
        skipChildren = row->getId() == skipped;
        return variant_bag_t(variant_t(row->getId()));
    }
    variant_bag_t handlePostVisit(const sptr_t<RowNode>& row, const variant_bag_t& parent) override {
        log << row->getId() << ':' << toText(parent.data()) << "> ";
        return {};
    }

    std::uint64_t skipped = ~0ull;
    std::ostringstream log;
};

TEST(DatasetHelper, VisitsParentsFirstAndHandsTheirBagsDown) {
    // Rows 0 and 1 at the top; below 0 rows 2, null and 3; below 2 row 4; below 1 row 5.
    const sptr_t<Dataset> dataset(new Dataset({{2, -1, 3}, {5}, {4}, {}, {}, {}}, 2));
    const struct {
        bool preVisitOnly;
        std::uint64_t skipped;
        const char* expected;
    } rows[] = {
        {false, ~0ull, "<0: <2:0 <4:2 4:2> 2:0> <3:0 3:0> 0:> <1: <5:1 5:1> 1:> "},
        {true, ~0ull, "<0: <2:0 <4:2 <3:0 <1: <5:1 "},
        {false, 0, "<0: 0:> <1: <5:1 5:1> 1:> "},
        {true, 2, "<0: <2:0 <3:0 <1: <5:1 "},
    };
    for (const auto& row : rows) {
        const sptr_t<Recorder> recorder(new Recorder);
        recorder->skipped = row.skipped;
        createDatasetHelper(dataset)->visit(recorder, row.preVisitOnly);
        EXPECT_EQ(recorder->log.str(), row.expected);
    }
}

TEST(DatasetHelper, VisitsARowAMillionDeep) {
    constexpr int kDepth = 1'000'000;
    std::vector<std::vector<int>> children(kDepth);
    for (int i = 0; i + 1 < kDepth; ++i) children[static_cast<std::size_t>(i)] = {i + 1};
    const sptr_t<Dataset> dataset(new Dataset(std::move(children), 1));

    class Counter final : public RefCounted<IVisitHandler<RowNode>> {
    public:
        variant_bag_t handlePreVisit(const sptr_t<RowNode>&, const variant_bag_t&, bool&) override {
            ++before;
            return {};
        }
        variant_bag_t handlePostVisit(const sptr_t<RowNode>& row, const variant_bag_t&) override {
            ordered = ordered && row->getId() == static_cast<std::uint64_t>(kDepth - ++after);
            return {};
        }
        int before = 0;
        int after = 0;
        bool ordered = true;
    };
    const sptr_t<Counter> counter(new Counter);
    createDatasetHelper(dataset)->visit(counter, false);
    EXPECT_EQ(counter->before, kDepth);
    EXPECT_EQ(counter->after, kDepth);
    EXPECT_TRUE(counter->ordered);
}

TEST(DatasetHelper, TakesNullsAndEmptyDatasets) {
    EXPECT_FALSE(createDatasetHelper(nullptr));
    const auto helper = createDatasetHelper(new Dataset({}, 0));
    helper->visit(nullptr, true);
    const sptr_t<Recorder> recorder(new Recorder);
    helper->visit(recorder, false);
    EXPECT_EQ(recorder->log.str(), "");
}

TEST(LibraryHelpers, BelieveTheRowsOwnTraits) {
    const sptr_t<Dataset> dataset(new Dataset({{}, {}, {}}, 3));
    using library_helpers::hasLibrary;
    EXPECT_FALSE(hasLibrary(dataset->row(0), dataset, 1)) << "no such column";
    dataset->traits = {{0, "FMA; Library kernel"}, {1, "FMA"}};
    EXPECT_TRUE(hasLibrary(dataset->row(0), dataset, 1));
    EXPECT_FALSE(hasLibrary(dataset->row(0), dataset, 2)) << "no such library";
    EXPECT_FALSE(hasLibrary(dataset->row(1), dataset, 1));
    EXPECT_FALSE(hasLibrary(dataset->row(2), dataset, 1)) << "no cell";
    EXPECT_FALSE(hasLibrary(nullptr, dataset, 1));
    EXPECT_FALSE(hasLibrary(dataset->row(0), nullptr, 1));
}

}  // namespace
}  // namespace data_models2
