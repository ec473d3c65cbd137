// Tables of comma-separated values: what is read, and what is refused and where.
#include "embedded_host/result/csv_reader.h"

#include "tests/embedded_host/result_text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <rapidcheck.h>

#include <string>
#include <vector>

namespace {

using embedded_host::CsvReader;
using Table = std::vector<std::vector<std::string>>;

// The header is the first row.
Table readAll(const std::string& text) {
    CsvReader reader(text, "t.csv");
    std::vector<std::vector<std::string_view>> rows{reader.header()};
    for (std::vector<std::string_view> cells; reader.next(cells);) rows.push_back(cells);
    Table table;  // copied only now: later rows must leave the views of earlier ones alone
    for (const auto& row : rows) table.emplace_back(row.begin(), row.end());
    return table;
}

TEST(CsvReader, ReadsEveryFormOfCellAndLineEnd) {
    const std::pair<std::string, Table> cases[] = {
        {"\xEF\xBB\xBF\"a\"\n1\n", {{"a"}, {"1"}}},
        {"a,b,c\n,,\n,x,", {{"a", "b", "c"}, {"", "", ""}, {"", "x", ""}}},
        {"a,b\n x ,\t\n", {{"a", "b"}, {" x ", "\t"}}},
        {"\n\na,b\n\r\n1,2\n\n\n", {{"a", "b"}, {"1", "2"}}},
        {"a\n\"\"\n1\n", {{"a"}, {""}, {"1"}}},
        {"a,b\n1\r2,3\n", {{"a", "b"}, {"1\r2", "3"}}},
        {std::string("a,b\n1\0x,2\n", 10), {{"a", "b"}, {std::string("1\0x", 3), "2"}}},
    };
    for (const auto& [text, rows] : cases) EXPECT_EQ(readAll(text), rows) << text;
}

TEST(CsvReader, RefusesBrokenTablesAndNamesTheLine) {
    const std::pair<std::string, std::string> cases[] = {
        {"", "t.csv: line 1: the table is empty"},
        {"a,b\n1,2\n3\n", "t.csv: line 3: expected 2 cells as in the header, found 1"},
        {"a,b\n\"x\n\ny\",2\n3\n", "line 5: expected 2 cells"},
        {"a,b\n1,\"2\"\"", "line 2: a quoted cell begins here and never ends"},
        {"a,b\n\"1\"x,2\n", "line 2: text behind the closing quote of column 1"},
        {"a,b\n1, \"2\"\n", "line 2: a quote inside a cell"},
        {"a,b,a\n", "line 1: the column \"a\" stands twice"},
        {"a,,c\n", "line 1: column 2 has no name"},
    };
    for (const auto& [text, fault] : cases)
        EXPECT_THAT(embedded_host::test::faultOf([&, t = text] { readAll(t); }), testing::HasSubstr(fault));
}

std::string written(const std::string& cell, bool isAlone) {
    const bool mustQuote = cell.find_first_of(",\"\n\r") != std::string::npos || (isAlone && cell.empty());
    if (!mustQuote && *rc::gen::arbitrary<bool>()) return cell;
    std::string text = "\"";
    for (const char c : cell) text.append(c == '"' ? 2 : 1, c);
    return text + '"';
}

TEST(CsvReader, GivesBackWhateverTableWasWritten) {
    EXPECT_TRUE(rc::check([] {
        const int width = *rc::gen::inRange(1, 5);
        const int height = *rc::gen::inRange(0, 8);
        const auto cell =
            rc::gen::container<std::string>(rc::gen::element('a', '1', ' ', ',', '"', '\n', '\r', '\xC3'));
        Table table(1);
        for (int i = 0; i < width; ++i) table[0].push_back("c" + std::to_string(i));
        for (int i = 0; i < height; ++i)
            table.push_back(*rc::gen::container<std::vector<std::string>>(width, cell));

        const std::string lineEnd = *rc::gen::element<std::string>("\n", "\r\n");
        std::string text = *rc::gen::element<std::string>("", "\xEF\xBB\xBF");
        for (const auto& row : table) {
            for (const auto& each : row) text += written(each, width == 1) + ',';
            text.pop_back();
            text += lineEnd;
        }
        if (*rc::gen::arbitrary<bool>()) text.resize(text.size() - lineEnd.size());
        RC_ASSERT(readAll(text) == table);
    }));
}

}  // namespace
