// Variants, iterators, signals, and numbers as texts.
#include "host_interfaces/host_functions.h"
#include "host_interfaces/signals.h"

#include "embedded_host/embedded_host.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <locale>

namespace data_models2 {
namespace {

// Knows how many of its kind live.
class Counted final : public RefCounted<IRefCounted> {
public:
    Counted() { ++alive; }
    ~Counted() override { --alive; }
    static inline int alive = 0;
};

TEST(Variants, ShareAndReleaseWhatTheyHold) {
    {
        auto object = variant_t::object(new Counted);
        auto copy = object;
        const auto moved = std::move(object);
        EXPECT_TRUE(object.isEmpty());
        copy = *&copy;
        EXPECT_EQ(copy.object(), moved.object());
        copy = variant_t(1);
        EXPECT_EQ(Counted::alive, 1);
        copy = moved;
        std::swap(copy, object);
        EXPECT_TRUE(copy.isEmpty());
    }
    EXPECT_EQ(Counted::alive, 0);
    EXPECT_TRUE(variant_t::object(nullptr).isEmpty());
}

TEST(Variants, GiveNumbersAndTexts) {
    const std::tuple<variant_t, int, double, const char*> rows[] = {
        {true, 0, 1.0, "1"},
        {std::numeric_limits<std::uint32_t>::max(), 7, 4294967295.0, "4294967295"},
        {std::numeric_limits<std::int64_t>::min(), 8, -9223372036854775808.0, "-9223372036854775808"},
        {std::numeric_limits<std::uint64_t>::max(), 9, 18446744073709551615.0, "18446744073709551615"},
        {0.1f, 10, static_cast<double>(0.1f), "0.1"},
        {1234567.0, 11, 1234567.0, "1.23457e+06"},
        {variant_t::object(new Counted), 18, 0.0, ""},
    };
    for (const auto& [value, kind, number, text] : rows) {
        EXPECT_EQ(value.kind(), kind) << text;
        EXPECT_EQ(value.toDouble(), number) << text;
        EXPECT_EQ(toText(value), text);
    }
}

TEST(Iterators, AreIndependentPositions) {
    auto first = makeIterator(std::vector<std::string>{"a", "b", "c"});
    ++first;
    auto second = first;
    ++ ++ ++second;
    EXPECT_TRUE(second.isEnd()) << "the end stays";
    EXPECT_EQ(*first, "b");
    second = first;
    ++first;
    EXPECT_EQ(*second, "b");
    EXPECT_EQ(*first, "c");

    generic_iterator_t<int> none;
    EXPECT_TRUE(none.isNull() && none.isEnd() && (++none).isEnd());
}

TEST(Signals, LetASlotCutItselfWhileTheyAreRaised) {
    signal_t<int> signal;
    subscriber_base_t once, always;
    std::string heard;
    signal.connect(once, [&](int value) {
        heard += "once" + std::to_string(value) + ' ';
        signal.disconnect(once);
    });
    signal.connect(always, [&](int value) { heard += std::to_string(value) + ' '; });
    signal.raise(1);
    signal.raise(2);
    EXPECT_EQ(heard, "once1 1 2 ");
}

TEST(Signals, AndSubscribersMayDieInAnyOrder) {
    int heard = 0;
    auto signal = std::make_unique<signal_t<>>();
    auto other = std::make_unique<signal_t<>>();
    signal->connect(*std::make_unique<subscriber_base_t>(), [&] { heard += 100; });
    subscriber_base_t subscriber;
    signal->connect(subscriber, [&] { ++heard; });
    other->connect(subscriber, [&] { heard += 10; });
    signal->raise();
    EXPECT_EQ(heard, 1);
    signal.reset();
    other->raise();
    EXPECT_EQ(heard, 11) << "the death of one signal leaves the other connected";
}

TEST(Numbers, AreShownWithSignificantDigits) {
    for (const auto& [value, expected] :
         {std::pair(-0.0, "0"), {1234567.0, "1234567"}, {0.09996, "0.1"}, {1.5e-9, "1.5e-09"}})
        EXPECT_EQ(embedded_host::formatNumber(value, 3), expected);
}

TEST(Numbers, AreShownWithFixedDigitsAndAUnit) {
    const std::tuple<double, const char*, int, double, const char*> rows[] = {
        {1234.5678, "", 3, 0.001, "1234.568"},
        {-0.0, "", 2, 0.001, "0.00"},
        {0.00099, "GB", 3, 0.001, "< 0.001 GB"},
        {-0.00099, "GB", 3, 0.001, "> -0.001 GB"},
        {3e-200, "s", 3, 0.0, "3e-200 s"},
        {0.7, "", 3, 1.0, "< 1"},
        {1e-9, "", 3, std::nan(""), "0.000000001"},
        {-1.25e300, "", 2, 0.001, "-1.25e+300"},
        {-std::numeric_limits<double>::infinity(), "", 3, 0.001, "N/A"},
    };
    for (const auto& [value, unit, precision, smallest, expected] : rows)
        EXPECT_EQ(double2str(value, unit, precision, smallest), expected);
    EXPECT_EQ(int2str(std::numeric_limits<long long>::min()), "-9223372036854775808");
}

// Some hosts set a locale of their own; the texts feed files and charts.
TEST(Numbers, AreTheSameInEveryLocale) {
    struct Comma : std::numpunct<char> {
        char do_decimal_point() const override { return ','; }
        char do_thousands_sep() const override { return '.'; }
        std::string do_grouping() const override { return "\3"; }
    };
    const auto before = std::locale::global(std::locale(std::locale::classic(), new Comma));
    EXPECT_EQ(toText(1234.5), "1234.5");
    EXPECT_EQ(embedded_host::formatNumber(1234.5, 6), "1234.5");
    EXPECT_EQ(double2str(1234.5, "GB", 2, 0.001), "1234.50 GB");
    std::locale::global(before);
}

}  // namespace
}  // namespace data_models2
