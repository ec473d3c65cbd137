// What result and machine files are refused for: each row of a table is a text, the place told and the
// reason.
#include "tests/embedded_host/result_text.h"

#include <gtest/gtest.h>

#include <string>

namespace embedded_host::test {
namespace {

// Files with such members at their top, in a row, in its cells and so on.
std::string top(const std::string& members, const char* kind = "cpu") {
    return resultText("", ", " + members, kind);
}
std::string row(const std::string& members) { return resultText(R"({"id": 7, )" + members + "}"); }
std::string kernel(const std::string& members) { return gpuText(R"({"id": 7, )" + members + "}"); }
std::string cells(const std::string& members) { return row(R"("cells": {)" + members + "}"); }
std::string program(const std::string& members) { return top(R"("program": {)" + members + "}"); }
std::string roof(const std::string& members) {
    return top(R"("machine": )" + machineText("{" + members + "}"));
}
std::string machine(const std::string& members) {
    return top(R"("machine": )" + machineText(R"({"id": 6, "value": 1, "unit": "GB/s"})", ", " + members));
}

TEST(MalformedFile, IsRefusedWithItsPlaceAndTheReason) {
    // The text of a file, and how the error goes on behind the file's name.
    const std::pair<std::string, const char*> cases[] = {
        {"", "line 1, column 1: not JSON: The document is empty."},
        {"{\n  \"format\": roof\n}", "line 2, column 13: not JSON"},
        {std::string("{\n\0}", 4), "line 2, column 1: expected UTF-8"},
        {"{}", R"(top level: expected a member "format", found none)"},
        {R"({"format": "roofline-machine"})", R"(/format: expected "roofline-result", found the text)"},
        {top(R"("target": {})"), "/target: not a member of a result of kind cpu"},
        {top(R"("device": {})"), "/device: not a member of a result of kind cpu"},
        {top(R"("device": {})", "offload"), "/device: not a member of a result of kind offload"},
        {top(R"("levels": ["L1"])", "offload"), "/levels: not a member of a result of kind offload"},
        {top(R"("levels": ["L1"])", "gpu"), "/levels: not a member of a result of kind gpu"},
        {top(R"("target": {"memory": "PKGRAM"})", "offload"),
         R"(/target/memory: expected one of "L1", "L3")"},
        {top(R"("device": {"memory": "HBM2"})", "gpu"), R"(/device/memory: expected one of "DRAM", "HBM")"},
        {row(R"("statistics": [])"), "/rows/0/statistics: only a row of kind gpu has"},
        {kernel(R"("statistics": [{"instruction": "f"}])"),
         "/rows/0/statistics/0/instruction: expected one of"},
        {kernel(R"("statistics": [{"operations": 1}])"),
         R"(/rows/0/statistics/0: expected a member "instruction")"},
        {kernel(R"("boundedBy": ["L3_BW", 2])"), "/rows/0/boundedBy/1: expected a text, found 2"},
        {top(R"("level": ["L1"])"), R"(/level: unknown member (did you mean "levels"?))"},
        {top(R"("kind": "cpu")"), "/kind: repeated member"},
        {top(R"("levels": [])"), "/levels: expected the name of at least one"},
        {top(R"("levels": ["L1", "L9"])"), R"(/levels/1: expected one of "L1", "L2")"},
        {top(R"("levels": ["L1", "L1"])"), "/levels/1: named twice"},
        {program(R"("usedThreads": 0)"), "/program/usedThreads: expected an integer from 1 to"},
        {top(R"("machine": 3)"), "/machine: expected a machine or the path of its file, found 3"},
        {top(R"("machine": "no.json")"), "/machine: no.json: cannot open: No such file"},
        {resultText(R"({"id": -1})"),
         "/rows/0/id: expected an integer from 0 to 9223372036854775807, found -1"},
        {resultText(R"({"id": 5, "children": [{"id": 9}]}, {"id": 3}, {"id": 5})"),
         "/rows/2/id: id 5 is taken by an earlier row"},
        {row(R"("Children": [])"), R"(/rows/0/Children: unknown member (did you mean "children"?))"},
        {row(R"("kind": "loop", "type": 0)"), R"(/rows/0/type: expected either "kind" or "type")"},
        {row(R"("executed": 0)"), "/rows/0/executed: expected true or false, found 0"},
        {row(R"("children": [{"id": 2}, {"id": 3, "children": {}}])"),
         "/rows/0/children/1/children: expected an array, found an object"},
        {row(R"("mix": {"loads": 3})"), "/rows/0/mix/loads: expected the number of an instruction class"},
        {row(R"("mix": {"63": 3, "7": 1, "063": 3})"), "/rows/0/mix/063: repeated class"},
        {row(R"("boundedBy": 3)"), "/rows/0/boundedBy: expected a text, found 3"},
        {cells(R"("SelfTime": "1.5")"),
         R"(/rows/0/cells/SelfTime: expected a finite number that is not negative, found the text "1.5")"},
        {cells(R"("SelfTime": 1.8e308)"), "line 1, column 101: not JSON: a number too large for a double"},
        {cells(R"("UnrollFactor": 1.5)"),
         "/rows/0/cells/UnrollFactor: expected an integer from 0 to 4294967295, found 1.5"},
        {cells(R"("selfTime": 1)"), R"(/rows/0/cells/selfTime: unknown field (did you mean "SelfTime"?))"},
        {cells(R"("a/b~c": 1)"), "/rows/0/cells/a~1b~0c: unknown field"},
        {machine(R"("cores": {"logical": 4, "physical": 8})"),
         "/machine/cores/logical: expected at least the 8"},
        {machine(R"("custom": [{"id": 6, "value": 1, "unit": "B/s"}, {"id": 6, "value": 2, "unit": "B/s"}])"),
         "/machine/custom/1: the same roof and threads as in element 0"},
        {machine(R"("custom": [{"id": 5, "value": 1, "unit": "GB/s"}])"),
         "/machine/custom/0/id: expected the id of one of the machine's roofs, found 5"},
        {roof(R"("value": 1, "unit": "GB/s")"), R"(/machine/roofs/0: expected a member "id" or "name")"},
        {roof(R"("id": 99, "name": "New", "value": 1, "unit": "GB/s")"),
         R"(/machine/roofs/0: expected either "level" or "arith")"},
        {roof(R"("id": 6, "value": 1, "unit": "GFLOP/s")"),
         "/machine/roofs/0/unit: expected bytes per second, such as GB/s, for a memory roof"},
        {roof(R"("id": 6, "value": 0, "unit": "GB/s")"),
         "/machine/roofs/0/value: expected a value from 1 to"},
        {roof(R"("id": 8, "value": 1, "unit": "FLOP/s", "level": "L1")"),
         "/machine/roofs/0/level: expected no memory level"},
    };
    for (const auto& [text, told] : cases) {
        const auto expected = std::string("test.json: ") + told;
        EXPECT_EQ(refusalOf(text).substr(0, expected.size()), expected) << text;
    }
}

TEST(MalformedFile, IsRefusedForAnythingButUtf8) {
    for (const auto* const good : {"\xC3\xA9", "\xE2\x82\xAC", "\xED\x9F\xBF", "\xF0\x9F\x98\x80"})
        EXPECT_EQ(refusalOf(program(fmt::format("\"name\": \"{}\"", good))), "accepted");
    for (const auto* const bad : {"\x80", "\xC1\xBF", "\xE0\x9F\xBF", "\xED\xA0\x80", "\xF0\x8F\xBF\xBF",
                                  "\xF4\x90\x80\x80", "\xE2\x82", "\xFF"}) {
        EXPECT_NE(refusalOf(program(fmt::format("\"name\": \"{}\"", bad))).find("expected UTF-8"),
                  std::string::npos);
    }
}

TEST(MalformedFile, ShortensThePlaceOfADeepRow) {
    std::string rows;
    for (int i = 0; i < 100'000; ++i) rows += fmt::format(R"({{"id": {}, "children": [)", i);
    rows += R"({"id": "deep"})";
    for (int i = 0; i < 100'000; ++i) rows += "]}";
    const auto refusal = refusalOf(resultText(rows));
    EXPECT_LT(refusal.size(), 2000U);
    EXPECT_NE(refusal.find("/.../"), std::string::npos);
    EXPECT_NE(refusal.find("/children/0/id: expected an integer"), std::string::npos);
}

// Each prefix and each flipped byte of a good file either loads or is refused; nothing else happens.
TEST(MalformedFile, CutOrFlippedAnywhereNeverDoesMoreThanFail) {
    const auto good = readFile(OMBRIX_SOURCE_DIR "/examples/quick/result.json");
    for (std::size_t i = 0; i < good.size(); i += 7) {
        EXPECT_NE(refusalOf(good.substr(0, i)), "accepted");
        auto flipped = good;
        flipped[i] = static_cast<char>(flipped[i] ^ (1 << (i % 8)));
        refusalOf(flipped);
    }
}

}  // namespace
}  // namespace embedded_host::test
