// One member of a JSON text changed, every other byte as it was.
#include "embedded_host/result/json_splice.h"

#include <gmock/gmock.h>

namespace embedded_host {
namespace {

using Items = std::vector<std::string>;

TEST(JsonSplice, ChangesNothingButTheMember) {
    const Items two{R"({"x":1})", "2.50"};
    const std::tuple<const char*, std::string, Items, std::string> cases[] = {
        {"added", R"({"n": 12345678901234567890123, "b":[{}]})", two,
         R"({"n": 12345678901234567890123, "b":[{}], "custom": [{"x":1}, 2.50]})"},
        {"added in lines", "{\r\n  \"a\": 1.0e1\r\n}\r\n", two,
         "{\r\n  \"a\": 1.0e1,\r\n  \"custom\": [\r\n    {\"x\":1},\r\n    2.50\r\n  ]\r\n}\r\n"},
        {"added without indent", "\xEF\xBB\xBF{\n\"a\":1\n}", two,
         "\xEF\xBB\xBF{\n\"a\":1,\n\"custom\": [\n{\"x\":1},\n2.50\n]\n}"},
        {"replaced, escaped name", R"({"a":{"custom":[7]},"cust\u006fm" : [0, 1] ,"b":1e2})", two,
         R"({"a":{"custom":[7]},"cust\u006fm" : [{"x":1}, 2.50] ,"b":1e2})"},
        {"first removed", R"({ "custom" :[ 1 ] , "a":0.10})", {}, R"({ "a":0.10})"},
        {"middle removed", R"({"a":"]},\\\"{","custom":[[],{}] ,"b":1})", {}, R"({"a":"]},\\\"{" ,"b":1})"},
        {"last removed", "{\"a\":-0,\n \"custom\":[]\n}", {}, "{\"a\":-0\n}"},
    };
    for (const auto& [name, text, items, changed] : cases)
        EXPECT_EQ(withArrayItems(JsonFile("t", text), text, "custom", items), changed) << name;
}

TEST(JsonSplice, GivesItemsAsTheyStand) {
    const std::string text = R"({"a":[5],"custom":[ {"a":"],\"","b" : [1, 2]} ,[1,  {}] , 3.0e0 ,"x"]})";
    EXPECT_THAT(arrayItems(JsonFile("t", text), text, "custom"),
                testing::ElementsAre(R"({"a":"],\"","b" : [1, 2]})", "[1,  {}]", "3.0e0", R"("x")"));
}

}  // namespace
}  // namespace embedded_host
