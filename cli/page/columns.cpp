// Sharing of columns: the same intensity is drawn by many configurations.
#include "cli/page/columns.h"

#include <algorithm>
#include <cmath>

namespace cli::page {
namespace {

bool isSame(double a, double b) { return a == b || (std::isnan(a) && std::isnan(b)); }

}  // namespace

std::size_t Columns::add(Column column, const RowMask& asked) {
    std::transform(column.begin(), column.end(), column.begin(), roundNumber);
    const auto serves = [&](std::size_t index) {
        for (std::size_t row = 0; row < column.size(); ++row)
            if (asked[row] && m_promised[index][row] && !isSame(m_columns[index][row], column[row]))
                return false;
        return true;
    };
    for (std::size_t index = 0; index < m_columns.size(); ++index) {
        if (!serves(index)) continue;
        for (std::size_t row = 0; row < column.size(); ++row)
            if (asked[row]) m_columns[index][row] = column[row], m_promised[index][row] = true;
        return index;
    }
    m_columns.push_back(std::move(column));
    m_promised.push_back(asked);
    return m_columns.size() - 1;
}

void Columns::write(Writer& writer) const {
    writer.array(m_columns, [&](const Column& column) {
        writer.array(column, [&](double value) { writer.Double(value); });
    });
}

std::size_t Dictionary::add(const std::string& text) {
    const auto [place, isNew] = m_places.emplace(text, m_texts.size());
    if (isNew) m_texts.push_back(text);
    return place->second;
}

void Dictionary::writeIndex(Writer& writer, const std::string& text) {
    text.empty() ? void(writer.Null()) : void(writer.Uint64(add(text)));
}

void Dictionary::write(Writer& writer) const {
    writer.array(m_texts, [&](const std::string& text) { writer.text(text); });
}

}  // namespace cli::page
