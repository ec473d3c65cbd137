// Tables as people read them and as CSV.
#pragma once

#include <string>
#include <variant>
#include <vector>

namespace cli {

struct Column {
    enum class Kind { Text, Number, Percent };
    std::string title;  // for people, with the unit
    std::string key;    // of the CSV
    Kind kind = Kind::Text;
};

// Nothing: a missing value. A percentage is held as a fraction.
using Cell = std::variant<std::monostate, std::string, double>;

struct Table {
    std::vector<Column> columns;
    std::vector<std::vector<Cell>> rows;  // as many cells as columns
};

// Aligned; four significant digits; "N/A" for a missing value, "!" behind more than 100 percent.
std::string toText(const Table& table);
// RFC 4180 quoting, lines end with "\n"; numbers in full precision, a missing value is an empty cell, and a
// percentage stays a fraction.
std::string toCsv(const Table& table);

}  // namespace cli
