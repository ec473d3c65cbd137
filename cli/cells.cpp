// Asking a dataset for one cell.
#include "cli/cells.h"

namespace cli {

using namespace data_models2;

std::optional<double> numberIn(const IDataset& dataset, const sptr_t<RowNode>& row,
                               const sptr_t<ColumnNode>& column) {
    variant_t value;
    if (!column || !dataset.getValue(row, column, 0, value)) return {};
    return value.toDouble();
}

std::string textIn(const IDataset& dataset, const sptr_t<RowNode>& row, const sptr_t<ColumnNode>& column) {
    std::string value;
    return column && dataset.getString(row, column, 0, value) ? value : std::string();
}

}  // namespace cli
