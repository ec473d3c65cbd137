// Datasets as views on a table of rows.
#pragma once

#include "host_interfaces/model.h"

#include "embedded_host/result/columns.h"

#include <memory>

namespace embedded_host {

enum class RowOrder { Flat, Tree };  // all rows at the top, or the file's tree

// Rows, columns and iterators that it gives keep the dataset, and with it the table, alive.
data_models2::sptr_t<data_models2::IDataset> makeDataset(std::shared_ptr<const RowTable> table,
                                                         data_models2::DataType type, RowOrder order);

// Finds rows below rows of `dataset`, which `makeDataset` made; keeps it alive.
data_models2::sptr_t<data_models2::IRowNavigator> makeRowNavigator(
    const data_models2::sptr_t<data_models2::IDataset>& dataset);

// Leads to the rows of `target`, which `makeDataset` made; null for any other dataset.
std::shared_ptr<data_models2::IDatasetRowLinker> makeRowLinker(
    const data_models2::sptr_t<data_models2::IDataset>& target);

}  // namespace embedded_host
