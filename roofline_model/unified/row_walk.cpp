#include "roofline_model/unified/row_walk.h"

#include "host_interfaces/host_functions.h"

#include <utility>
#include <vector>

namespace data_models2 {

namespace {

using Entry = std::pair<sptr_t<RowNode>, int>;

void append(std::vector<Entry>& rows, RowIterator iterator, int parent) {
    for (; !iterator.isEnd(); ++iterator) rows.emplace_back(*iterator, parent);
}

void appendChildren(std::vector<Entry>& rows, const RowNode& row, int parent) {
    RowIterator children;
    const int count = row.getChildren(children, 0, 1);
    if (count < 0) return;
    if (count > 0 && children.isEnd())
        reportAssertion("!children.isEnd()", "roofline_model/unified/loops", __LINE__);
    append(rows, std::move(children), parent);
}

}  // namespace

void forEachDatasetRows4Loops(const sptr_t<IDataset>& dataset, const RowHandler& rowHandler,
                              const RowFilter& rowFilter) {
    if (!dataset) return;
    std::vector<Entry> rows;  // grows while it is gone through
    append(rows, dataset->getRows(0), -1);
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const auto [row, parent] = std::exchange(rows[i], {});
        if (!row || (rowFilter && !rowFilter(dataset, row))) continue;
        const auto specification = row->getSpecification();
        if (!specification || specification->getRowType() & kSkippedRowTypes || !rowHandler) continue;
        const int own = rowHandler(dataset, row, parent);
        if (own >= 0) appendChildren(rows, *row, own);
    }
}

bool hasValue(const sptr_t<IDataset>& dataset, FieldId field) {
    const auto column = dataset ? dataset->getColumn(field) : nullptr;
    if (!column) return false;
    bool found = false;
    const auto look = [&](const sptr_t<IDataset>&, const sptr_t<RowNode>& row, int) {
        variant_t cell;
        found = dataset->getValue(row, column, 0, cell);
        return found ? -1 : 0;
    };
    const auto stillLooking = [&](const sptr_t<IDataset>&, const sptr_t<RowNode>&) { return !found; };
    forEachDatasetRows4Loops(dataset, look, stillLooking);
    return found;
}

}  // namespace data_models2
