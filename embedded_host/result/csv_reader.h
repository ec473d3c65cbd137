// Reads a table of comma-separated values (RFC 4180) row by row.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace embedded_host {

// The first row is the header. Lines end in LF or CRLF, the last one may lack its end; a byte order mark
// before the header and empty lines are skipped (an empty cell of a table with one column is written "").
// Blanks belong to the cell. Every error is a FileError that names file and line: no header, a column without
// or with a repeated name, a row of another length than the header, a quoted cell without end, a quote in a
// cell that doesn't begin with one.
class CsvReader {
public:
    // `file` is named in errors.
    CsvReader(std::string text, std::string file);
    CsvReader(const CsvReader&) = delete;  // the cells are views into `m_text`
    CsvReader& operator=(const CsvReader&) = delete;

    const std::vector<std::string_view>& header() const { return m_header; }
    std::optional<std::size_t> findColumn(std::string_view name) const;

    // Fills `cells`, one a column, and returns true; false after the last row. The views live as long as the
    // reader.
    bool next(std::vector<std::string_view>& cells);

    const std::string& file() const { return m_file; }
    // Where the row read last begins, from 1.
    std::size_t line() const { return m_rowLine; }
    // Lines below what was read: the number of rows left, unless cells hold line breaks or lines are empty.
    std::size_t linesLeft() const;
    // Of the text, header and all.
    std::size_t bytesRead() const { return m_at; }
    std::size_t bytesLeft() const { return m_text.size() - m_at; }

private:
    bool readRow(std::vector<std::string_view>& cells);
    std::string_view readQuoted();
    std::string_view readPlain();
    [[noreturn]] void fail(std::size_t line, std::string_view what) const;

    std::string m_text;  // doubled quotes of the cells already read are contracted in place
    std::string m_file;
    std::size_t m_at = 0;
    std::size_t m_line = 1;
    std::size_t m_rowLine = 1;
    std::vector<std::string_view> m_header;
};

}  // namespace embedded_host
