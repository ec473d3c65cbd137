// Property bags from and to JSON: kinds, arrays, repeated names, hostile texts and depth.
#include "host_interfaces/host_functions.h"

#include <boost/property_tree/ptree.hpp>
#include <fmt/format.h>
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <cmath>
#include <limits>

namespace data_models2 {
namespace {

// "kind:value" of a leaf, "name=..." of each child in braces; texts in quotes, doubles with all digits.
std::string describe(const variant_bag_t& bag) {
    const auto& value = bag.data();
    std::string text;
    if (value.isText())
        text = fmt::format("'{}'", value.text());
    else if (value.kind() == variant_t::kDouble)
        text = fmt::format("d{}", value.toDouble());
    else if (!value.isEmpty())
        text = fmt::format("{}:{}", static_cast<int>(value.kind()), toText(value));
    if (bag.empty()) return text;
    text += '{';
    for (const auto& [name, child] : bag) text += fmt::format("{}={} ", name, describe(child));
    text.back() = '}';
    return text;
}

variant_bag_t leaf(const variant_t& value) { return variant_bag_t(value); }

variant_bag_t bagOf(std::initializer_list<std::pair<const char*, variant_bag_t>> children) {
    variant_bag_t bag;
    for (const auto& [name, child] : children) bag.push_back({name, child});
    return bag;
}

TEST(Bags, AreLoadedWithTheKindsOfTheirNumbers) {
    const std::pair<const char*, const char*> rows[] = {
        {"\xEF\xBB\xBF {\"a\": null}\n", "{a=}"},
        {R"({"a": 0, "b": -0, "c": 4294967295})", "{a=7:0 b=7:0 c=7:4294967295}"},
        {R"({"a": 4294967296, "b": 18446744073709551615})", "{a=9:4294967296 b=9:18446744073709551615}"},
        {R"({"a": -1, "b": -2147483648})", "{a=6:-1 b=6:-2147483648}"},
        {R"({"a": -2147483649, "b": -9223372036854775808})", "{a=8:-2147483649 b=8:-9223372036854775808}"},
        {R"({"a": 18446744073709551616, "b": 1.0, "c": 0.1})", "{a=d1.8446744073709552e+19 b=d1 c=d0.1}"},
        {R"({"a.b": "x\u00e9", "": ""})", "{a.b='x\xC3\xA9' =''}"},
        {R"({"a": [1, [], {"b": 2}]})", "{a={arrayOf='item' item=7:1 item={arrayOf='item'} item={b=7:2}}}"},
        {R"({"a": 1, "b": 2, "a": 3})", "{a=7:1 b=7:2 a=7:3}"},
    };
    for (const auto& [json, expected] : rows) {
        auto bag = bagOf({{"old", leaf(1)}});
        EXPECT_TRUE(loadBag(json, bag)) << json;
        EXPECT_EQ(describe(bag), expected) << json;
    }
}

TEST(Bags, StayAsTheyWereWhenTheTextIsNoObject) {
    constexpr int depth = 100'000;
    std::string objects;
    for (int i = 0; i < depth; ++i) objects += R"({"a":)";
    objects += '1' + std::string(depth, '}');
    std::vector<std::string> texts{objects, R"({"a":)" + std::string(depth, '['), std::string("{}\0", 3)};
    for (const auto* const text :
         {"", "null", "[{}]", "{", "{}}", "{} x", "{'a': 1}", R"({"a":})", R"({"a": 1,})", R"({"a": 1e999})",
          R"({"a": NaN})", R"({"a": 01})", "{\"a\": \"\xFF\"}", "{\"a\": \"\xED\xA0\x80\"}",
          R"({"a": "\ud800"})", R"({"a": 1, "b": [1, 2})"})
        texts.emplace_back(text);
    for (const auto& text : texts) {
        auto bag = bagOf({{"old", leaf(1)}});
        EXPECT_FALSE(loadBag(text, bag)) << text.substr(0, 60);
        EXPECT_EQ(describe(bag), "{old=6:1}") << text.substr(0, 60);
    }
}

TEST(Bags, AreSavedAsTheJsonThatTheyStandFor) {
    const auto mark = leaf("item");
    const double infinity = std::numeric_limits<double>::infinity();
    const std::pair<variant_bag_t, const char*> rows[] = {
        {bagOf({{"a", leaf(0.5f)}, {"b", leaf(infinity)}, {"c", leaf(std::nan(""))}, {"d", leaf(2.0)}}),
         R"({"a":0.5,"b":null,"c":null,"d":2.0})"},
        {bagOf({{"item", leaf(1)}, {"arrayOf", mark}, {"item", bagOf({{"arrayOf", mark}})}}), "[1,[]]"},
        {bagOf(
             {{"x", bagOf({{"arrayOf", mark}, {"name", leaf("n")}, {"item", leaf(1)}, {"item", leaf(2)}})}}),
         R"({"x":{"name":"n","item":[1,2]}})"},
        {bagOf({{"arrayOf", leaf("row")}, {"item", leaf(1)}}), R"({"arrayOf":"row","item":1})"},
        {bagOf({{"a", leaf(1)}, {"b", leaf(2)}, {"a", leaf(3)}, {"item", leaf(4)}, {"item", leaf(5)}}),
         R"({"a":1,"b":2,"item":4})"},
    };
    for (const auto& [bag, expected] : rows) EXPECT_EQ(saveBag(bag), expected);
}

// Only what has a form of its own in JSON: the kinds that loading makes, names that don't repeat.
variant_t randomValue() {
    using Int64 = std::numeric_limits<std::int64_t>;
    const int kind = *rc::gen::inRange(0, 8);
    if (kind == 0) return {};
    if (kind == 1) return *rc::gen::arbitrary<bool>();
    if (kind == 2) return *rc::gen::arbitrary<std::uint32_t>();
    if (kind == 3) return *rc::gen::inRange(std::numeric_limits<std::int32_t>::min(), 0);
    if (kind == 4) return *rc::gen::inRange(std::int64_t{1} << 32, Int64::max()) * 2ULL;
    if (kind == 5) return Int64::min() + *rc::gen::inRange<std::int64_t>(0, 1LL << 62);
    if (kind == 6) return *rc::gen::suchThat<double>([](double value) { return std::isfinite(value); });
    return *rc::gen::container<std::string>(rc::gen::inRange<char>(0, 127)) +
           *rc::gen::element<std::string>("", "\xC3\xA9", "\xF0\x9F\x98\x80");
}

variant_bag_t randomBag(int depth, bool isRoot) {
    const bool isList = !isRoot && *rc::gen::arbitrary<bool>();
    variant_bag_t bag;
    if (isList) bag.push_back({"arrayOf", leaf("item")});
    for (const char* const name : {"a", "b.c", "", "item", "\xC3\xA9", "array", "\"\\"}) {
        if (*rc::gen::arbitrary<bool>()) continue;
        const bool isLeaf = depth == 0 || *rc::gen::arbitrary<bool>();
        bag.push_back({isList ? "item" : name, isLeaf ? leaf(randomValue()) : randomBag(depth - 1, false)});
    }
    return bag;
}

RC_GTEST_PROP(Bags, AreTheSameAfterSavingAndLoading, ()) {
    const auto bag = randomBag(3, true);
    variant_bag_t loaded;
    RC_ASSERT(loadBag(saveBag(bag), loaded));
    RC_ASSERT(describe(loaded) == describe(bag));
}

TEST(Bags, AreLoadedToADepthThatIsSafeToCopy) {
    const auto nested = [](std::size_t depth) {
        return R"({"a":)" + std::string(depth, '[') + std::string(depth, ']') + "}";
    };
    variant_bag_t bag;
    ASSERT_TRUE(loadBag(nested(255), bag));
    const variant_bag_t copy = bag;
    EXPECT_EQ(saveBag(copy), nested(255));
    EXPECT_FALSE(loadBag(nested(256), bag));
}

TEST(Bags, OfAnyDepthAreSaved) {
    constexpr std::size_t depth = 100'000;
    variant_bag_t bag;
    auto* inner = &bag;
    for (std::size_t i = 0; i < depth; ++i) inner = &inner->push_back({"a", variant_bag_t()})->second;
    EXPECT_EQ(saveBag(bag).size(), depth * 6 + 4);
    // A bag's own destructor recurses: it is taken apart from outside.
    while (!bag.empty()) {
        variant_bag_t next;
        next.swap(bag.front().second);
        bag.swap(next);
    }
}

}  // namespace
}  // namespace data_models2
