// The lines of rows as a table for people, as CSV and as JSON.
#pragma once

#include "cli/row_lines.h"

#include <cstddef>
#include <string>
#include <vector>

namespace cli {

struct RowTableRequest {
    std::vector<RowLine> lines;  // sorted
    std::size_t top = 0;         // rows to show; 0: all
    bool levels = false;         // a line for each memory level
    std::string configuration;
    bool isTotal = false;
    int threads = 0;  // chosen; 0: each row's own
    int packages = 1;
    bool single = false;
};

// Rows that aren't shown are counted below the table, and every mark is explained there.
std::string rowsText(const RowTableRequest& request);
std::string rowsCsv(const RowTableRequest& request);
// An object: what was chosen, and "rows".
std::string rowsJson(const RowTableRequest& request);

}  // namespace cli
