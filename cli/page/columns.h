// The values of many charts, each distinct column and each distinct text once.
#pragma once

#include "cli/page/writer.h"

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace cli::page {

// One value a row, NaN where there is none.
using Column = std::vector<double>;
using RowMask = std::vector<bool>;

class Columns {
public:
    // The index of a column that says the same as `column` for the rows that are `asked`; of the others
    // nothing is promised. Values are rounded as they will be written.
    std::size_t add(Column column, const RowMask& asked);
    void write(Writer& writer) const;

private:
    std::vector<Column> m_columns;
    std::vector<RowMask> m_promised;
};

class Dictionary {
public:
    std::size_t add(const std::string& text);
    // Nothing for an empty text.
    void writeIndex(Writer& writer, const std::string& text);
    void write(Writer& writer) const;

private:
    std::vector<std::string> m_texts;
    std::map<std::string, std::size_t> m_places;
};

}  // namespace cli::page
