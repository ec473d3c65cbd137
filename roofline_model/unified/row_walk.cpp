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
        reportAssertion("!children.isEnd()", "roofline_model/unified/row_walk", __LINE__);
    append(rows, std::move(children), parent);
}

bool isSkipped(const RowNode& row) {
    const auto specification = row.getSpecification();
    return !specification || specification->getRowType() & kSkippedRowTypes;
}

}  // namespace

void forEachDatasetRows4Loops(const sptr_t<IDataset>& dataset, const RowHandler& rowHandler,
                              const RowFilter& rowFilter) {
    if (!dataset) return;
    std::vector<Entry> rows;  // grows while it is gone through
    append(rows, dataset->getRows(0), -1);
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const auto [row, parent] = std::exchange(rows[i], {});
        if (!row || (rowFilter && !rowFilter(dataset, row)) || isSkipped(*row) || !rowHandler) continue;
        const int own = rowHandler(dataset, row, parent);
        if (own >= 0) appendChildren(rows, *row, own);
    }
}

bool hasValue(const sptr_t<IDataset>& dataset, FieldId field) {
    const auto column = dataset ? dataset->getColumn(field) : nullptr;
    if (!column) return false;
    std::vector<Entry> rows;
    append(rows, dataset->getRows(0), -1);
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const auto row = std::exchange(rows[i], {}).first;
        variant_t cell;
        if (!row) continue;
        if (!isSkipped(*row) && dataset->getValue(row, column, 0, cell)) return true;
        appendChildren(rows, *row, -1);
    }
    return false;
}

}  // namespace data_models2
