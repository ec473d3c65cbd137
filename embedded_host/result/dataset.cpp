// A dataset's rows are small objects in one array: a row is recognised, and its number found, by its address.
#include "embedded_host/result/dataset.h"

#include "host_interfaces/host_functions.h"

#include "embedded_host/services/instruction_mix.h"
#include "embedded_host/services/row_issues.h"

namespace embedded_host {
namespace {
using namespace data_models2;

class Dataset;

// A part of a dataset that has no life of its own: it is owned by owning the dataset. A part is its own
// specification, thus two interfaces with one count.
template <class Specification>
class Part : public INode<Specification>, public Specification {
public:
    explicit Part(const Dataset& owner) : m_owner(&owner) {}
    void addRef() const noexcept final;
    void release() const noexcept final;
    sptr_t<Specification> getSpecification() const final {
        return sptr_t<Specification>(const_cast<Part*>(this));
    }

protected:
    const Dataset& owner() const { return *m_owner; }

private:
    const Dataset* m_owner;
};

class Row final : public Part<IRowSpecification>, public IRowIssueSource {
public:
    using Part::Part;
    std::uint64_t getId() const override;
    std::uint64_t getRowType() const override;
    sptr_t<RowNode> getParent() const override;
    int getChildren(RowIterator& children, int from, int depth) const override;
    std::vector<std::string> boundedBy() const override;

private:
    std::size_t index() const;
};

class FieldColumn final : public Part<IColumnSpecification> {
public:
    FieldColumn(const Dataset& owner, FieldId field) : Part(owner), m_field(field) {}
    std::uint64_t getId() const override { return static_cast<std::uint64_t>(m_field); }
    FieldId getField() const override { return m_field; }
    sptr_t<ColumnNode> getParent() const override { return {}; }
    int getChildren(generic_iterator_t<sptr_t<ColumnNode>>&, int, int) const override { return -1; }

private:
    FieldId m_field;
};

// The place of `node` in an array of parts; the array's size or more when it is none of them.
template <class Item, class Node>
std::size_t placeOf(const std::vector<Item>& items, const Node* node) noexcept {
    const auto address = [](const Node* item) { return reinterpret_cast<std::uintptr_t>(item); };
    return (address(node) - address(items.data())) / sizeof(Item);
}

class Dataset final : public RefCounted<IDataset>, public IInstructionMixSource {
public:
    Dataset(std::shared_ptr<const RowTable> table, DataType type, RowOrder order)
        : m_table(std::move(table)), m_rows(m_table->size(), Row(*this)), m_type(type), m_order(order) {
        m_columns.reserve(kFieldCount);
        for (const auto& field : kFields) m_columns.emplace_back(*this, field.id);
    }

    DataType getDataType() const override { return m_type; }

    sptr_t<ColumnNode> getColumn(FieldId field) const override {
        const int slot = fieldSlot(field);
        if (slot == kNoSlot || !m_table->columns[static_cast<std::size_t>(slot)]) return {};
        return part<ColumnNode>(m_columns[static_cast<std::size_t>(slot)]);
    }

    bool getValue(const sptr_t<RowNode>& row, const sptr_t<ColumnNode>& column, int,
                  variant_t& out) const override {
        const auto place = placeOf(m_rows, row.get());
        const auto slot = placeOf(m_columns, column.get());
        if (place >= m_rows.size() || slot >= m_columns.size()) return false;
        return m_table->columns[slot]->get(place, out);
    }

    bool getString(const sptr_t<RowNode>& row, const sptr_t<ColumnNode>& column, int aggregation,
                   std::string& out) const override {
        variant_t value;
        if (!getValue(row, column, aggregation, value)) return false;
        out = toText(value);
        return true;
    }

    RowIterator getRows(int) const override { return rows(0, m_table->size()); }

    std::uint64_t getObjectId(const sptr_t<RowNode>& row) const override {
        const auto place = placeOf(m_rows, row.get());
        return place < m_rows.size() ? m_table->objectId(place) : 0;
    }

    InstructionMix instructionMix(const RowNode& row) const override {
        InstructionMix mix;
        const auto place = placeOf(m_rows, &row);
        const auto take = [&](int number, std::int64_t count) { mix.emplace_hint(mix.end(), number, count); };
        if (place < m_rows.size()) m_table->mixes.forEach(place, take);
        return mix;
    }

    const RowTable& table() const { return *m_table; }
    bool isTree() const { return m_order == RowOrder::Tree; }
    std::size_t placeOfRow(const Row& row) const {
        return placeOf(m_rows, static_cast<const RowNode*>(&row));
    }
    sptr_t<RowNode> row(std::size_t place) const { return part<RowNode>(m_rows[place]); }
    // The rows of [first, end) that aren't below another row of the range.
    RowIterator rows(std::size_t first, std::size_t end) const;
    bool has(const sptr_t<RowNode>& row) const { return placeOf(m_rows, row.get()) < m_rows.size(); }
    // The rows one level below a `row` of this dataset in the file, whatever the order here.
    std::vector<sptr_t<RowNode>> rowsBelow(const sptr_t<RowNode>& row) const;

private:
    // Interfaces take nodes that aren't const; a part has nothing that could be changed.
    template <class Node, class Item>
    static sptr_t<Node> part(const Item& item) {
        return sptr_t<Node>(const_cast<Item*>(&item));
    }

    const std::shared_ptr<const RowTable> m_table;
    std::vector<Row> m_rows;
    std::vector<FieldColumn> m_columns;  // one a field, by slot, whether the table has cells of it or not
    const DataType m_type;
    const RowOrder m_order;
};

class RowSource final : public RowIterator::ISource {
public:
    RowSource(const Dataset& dataset, std::size_t first, std::size_t end)
        : m_dataset(&dataset), m_row(first), m_end(end) {}
    std::unique_ptr<RowIterator::ISource> clone() const override {
        return std::make_unique<RowSource>(*this);
    }
    bool atEnd() const override { return m_row >= m_end; }
    void next() override { m_row = m_dataset->isTree() ? m_dataset->table().ends[m_row] : m_row + 1; }
    sptr_t<RowNode> current() const override { return m_dataset->row(m_row); }

private:
    sptr_t<const Dataset> m_dataset;
    std::size_t m_row;
    std::size_t m_end;
};

RowIterator Dataset::rows(std::size_t first, std::size_t end) const {
    return RowIterator(std::make_unique<RowSource>(*this, first, end));
}

std::vector<sptr_t<RowNode>> Dataset::rowsBelow(const sptr_t<RowNode>& above) const {
    std::vector<sptr_t<RowNode>> below;
    const auto place = placeOf(m_rows, above.get());
    for (auto next = place + 1; next < m_table->ends[place]; next = m_table->ends[next])
        below.push_back(row(next));
    return below;
}

class RowNavigator final : public RefCounted<IRowNavigator> {
public:
    explicit RowNavigator(sptr_t<const Dataset> dataset) : m_dataset(std::move(dataset)) {}
    generic_iterator_t<RowIterator> getRelatedRows(int relation, const sptr_t<RowNode>& row, int,
                                                   int) const override {
        if (relation != kRowsBelow || !m_dataset->has(row)) return {};
        return makeIterator(std::vector<RowIterator>{makeIterator(m_dataset->rowsBelow(row))});
    }

private:
    const sptr_t<const Dataset> m_dataset;
};

template <class Specification>
void Part<Specification>::addRef() const noexcept {
    m_owner->addRef();
}
template <class Specification>
void Part<Specification>::release() const noexcept {
    m_owner->release();
}

std::size_t Row::index() const { return owner().placeOfRow(*this); }
std::uint64_t Row::getId() const { return static_cast<std::uint64_t>(owner().table().ids[index()]); }
std::uint64_t Row::getRowType() const { return owner().table().types[index()]; }

sptr_t<RowNode> Row::getParent() const {
    const auto parent = owner().isTree() ? owner().table().parents[index()] : RowTable::kNoParent;
    return parent == RowTable::kNoParent ? nullptr : owner().row(parent);
}

int Row::getChildren(RowIterator& children, int, int) const {
    const auto place = index();
    const auto count = owner().isTree() ? owner().table().childCounts[place] : 0;
    if (count == 0) return -1;
    children = owner().rows(place + 1, owner().table().ends[place]);
    return static_cast<int>(count);
}

std::vector<std::string> Row::boundedBy() const {
    const auto& bounds = owner().table().bounds;
    const auto place = index();
    std::vector<std::string> names;
    const auto isBefore = [](const auto& bound, std::size_t row) { return bound.first < row; };
    for (auto bound = std::lower_bound(bounds.begin(), bounds.end(), place, isBefore);
         bound != bounds.end() && bound->first == place; ++bound) {
        names.push_back(bound->second);
    }
    return names;
}

class RowLinker final : public IDatasetRowLinker {
public:
    explicit RowLinker(sptr_t<const Dataset> target) : m_target(std::move(target)) {
        const auto& ids = m_target->table().ids;
        m_places.reserve(ids.size());
        for (std::size_t place = 0; place < ids.size(); ++place) {
            if (ids[place] >= 0) m_places.emplace_back(static_cast<std::uint64_t>(ids[place]), place);
        }
        if (!std::is_sorted(m_places.begin(), m_places.end())) std::sort(m_places.begin(), m_places.end());
    }
    sptr_t<RowNode> getLinkedRow(const sptr_t<RowNode>& row) const override {
        if (!row) return {};
        const auto id = row->getId();
        const auto found = std::lower_bound(m_places.begin(), m_places.end(), std::pair(id, std::size_t{0}));
        if (found == m_places.end() || found->first != id) return {};
        return m_target->row(found->second);
    }

private:
    const sptr_t<const Dataset> m_target;
    std::vector<std::pair<std::uint64_t, std::size_t>> m_places;  // by id, of the rows that a file has
};

}  // namespace

std::shared_ptr<IDatasetRowLinker> makeRowLinker(const sptr_t<IDataset>& target) {
    const auto* const dataset = dynamic_cast<const Dataset*>(target.get());
    return dataset ? std::make_shared<RowLinker>(sptr_t<const Dataset>(dataset)) : nullptr;
}

sptr_t<IDataset> makeDataset(std::shared_ptr<const RowTable> table, DataType type, RowOrder order) {
    return sptr_t<IDataset>(new Dataset(std::move(table), type, order));
}

sptr_t<IRowNavigator> makeRowNavigator(const sptr_t<IDataset>& dataset) {
    return sptr_t<IRowNavigator>(new RowNavigator(&static_cast<const Dataset&>(*dataset)));
}

}  // namespace embedded_host
