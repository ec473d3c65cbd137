// What a cell of any kind reads as, attributes of bags, and the order in which a message is looked for.
#include "roofline_model/row_data_access.h"

#include "roofline_model/bag_helpers.h"
#include "roofline_model/translation.h"

#include "tests/roofline_model/test_host.h"

#include <gtest/gtest.h>

#include <limits>

namespace data_models2 {
namespace {

constexpr FieldId kField = FieldId::SelfTime;
constexpr double kInfinity = std::numeric_limits<double>::infinity();

// A dataset of one row with one cell; none when `cell` is nothing.
sptr_t<IDataset> datasetOf(const std::optional<variant_t>& cell) {
    test::Table table;
    table.rows.resize(2);
    table.rows[1].cells[kField] = 0.0;
    if (cell) table.rows[0].cells[kField] = *cell;
    return new test::Dataset(table);
}

// What is read, then what came of it instead of a default where that isn't the same: "-" where nothing was
// read.
template <class T>
std::string readAs(const sptr_t<IDataset>& dataset, const T& untouched) {
    const auto row = test::rowsOf(dataset).front();
    T required = untouched;
    const bool isThere = requireData<T>(kField, required, row, dataset);
    const T checked = checkData<T>(kField, untouched, row, dataset);
    EXPECT_EQ(isThere, required != untouched);
    const auto first = isThere ? fmt::format("{}", required) : "-";
    return checked == required && isThere ? first : first + (checked == untouched ? "|default" : "|another");
}

TEST(CellReading, ConvertsEveryKindToEveryType) {
    // As a double, unsigned, signed, text.
    const std::tuple<std::optional<variant_t>, const char*, const char*, const char*, const char*> cases[]{
        {true, "1", "1", "1", "|default"},
        {-5, "-5", "18446744073709551611", "-5", "|default"},
        {std::numeric_limits<std::int64_t>::min(), "-9.223372036854776e+18", "9223372036854775808",
         "-9223372036854775808", "|default"},
        // An unsigned number with the top bit set stays positive.
        {0x8000000000000001u, "9.223372036854776e+18", "9223372036854775809", "-9223372036854775807",
         "|default"},
        {-2.5, "-2.5", "0", "-2", "|default"},
        {1e30, "1e+30", "18446744073709551615", "9223372036854775807", "|default"},
        {-kInfinity, "-inf", "0", "-9223372036854775808", "|default"},
        {"12", "0|default", "0|default", "0|default", "12"},
        {variant_t::literal("x"), "0|default", "0|default", "0|default", "x"},
        {std::nullopt, "-|default", "-|default", "-|default", "-|default"},
    };
    for (const auto& [cell, asDouble, asUnsigned, asSigned, asText] : cases) {
        const auto dataset = datasetOf(cell);
        SCOPED_TRACE(cell ? fmt::format("kind {}: {}", cell->kind(), toText(*cell)) : "missing");
        EXPECT_EQ(readAs<double>(dataset, -77.0), asDouble);
        EXPECT_EQ(readAs<unsigned long long>(dataset, 77), asUnsigned);
        EXPECT_EQ(readAs<long long>(dataset, -77), asSigned);
        EXPECT_EQ(readAs<std::string>(dataset, "untouched"), asText);
    }
    // A field that no row has is missing, NaN is a value, and no integer.
    double number = -77.0;
    const auto notANumber = datasetOf(std::nan(""));
    const auto row = test::rowsOf(notANumber).front();
    EXPECT_FALSE(requireData<double>(FieldId::TotalTime, number, row, notANumber));
    EXPECT_TRUE(requireData<double>(kField, number, row, notANumber) && std::isnan(number));
    EXPECT_EQ(checkData<long long>(kField, 5, row, notANumber), 0);
}

TEST(Bags, ReplaceAttributesAndReadWhatFits) {
    variant_bag_t bag;
    for (const double value : {1.0, 2.5}) VBagHelper::addAttribute(bag, VBagAttr<double>{"z", value});
    VBagHelper::addAttribute(bag, VBagAttr<std::string>{"b", "x"});
    EXPECT_EQ(bag.size(), 2u);
    EXPECT_EQ(getBagAttribute<long long>(bag, "z", 7), 2);
    EXPECT_EQ(getBagAttribute<double>(bag, "b", 7.0), 7.0) << "a text is no number";
}

TEST(Messages, OfThePlatformAndWithTheSuffixComeFirst) {
    using namespace roofline;
    EXPECT_EQ(translateEx("a", "_s", "x"), "[a_lin_s x]");
    EXPECT_EQ(translateEx("b", "_s", "x"), "[b_s x]");
    EXPECT_EQ(translateEx("c", "_s", "x"), "[c_lin x]_s");
    EXPECT_EQ(translateEx("e", "_s", "x"), "e_s");
    EXPECT_EQ(translate("a") + translate("b", 1.5) + translate("d", variant_t()) + translate("e", "x"),
              "[a_lin ][b_lin 1.5][d ]e");
}

}  // namespace
}  // namespace data_models2
