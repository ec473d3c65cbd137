// Tables and texts as people and programs get them.
#include "cli/table.h"

#include "cli/chart_table.h"
#include "cli/text.h"
#include "tests/cli/chart_texts.h"

#include <gtest/gtest.h>

#include <cmath>

namespace cli {
namespace {

TEST(Table, ShowsAChartBySharesAndTellsWhatIsMissing) {
    auto document = parseChartDocument(test::documentText({{"short", -1.0, 0.0, 0.5},
                                                           {"much too long", std::log10(1234.2), 2.0, 30.0},
                                                           {"two", 0.0, -4.0, 4.0}},
                                                          20.0));
    document.points[2].share.reset();
    EXPECT_EQ(chartText(document, {5, 3, {{"no traffic", 2}}}),
              "name             intensity [FLOP/byte]  performance [GFLOP/s]  share of time\n"
              "much too long                     1234                    100         150 %!\n"
              "two                                  1                 0.0001           20 %\n"
              "short                              0.1                      1            N/A\n"
              "(program total)                      1                      1          total\n"
              "\n"
              "5 rows: 3 drawn, 2 not: 2 no traffic\n"
              "! more than the program's own time\n");
}

TEST(Table, CsvQuotesWhatNeedsItAndLeavesMissingCellsEmpty) {
    const Table table{{{"", "a,b"}, {"", "n", Column::Kind::Number}},
                      {{std::string("say \"x\"\n"), 0.1},
                       {std::string("plain"), std::monostate()},
                       {std::string(), HUGE_VAL}}};
    EXPECT_EQ(toCsv(table), "\"a,b\",n\n\"say \"\"x\"\"\n\",0.1\nplain,\n,\n");
}

TEST(Text, IsCleanedForTerminalsAndPictures) {
    const std::tuple<const char*, const char*, const char*> rows[] = {
        {"valid UTF-8", "<b>\xC3\xA9\xE4\xB8\xAD\xF0\x9F\x98\x80", "<b>\xC3\xA9\xE4\xB8\xAD\xF0\x9F\x98\x80"},
        {"white space", "a\tb\nc", "a b c"},
        {"terminal control", "\x1b[2J\x07z\x7f\xC2\x9B", "[2Jz"},
        {"direction override", "a\xE2\x80\xAEz", "az"},
        {"lone continuation", "a\x80", "a\xEF\xBF\xBD"},
        {"overlong", "\xC0\xAF", "\xEF\xBF\xBD\xEF\xBF\xBD"},
        {"surrogate", "\xED\xA0\x80", "\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD"},
    };
    for (const auto& [name, text, expected] : rows) EXPECT_EQ(cleanText(text), expected) << name;
}

TEST(Text, IsCutBetweenCodePoints) {
    EXPECT_EQ(shorten("abcdef", 6), "abcdef");
    EXPECT_EQ(shorten("abcdef", 4), "abc\xE2\x80\xA6");
    EXPECT_EQ(shorten("\xE4\xB8\xAD\xE4\xB8\xAD\xE4\xB8\xAD", 2), "\xE4\xB8\xAD\xE2\x80\xA6");
    EXPECT_EQ(length(shorten("abc", 0)), 1u);
}

}  // namespace
}  // namespace cli
