// Rows above a roof of their own memory level: they stay where they were measured, and that is said.
#pragma once

#include "cli/chart_document.h"
#include "cli/row_lines.h"
#include "cli/session.h"

#include <cstddef>
#include <string>
#include <vector>

namespace cli {

struct RowsAbove {
    std::string roof;
    std::size_t count = 0;
    double most = 1.0;  // of the roof's height, above 1
};

// Of a chart's points; `roofs` is the library's text, `configuration` complete. A chart without levels has
// none.
std::vector<RowsAbove> rowsAbove(const Session& session, const ChartDocument& document,
                                 const std::string& roofs, const std::string& configuration);
std::vector<RowsAbove> rowsAbove(const std::vector<RowLine>& lines);

// "97 rows above HBM Bandwidth, by up to 7.1 %", for each roof; empty for none.
std::string aboveSentence(const std::vector<RowsAbove>& above);

}  // namespace cli
