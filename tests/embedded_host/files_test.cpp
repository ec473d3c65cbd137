// Files on disk: reading, writing, machines beside results, the schemas against the examples.
#include "host_interfaces/signals.h"

#include "tests/embedded_host/folder_test.h"
#include "tests/embedded_host/result_text.h"

#include <gtest/gtest.h>
#include <rapidjson/document.h>
#include <rapidjson/schema.h>
#include <rapidjson/stringbuffer.h>

namespace embedded_host::test {
namespace {
using namespace data_models2;
namespace fs = std::filesystem;

const std::string kSource = OMBRIX_SOURCE_DIR;

using Files = FolderTest;

TEST_F(Files, AreReplacedOnlyWhenThatIsWanted) {
    writeFile(path("a"), "one", false);
    EXPECT_THROW(writeFile(path("a"), "two", false), FileError);
    EXPECT_EQ(readFile(path("a")), "one");
    writeFile(path("a"), "three", true);
    EXPECT_EQ(readFile(path("a")), "three");
    EXPECT_THROW(writeFile(path("no/such/folder"), "x", true), FileError);
    EXPECT_THROW(readFile(path("")), FileError);
    EXPECT_EQ(std::distance(fs::directory_iterator(m_folder), {}), 1);  // no temporary is left
    fs::create_symlink(path("a"), path("link"));
    writeFile(path("link"), "two", true);
    EXPECT_TRUE(fs::is_symlink(path("link")));
    EXPECT_EQ(readFile(path("a")), "two");
    writeFile("/dev/null", "x", false);
    EXPECT_TRUE(fs::is_character_file("/dev/null"));
}

TEST_F(Files, AMachineIsFoundBesideItsResultUnlessAnotherReplacesIt) {
    fs::create_directory(path("machines"));
    const auto roof = [](int value) {
        return fmt::format(R"({{"id": 6, "value": {}, "unit": "B/s"}})", value);
    };
    file("machines/own.json", machineText(roof(1), R"(, "name": "own", "cores": {"physical": 3})"));
    file("other.json", machineText(roof(2), R"(, "name": "other")"));
    const auto own = openResult(file("result.json", resultText("", R"(, "machine": "machines/own.json")")));
    EXPECT_EQ(own->machineName(), "own");
    EXPECT_EQ(own->viewModel()->getPhysicalCoreCount(), 3);
    fs::remove_all(path("machines"));
    EXPECT_THROW(openResult(path("result.json")), FileError);
    const auto other = openResult(path("result.json"), {.machineFile = path("other.json")});
    EXPECT_EQ(other->machineName(), "other");
    EXPECT_EQ((*other->viewModel()->getRoofManager(DataType::Cpu)->getRoofs("")).value, 2U);
}

TEST(Result, TellsItsSubscribersOfALoadAndTheViewModelOutlivesIt) {
    struct : subscriber_base_t {
        std::string seen;
    } subscriber;
    auto result = openResult(kSource + "/examples/quick/result.json");
    const auto view = result->viewModel();
    view->onSurveyResultLoaded().connect(subscriber, [&](IViewModelBase::LoadType type, const std::string&) {
        subscriber.seen += std::to_string(static_cast<int>(type));
    });
    result->load(IViewModelBase::LoadType::Result);
    result->load(IViewModelBase::LoadType::Refresh);
    result.reset();
    EXPECT_EQ(subscriber.seen, "01");
    EXPECT_EQ(view->getMemoryLevelNames(), (std::vector<std::string>{"L1", "L2", "L3", "DRAM"}));
    EXPECT_EQ(view->getCollectedDataFlags(), collected_data::kTripCounts | collected_data::kCallCounts);
    EXPECT_EQ(view->getUsedThreadCount(), 8);
    EXPECT_EQ(view->getLogicalCoreCount(), 16);
}

rapidjson::Document parsed(const std::string& text) {
    rapidjson::Document document;
    document.Parse(text.c_str());
    EXPECT_FALSE(document.HasParseError());
    return document;
}

// Where the schema refuses the text, as a JSON pointer and the rule; empty when it accepts it.
std::string schemaRefusal(const std::string& schemaFile, const std::string& text) {
    const auto schemaText = parsed(readFile(kSource + "/docs/" + schemaFile));
    const rapidjson::SchemaDocument schema(schemaText);
    rapidjson::SchemaValidator validator(schema);
    if (parsed(text).Accept(validator)) return {};
    rapidjson::StringBuffer place;
    validator.GetInvalidDocumentPointer().StringifyUriFragment(place);
    return std::string(place.GetString()) + " " + validator.GetInvalidSchemaKeyword();
}

// The first JSON text in a fenced block of a page.
std::string exampleOf(const std::string& page) {
    const auto text = readFile(kSource + "/docs/" + page);
    const std::string fence = "```json\n";
    const auto start = text.find(fence) + fence.size();
    return text.substr(start, text.find("```", start) - start);
}

TEST(Schemas, HoldTheExamplesAndThePages) {
    const auto resultPage = exampleOf("result_file.md"), machinePage = exampleOf("machine_file.md");
    const auto whole = resultText("", R"(, "machine": )" + machinePage);
    const auto example = [](const std::string& name) { return readFile(kSource + "/examples/" + name); };
    for (const auto& text : {resultPage, whole, example("quick/result.json"),
                             example("offload_v100/measured.json"), example("offload_v100/projected.json")})
        EXPECT_EQ(schemaRefusal("result_file.schema.json", text), "") << text.substr(0, 200);
    for (const auto& text : {machinePage, example("quick/machine.json")})
        EXPECT_EQ(schemaRefusal("machine_file.schema.json", text), "");
    EXPECT_NO_THROW(
        parseResult(resultPage, "page", {.machineFile = kSource + "/examples/quick/machine.json"}));
    EXPECT_NO_THROW(parseResult(whole, "page"));
}

TEST(Schemas, RefuseWhatTheLoaderRefuses) {
    const auto expectRefused = [](const std::string& schema, const std::string& text,
                                  const std::string& whole) {
        EXPECT_NE(schemaRefusal(schema, text), "") << text;
        EXPECT_NE(refusalOf(whole), "accepted") << text;
    };
    for (const auto* const row :
         {R"({"id": 1, "cells": {"SelfTime": "1"}})", R"({"id": 1, "cells": {"CallCount": 1.5}})",
          R"({"id": 1, "children": [{"id": 2, "child": []}]})", R"({"id": 1, "mix": {"a": 1}})"})
        expectRefused("result_file.schema.json", resultText(row), resultText(row));
    for (const auto* const roof :
         {R"({"id": 6, "value": 1, "unit": "Gb/s"})", R"({"id": 6, "value": 0, "unit": "GB/s"})",
          R"({"id": 6, "value": 1, "unit": "GB/s", "x": 1})"})
        expectRefused("machine_file.schema.json", machineText(roof),
                      resultText("", R"(, "machine": )" + machineText(roof)));
}

TEST(Schemas, KnowEveryFieldWithItsType) {
    const auto schema = parsed(readFile(kSource + "/docs/result_file.schema.json"));
    const rapidjson::Value& cells = schema["definitions"]["cells"]["properties"];
    EXPECT_EQ(cells.MemberCount(), kFields.size());
    for (const auto& field : kFields) {
        const char* const reference = field.type == FieldType::Text     ? "#/definitions/text"
                                      : field.type == FieldType::UInt32 ? "#/definitions/count"
                                      : field.type == FieldType::Int64  ? "#/definitions/id"
                                                                        : "#/definitions/amount";
        const auto cell = cells.FindMember(std::string(field.name).c_str());
        ASSERT_NE(cell, cells.MemberEnd()) << field.name;
        EXPECT_STREQ(cell->value["$ref"].GetString(), reference) << field.name;
    }
}

}  // namespace
}  // namespace embedded_host::test
