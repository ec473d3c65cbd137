// What result and machine files are refused for: each row of a table is a text, the place told and the
// reason.
#include "tests/embedded_host/result_text.h"

#include <gtest/gtest.h>

#include <string>

namespace embedded_host::test {
namespace {

std::string row(const std::string& members) { return resultText(R"({"id": 7)" + members + "}"); }
std::string cells(const std::string& members) { return row(R"(, "cells": {)" + members + "}"); }
std::string program(const std::string& members) {
    return resultText("", R"(, "program": {)" + members + "}");
}
std::string roof(const std::string& members) {
    return resultText("", R"(, "machine": )" + machineText("{" + members + "}"));
}
std::string machine(const std::string& members) {
    return resultText("",
                      R"(, "machine": )" + machineText(R"({"id": 6, "value": 1, "unit": "GB/s"})", members));
}

TEST(MalformedFile, IsRefusedWithItsPlaceAndTheReason) {
    // The text of a file, and how the error goes on behind the file's name.
    const std::tuple<const char*, std::string, const char*> cases[] = {
        {"Empty", "", "line 1, column 1: not JSON: The document is empty."},
        {"Syntax", "{\n  \"format\": roof\n}", "line 2, column 13: not JSON"},
        {"NulByte", std::string("{\n\0}", 4), "line 2, column 1: expected UTF-8"},
        {"NoFormat", "{}", "top level: expected a member \"format\", found none"},
        {"OtherFormat", R"({"format": "roofline-machine"})",
         "/format: expected \"roofline-result\", found the text"},
        {"TargetOfCpu", resultText("", R"(, "target": {})"), "/target: not a member of a result of kind cpu"},
        {"DeviceOfOffload", offloadText("", R"(, "device": {})"),
         "/device: not a member of a result of kind offload"},
        {"LevelsOfOffload", offloadText("", R"(, "levels": ["L1"])"),
         "/levels: not a member of a result of kind offload"},
        {"TargetMemory", offloadText("", R"(, "target": {"memory": "PKGRAM"})"),
         "/target/memory: expected one of \"L1\", \"L3\""},
        {"LevelsOfGpu", gpuText("", R"(, "levels": ["L1"])"),
         "/levels: not a member of a result of kind gpu"},
        {"DeviceMemory", gpuText("", R"(, "device": {"memory": "HBM2"})"),
         "/device/memory: expected one of \"DRAM\", \"HBM\""},
        {"StatisticsOfCpu", row(R"(, "statistics": [])"), "/rows/0/statistics: only a row of kind gpu has"},
        {"StatisticClass", gpuText(R"({"id": 1, "statistics": [{"instruction": "fmaa"}]})"),
         "/rows/0/statistics/0/instruction: expected one of"},
        {"StatisticWithoutClass", gpuText(R"({"id": 1, "statistics": [{"operations": 1}]})"),
         "/rows/0/statistics/0: expected a member \"instruction\""},
        {"BoundNumber", gpuText(R"({"id": 1, "boundedBy": ["L3_BW", 2]})"),
         "/rows/0/boundedBy/1: expected a text, found 2"},
        {"DeviceOfCpu", resultText("", R"(, "device": {})"), "/device: not a member of a result of kind cpu"},
        {"UnknownMember", resultText("", R"(, "level": ["L1"])"),
         "/level: unknown member (did you mean \"levels\"?)"},
        {"RepeatedMember", resultText("", R"(, "kind": "cpu")"), "/kind: repeated member"},
        {"NoLevels", resultText("", R"(, "levels": [])"), "/levels: expected the name of at least one"},
        {"UnknownLevel", resultText("", R"(, "levels": ["L1", "L9"])"),
         "/levels/1: expected one of \"L1\", \"L2\""},
        {"RepeatedLevel", resultText("", R"(, "levels": ["L1", "L1"])"), "/levels/1: named twice"},
        {"NoThreads", program(R"("usedThreads": 0)"), "/program/usedThreads: expected an integer from 1 to"},
        {"MachineNumber", resultText("", R"(, "machine": 3)"),
         "/machine: expected a machine or the path of its file, found 3"},
        {"MachineMissing", resultText("", R"(, "machine": "no.json")"),
         "/machine: no.json: cannot open: No such file"},
        {"NegativeId", resultText(R"({"id": -1})"),
         "/rows/0/id: expected an integer from 0 to 9223372036854775807, found -1"},
        {"TwinIds", resultText(R"({"id": 5, "children": [{"id": 9}]}, {"id": 3}, {"id": 5})"),
         "/rows/2/id: id 5 is taken by an earlier row"},
        {"RowMember", row(R"(, "Children": [])"),
         "/rows/0/Children: unknown member (did you mean \"children\"?)"},
        {"KindAndType", row(R"(, "kind": "loop", "type": 0)"),
         "/rows/0/type: expected either \"kind\" or \"type\""},
        {"Executed", row(R"(, "executed": 0)"), "/rows/0/executed: expected true or false, found 0"},
        {"ChildObject", resultText(R"({"id": 1, "children": [{"id": 2}, {"id": 3, "children": {}}]})"),
         "/rows/0/children/1/children: expected an array, found an object"},
        {"MixName", row(R"(, "mix": {"loads": 3})"),
         "/rows/0/mix/loads: expected the number of an instruction class"},
        {"MixTwiceApart", row(R"(, "mix": {"63": 3, "7": 1, "063": 3})"), "/rows/0/mix/063: repeated class"},
        {"BoundedBy", row(R"(, "boundedBy": 3)"), "/rows/0/boundedBy: expected a text, found 3"},
        {"TextForNumber", cells(R"("SelfTime": "1.5")"),
         "/rows/0/cells/SelfTime: expected a finite number that is not negative, found the text \"1.5\""},
        {"NumberBeyondDoubles", cells(R"("SelfTime": 1.8e308)"),
         "line 1, column 101: not JSON: a number too large for a double"},
        {"FractionCount", cells(R"("UnrollFactor": 1.5)"),
         "/rows/0/cells/UnrollFactor: expected an integer from 0 to 4294967295, found 1.5"},
        {"UnknownField", cells(R"("selfTime": 1)"),
         "/rows/0/cells/selfTime: unknown field (did you mean \"SelfTime\"?)"},
        {"EscapedPlace", cells(R"("a/b~c": 1)"), "/rows/0/cells/a~1b~0c: unknown field"},
        {"Cores", machine(R"(, "cores": {"logical": 4, "physical": 8})"),
         "/machine/cores/logical: expected at least the 8"},
        {"RoofTwice",
         machine(
             R"(, "custom": [{"id": 6, "value": 1, "unit": "GB/s"}, {"id": 6, "value": 2, "unit": "GB/s"}])"),
         "/machine/custom/1: the same roof and threads as in element 0"},
        {"CustomUnknown", machine(R"(, "custom": [{"id": 5, "value": 1, "unit": "GB/s"}])"),
         "/machine/custom/0/id: expected the id of one of the machine's roofs, found 5"},
        {"RoofNameless", roof(R"("value": 1, "unit": "GB/s")"),
         "/machine/roofs/0: expected a member \"id\" or \"name\""},
        {"RoofId", roof(R"("id": 99, "name": "New", "value": 1, "unit": "GB/s")"),
         "/machine/roofs/0: expected either \"level\" or \"arith\""},
        {"WrongUnit", roof(R"("id": 6, "value": 1, "unit": "GFLOP/s")"),
         "/machine/roofs/0/unit: expected bytes per second, such as GB/s, for a memory roof"},
        {"NoHeight", roof(R"("id": 6, "value": 0, "unit": "GB/s")"),
         "/machine/roofs/0/value: expected a value from 1 to"},
        {"LevelOfPeak", roof(R"("id": 8, "value": 1, "unit": "GFLOP/s", "level": "L1")"),
         "/machine/roofs/0/level: expected no memory level"},
    };
    for (const auto& [name, text, told] : cases) {
        const std::string expected = std::string("test.json: ") + told;
        EXPECT_EQ(refusalOf(text).substr(0, expected.size()), expected) << name << ": " << text;
    }
}

TEST(MalformedFile, IsRefusedForAnythingButUtf8) {
    for (const auto* const good : {"\xC3\xA9", "\xE2\x82\xAC", "\xED\x9F\xBF", "\xF0\x9F\x98\x80"}) {
        EXPECT_EQ(refusalOf(program(fmt::format("\"name\": \"{}\"", good))), "accepted");
    }
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
