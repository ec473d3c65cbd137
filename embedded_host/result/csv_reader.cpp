// Reads comma-separated values in one pass; a cell costs no allocation.
#include "embedded_host/result/csv_reader.h"

#include "embedded_host/embedded_host.h"

#include <fmt/format.h>

#include <algorithm>
#include <unordered_set>
#include <utility>

namespace embedded_host {

namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

}  // namespace

CsvReader::CsvReader(std::string text, std::string file) : m_text(std::move(text)), m_file(std::move(file)) {
    if (m_text.starts_with(kByteOrderMark)) m_at = kByteOrderMark.size();
    if (!readRow(m_header)) fail(1, "the table is empty; expected a header with the names of the columns");

    std::unordered_set<std::string_view> names;
    for (std::size_t i = 0; i < m_header.size(); ++i) {
        if (m_header[i].empty()) fail(m_rowLine, fmt::format("column {} has no name", i + 1));
        if (!names.insert(m_header[i]).second)
            fail(m_rowLine, fmt::format("the column \"{}\" stands twice in the header", m_header[i]));
    }
}

std::optional<std::size_t> CsvReader::findColumn(std::string_view name) const {
    const auto found = std::find(m_header.begin(), m_header.end(), name);
    if (found == m_header.end()) return std::nullopt;
    return static_cast<std::size_t>(found - m_header.begin());
}

bool CsvReader::next(std::vector<std::string_view>& cells) {
    if (!readRow(cells)) return false;
    if (cells.size() != m_header.size())
        fail(m_rowLine,
             fmt::format("expected {} cells as in the header, found {}", m_header.size(), cells.size()));
    return true;
}

std::size_t CsvReader::linesLeft() const {
    const auto ends = std::count(m_text.begin() + m_at, m_text.end(), '\n');
    const bool lastLacksItsEnd = m_at < m_text.size() && m_text.back() != '\n';
    return static_cast<std::size_t>(ends) + (lastLacksItsEnd ? 1 : 0);
}

bool CsvReader::readRow(std::vector<std::string_view>& cells) {
    cells.clear();
    const auto skipLineEnd = [this] {
        if (m_text.compare(m_at, 2, "\r\n") == 0) ++m_at;
        if (m_at == m_text.size() || m_text[m_at] != '\n') return false;
        ++m_at;
        ++m_line;
        return true;
    };
    while (m_at < m_text.size() && skipLineEnd()) continue;
    if (m_at == m_text.size()) return false;

    m_rowLine = m_line;
    while (true) {
        const bool isQuoted = m_at < m_text.size() && m_text[m_at] == '"';
        cells.push_back(isQuoted ? readQuoted() : readPlain());
        if (m_at == m_text.size() || skipLineEnd()) return true;
        if (m_text[m_at] != ',')
            fail(m_line, fmt::format("text behind the closing quote of column {}", cells.size()));
        ++m_at;
    }
}

// Stands at the opening quote; stops behind the closing one. The text moves left over the quotes it loses.
std::string_view CsvReader::readQuoted() {
    const std::size_t firstLine = m_line;
    const std::size_t begin = ++m_at;
    std::size_t end = begin;
    while (true) {
        const std::size_t quote = m_text.find('"', m_at);
        if (quote == std::string::npos) fail(firstLine, "a quoted cell begins here and never ends");
        const bool isDoubled = quote + 1 < m_text.size() && m_text[quote + 1] == '"';
        const std::size_t stop = isDoubled ? quote + 1 : quote;
        m_line += static_cast<std::size_t>(std::count(m_text.begin() + m_at, m_text.begin() + stop, '\n'));
        if (end != m_at) std::copy(m_text.begin() + m_at, m_text.begin() + stop, m_text.begin() + end);
        end += stop - m_at;
        m_at = quote + (isDoubled ? 2 : 1);
        if (!isDoubled) return std::string_view(m_text).substr(begin, end - begin);
    }
}

// Stops at the comma, the line's end or the end of the text. A carriage return that ends no line is content.
std::string_view CsvReader::readPlain() {
    const std::size_t begin = m_at;
    const auto isEnd = [](char c) { return c == ',' || c == '\n' || c == '"'; };
    const auto stop = std::find_if(m_text.begin() + begin, m_text.end(), isEnd);
    m_at = static_cast<std::size_t>(stop - m_text.begin());
    if (stop != m_text.end() && *stop == '"')
        fail(m_line,
             "a quote inside a cell that doesn't begin with one; quote the whole cell and double the quote");
    if (stop != m_text.end() && *stop == '\n' && m_at > begin && m_text[m_at - 1] == '\r') --m_at;
    return std::string_view(m_text).substr(begin, m_at - begin);
}

void CsvReader::fail(std::size_t line, std::string_view what) const {
    throw FileError(fmt::format("{}: line {}: {}", m_file, line, what));
}

}  // namespace embedded_host
