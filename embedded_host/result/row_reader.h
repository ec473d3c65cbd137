// Reads the tree of rows of a result file into a table.
#pragma once

#include "embedded_host/result/columns.h"
#include "embedded_host/result/json_reader.h"
#include "embedded_host/result/kinds.h"

namespace embedded_host {

// The rows of the member `rows`, checked, with the cells as given; nothing is derived but the type bits.
// Throws FileError.
RowTable readRows(const JsonFile& file, const JsonValue& rows, const KindTraits& kind);

}  // namespace embedded_host
