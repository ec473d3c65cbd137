// Cells of a dataset as values.
#pragma once

#include "host_interfaces/model.h"

#include <optional>
#include <string>

namespace cli {

// Nothing where the column is null or the row has no such value.
std::optional<double> numberIn(const data_models2::IDataset& dataset,
                               const data_models2::sptr_t<data_models2::RowNode>& row,
                               const data_models2::sptr_t<data_models2::ColumnNode>& column);
// Empty in these cases.
std::string textIn(const data_models2::IDataset& dataset,
                   const data_models2::sptr_t<data_models2::RowNode>& row,
                   const data_models2::sptr_t<data_models2::ColumnNode>& column);

}  // namespace cli
