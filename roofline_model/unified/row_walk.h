// The walk over the rows of a chart.
#pragma once

#include "host_interfaces/model.h"

#include <cstdint>
#include <functional>

namespace data_models2 {

// Rows of these types are no loops or functions of interest (hidden, inlined): neither they nor what is below
// them takes part in a chart.
inline constexpr std::uint64_t kSkippedRowTypes = 0x2 | 0x4 | row_type::kHidden;

using RowFilter = std::function<bool(const sptr_t<IDataset>&, const sptr_t<RowNode>&)>;
using RowHandler = std::function<int(const sptr_t<IDataset>&, const sptr_t<RowNode>&, int parent)>;

// Visits the rows level by level. `rowFilter` sees every row first; false leaves the row and all below it
// out. The handler gets the record index of the row's parent (-1 at the top) and returns the row's own; a
// negative result leaves the children out. Both may be empty.
void forEachDatasetRows4Loops(const sptr_t<IDataset>& dataset, const RowHandler& rowHandler,
                              const RowFilter& rowFilter);

// Whether any row but those of the skipped types has a value of the field; looks below these too.
bool hasValue(const sptr_t<IDataset>& dataset, FieldId field);

}  // namespace data_models2
