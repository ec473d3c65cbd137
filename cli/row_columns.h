// The machine-readable columns of rows: one list makes CSV and JSON, so that both carry the same values.
#pragma once

#include "cli/json.h"
#include "cli/row_lines.h"
#include "cli/table.h"

#include <span>
#include <utility>
#include <vector>

namespace cli {

// Units stand in the keys: gop is 1e9 operations, gb 1e9 bytes. Fractions and shares are 1 for the whole.
struct RowColumn {
    const char* key;
    Cell (*cell)(const RowLine&);
};
struct LevelColumn {
    const char* key;
    Cell (*cell)(const RowLine&, const LevelLine&);
};

// What names a row and holds for all of its levels.
std::span<const RowColumn> rowColumns();
// The row's total point and what limits it.
std::span<const RowColumn> verdictColumns();
// One level of a row.
std::span<const LevelColumn> levelColumns();

void writeMember(json::Writer& writer, const char* key, const Cell& cell);
// An object with a member for each cell.
void writeCells(json::Writer& writer, const char* key,
                const std::vector<std::pair<const char*, Cell>>& members);
// The members of one object: all of `rowColumns` and `verdictColumns`, and whether the row is valid.
void writeMembers(json::Writer& writer, const RowLine& row);

Cell cellOf(const std::optional<double>& value);
// An empty text is a missing one.
Cell cellOf(const std::string& text);

}  // namespace cli
