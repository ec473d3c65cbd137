// The operations of projected regions by data type, in the form in which devices count theirs.
#pragma once

#include "host_interfaces/model.h"

#include "roofline_model/operation_map.h"

#include <memory>

namespace data_models2 {

// Those of one row. All stand under basic instructions, since a projection knows no others; how many
// instructions there were isn't known, and a type without operations has no entry.
OperationMap getOffloadOperations(const sptr_t<RowNode>& row, const sptr_t<IDataset>& dataset);

// Of all rows that took time on the target, as the program's metrics count them; null for a null dataset.
std::shared_ptr<const OperationMap> getOffloadProgramOperations(const sptr_t<IDataset>& dataset);

}  // namespace data_models2
