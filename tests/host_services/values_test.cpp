// Variants, iterators, signals, and numbers as texts.
#include "host_interfaces/host_functions.h"
#include "host_interfaces/signals.h"

#include "embedded_host/embedded_host.h"

#include <gtest/gtest.h>

#include <clocale>
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
        EXPECT_EQ(copy.object(), moved.object());

        auto& self = copy;
        copy = self;
        EXPECT_EQ(copy.object(), moved.object());
        copy = std::move(self);
        EXPECT_EQ(copy.object(), moved.object());

        copy = variant_t(1);
        EXPECT_EQ(Counted::alive, 1);
        copy = moved;
        std::swap(copy, object);
        EXPECT_TRUE(copy.isEmpty());
    }
    EXPECT_EQ(Counted::alive, 0);
    EXPECT_TRUE(variant_t::object(nullptr).isEmpty());
    EXPECT_TRUE(variant_t(sptr_t<const SharedText>()).isEmpty());
}

TEST(Variants, GiveNumbersAndTexts) {
    const auto unsignedTop = std::numeric_limits<std::uint64_t>::max();
    const struct {
        variant_t value;
        int kind;
        double number;
        const char* text;
    } rows[] = {
        {true, 0, 1.0, "1"},
        {false, 0, 0.0, "0"},
        {std::numeric_limits<std::int32_t>::min(), 6, -2147483648.0, "-2147483648"},
        {std::numeric_limits<std::uint32_t>::max(), 7, 4294967295.0, "4294967295"},
        {std::numeric_limits<std::int64_t>::min(), 8, -9223372036854775808.0, "-9223372036854775808"},
        {unsignedTop, 9, 18446744073709551615.0, "18446744073709551615"},
        {0.1f, 10, static_cast<double>(0.1f), "0.1"},
        {1234567.0, 11, 1234567.0, "1.23457e+06"},
        {-0.5, 11, -0.5, "-0.5"},
        {100.0, 11, 100.0, "100"},
        {"12", 12, 0.0, "12"},
        {variant_t::literal("%1"), 14, 0.0, "%1"},
        {variant_t(), 17, 0.0, ""},
        {variant_t::object(new Counted), 18, 0.0, ""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.text);
        EXPECT_EQ(row.value.kind(), row.kind);
        EXPECT_EQ(row.value.toDouble(), row.number);
        EXPECT_EQ(toText(row.value), row.text);
    }
}

TEST(Iterators, AreIndependentPositions) {
    auto first = makeIterator(std::vector<std::string>{"a", "b", "c"});
    ++first;
    auto second = first;
    ++ ++second;
    EXPECT_TRUE(second.isEnd());
    EXPECT_TRUE((++second).isEnd()) << "the end stays";
    EXPECT_EQ(*first, "b");
    second = first;
    ++first;
    EXPECT_EQ(*second, "b");
    EXPECT_EQ(*first, "c");

    generic_iterator_t<int> none;
    EXPECT_TRUE(none.isNull() && none.isEnd() && (++none).isEnd());
    const auto empty = makeIterator(std::vector<int>{});
    EXPECT_TRUE(!empty.isNull() && empty.isEnd());
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
    {
        subscriber_base_t gone;
        signal->connect(gone, [&] { heard += 100; });
    }
    subscriber_base_t subscriber;
    signal->connect(subscriber, [&] { ++heard; });
    other->connect(subscriber, [&] { heard += 10; });
    signal->raise();
    EXPECT_EQ(heard, 1);
    signal.reset();
    other->raise();
    EXPECT_EQ(heard, 11) << "the death of one signal leaves the other connected";
    subscriber.disconnectAll();
    other->raise();
    EXPECT_EQ(heard, 11);
}

TEST(Numbers, AreShownWithSignificantDigits) {
    const struct {
        double value;
        int digits;
        const char* expected;
    } rows[] = {
        {0.0, 3, "0"},
        {-0.0, 3, "0"},
        {1.0, 3, "1"},
        {3.14159, 3, "3.14"},
        {0.00123456, 3, "0.00123"},
        {-2.5, 4, "-2.5"},
        {1234567.0, 3, "1234567"},
        {100.0, 1, "100"},
        {9.996, 3, "10"},
        {0.09996, 3, "0.1"},
        {1e20, 3, "1e+20"},
        {1.5e-9, 3, "1.5e-09"},
        {2.0 / 3.0, 0, "0.7"},
        {0.1, 99, "0.10000000000000001"},
        {std::numeric_limits<double>::infinity(), 3, "N/A"},
        {std::nan(""), 3, "N/A"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(embedded_host::formatNumber(row.value, row.digits), row.expected) << row.value;
}

TEST(Numbers, AreShownWithFixedDigitsAndAUnit) {
    const struct {
        double value;
        const char* unit;
        int precision;
        double smallest;
        const char* expected;
    } rows[] = {
        {1234.5678, "", 3, 0.001, "1234.568"},
        {2.5, "GB/s", 0, 0.001, "2 GB/s"},
        {100.0, "GB", 2, 0.001, "100.00 GB"},
        {0.0, "GB", 2, 0.001, "0.00 GB"},
        {-0.0, "", 2, 0.001, "0.00"},
        {-0.25, "", 1, 0.001, "-0.2"},
        {0.001, "", 3, 0.001, "0.001"},
        {0.00099, "GB", 3, 0.001, "< 0.001 GB"},
        {5e-324, "", 3, 0.001, "< 0.001"},
        {-0.00099, "GB", 3, 0.001, "> -0.001 GB"},
        {0.004, "", 2, 0.001, "0.004"},
        {-0.0012, "", 2, 0.001, "-0.001"},
        {0.3, "", 0, 0.0, "0.3"},
        {0.00096, "", 2, 0.0, "0.001"},
        {3e-200, "s", 3, 0.0, "3e-200 s"},
        {0.7, "", 3, 1.0, "< 1"},
        {1e-9, "", 3, std::nan(""), "0.000000001"},
        {1e15, "", 1, 0.001, "1000000000000000.0"},
        {-1.25e300, "", 2, 0.001, "-1.25e+300"},
        {0.5, "", -1, 0.0, "0.5"},
        {0.1, "", 99, 0.0, "0.10000000000000001"},
        {std::numeric_limits<double>::infinity(), "GB", 3, 0.001, "N/A"},
        {-std::numeric_limits<double>::infinity(), "", 3, 0.001, "N/A"},
        {std::nan(""), "", 3, 0.001, "N/A"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(double2str(row.value, row.unit, row.precision, row.smallest), row.expected) << row.value;
    EXPECT_EQ(int2str(0), "0");
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
    EXPECT_EQ(toText(1234567), "1234567");
    EXPECT_EQ(embedded_host::formatNumber(1234.5, 6), "1234.5");
    EXPECT_EQ(double2str(1234.5, "GB", 2, 0.001), "1234.50 GB");
    EXPECT_EQ(int2str(1234567), "1234567");
    std::locale::global(before);
}

}  // namespace
}  // namespace data_models2
