// What a result file leaves out and can be worked out of what it says.
#pragma once

#include "embedded_host/embedded_host.h"
#include "embedded_host/result/columns.h"

namespace embedded_host {

// Fills the cells that rules give, column by column. A cell that is there stays; a cell whose operands are
// missing stays missing, and so does one that would not be finite. `usedThreads` is at least 1.
void derive(RowTable& table, ResultKind kind, std::uint32_t usedThreads);

}  // namespace embedded_host
