// The chart as a table for people and as CSV.
#pragma once

#include "cli/chart_document.h"
#include "cli/table.h"
#include "cli/unplaced_rows.h"

#include <string>

namespace cli {

// Points by share of time, then the program's totals, then what is missing and why.
std::string chartText(const ChartDocument& document, const RowCount& count);
// One line a point.
std::string chartCsv(const ChartDocument& document);
// "67 rows: 56 drawn, 11 not: 11 no float operations".
std::string countSentence(std::size_t drawn, const std::vector<UnplacedRows>& unplaced);

}  // namespace cli
