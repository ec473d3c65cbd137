// Names are normalised as the regular expressions that define it would, at any length.
#include "results_comparer/name_normaliser.h"

#include <gtest/gtest.h>
#include <rapidcheck.h>

#include <regex>

namespace data_models2::results_comparer_algs {
namespace {

std::string byExpressions(std::string name) {
    name = std::regex_replace(name, std::regex("at line [0-9]+ "), "");
    while (name.starts_with('_')) name.erase(0, 1);
    for (const std::string marker : {"_par_loop", "_par_region"})
        if (const auto at = name.rfind(marker); at != std::string::npos) name.erase(at);
    return std::regex_replace(name, std::regex("Loop@0x[0-9,a-z]+ "), "");
}

TEST(NameNormaliser, agrees_with_the_regular_expressions_on_any_name) {
    const auto piece =
        rc::gen::element<std::string>("at line ", "at ", "line", " ", "0", "7,", "_", "_par_loop",
                                      "_par_region", "_par", "Loop@0x", "Loop@", "L", "x", "af", "F");
    EXPECT_TRUE(rc::check([&] {
        std::string name;
        for (const auto& part : *rc::gen::container<std::vector<std::string>>(piece)) name += part;
        RC_ASSERT(normaliseName(name) == byExpressions(name));
    }));
}

TEST(NameNormaliser, keeps_what_builds_have_in_common) {
    for (const auto& [name, kept] : {std::pair{"__solve_par_region3_2.x", "solve"},
                                     {"solve_par_loop_par_loop1", "solve_par_loop"},
                                     {"Loop@0x4,01f at line 12 in solve", "in solve"},
                                     {"_par_loop1", "par_loop1"},
                                     {"Loop@0x4F main", "Loop@0x4F main"},
                                     {"____", ""}})
        EXPECT_EQ(normaliseName(name), kept) << name;
}

TEST(NameNormaliser, takes_names_of_any_length) {
    const std::string digits(200000, '7');
    EXPECT_EQ(normaliseName("at line " + digits + " f"), "f");
    EXPECT_EQ(normaliseName("Loop@0x" + digits), "Loop@0x" + digits);
    std::string marks;
    for (int i = 0; i < 20000; ++i) marks += "at line 7";
    EXPECT_EQ(normaliseName(marks), marks);
}

}  // namespace
}  // namespace data_models2::results_comparer_algs
