// The message catalogue: completeness, files that override it, arguments.
#include "host_interfaces/host_functions.h"

#include "embedded_host/embedded_host.h"
#include "embedded_host/services/builtin_messages.h"
#include "embedded_host/services/message_catalogue.h"
#include "embedded_host/services/roof_captions.h"

#include "tests/embedded_host/folder_test.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <rapidjson/document.h>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <regex>
#include <set>

namespace embedded_host {
namespace {

using data_models2::variant_t;
using testing::ElementsAre;
using testing::HasSubstr;

const std::vector<std::string> kMessageIds{
#define OMBRIX_MESSAGE(id) id,
#include "host_interfaces/message_ids.inc"

#include "cli/page/message_ids.inc"
#undef OMBRIX_MESSAGE
};

// Those whose arguments the library gives, by their number; all other texts take none.
const std::vector<std::string> kArguments[]{
    {"roofline_vectorization_types", "roofline_summary_total_point_descr", "roofline_summary_bytes",
     "roofline_bottleneck_performance_analysis_bounded_by", "roofline_memory_dominating_type_expl",
     "roofline_summary_roof_descr", "roofline_summary_gpu_carm_title"},
    {"roofline_options_def_config_integrated_gpu_caption", "roofline_bottleneck_bound_by_compute",
     "roofline_bottleneck_bound_by_memory", "roofline_bottleneck_wrong_configuration_details"}};

// A folder of message files that goes with the test, and the assertions that reading it reports.
class MessageFiles : public test::FolderTest {
protected:
    MessageFiles() {
        std::filesystem::create_directory(path("messages"));
        setAssertionHandler(
            [this](const auto& expression, const auto&, int) { reports.push_back(expression); });
    }
    ~MessageFiles() override { setAssertionHandler({}); }
    void write(const std::string& language, const std::string& text) {
        file("messages/" + language + ".json", text);
    }
    auto load(const std::string& language) { return MessageCatalogue::load(language, m_folder.string()); }
    auto languages() { return MessageCatalogue::languages(m_folder.string()); }

    std::vector<std::string> reports;
};

// The texts of a shipped language as they stand: a catalogue would fill gaps with English.
std::multimap<std::string, std::string> textsAsTheyStand(const BuiltinMessages& language) {
    std::string json;
    for (const auto piece : language.pieces) json += piece;
    rapidjson::Document document;
    document.Parse(json.data(), json.size());
    std::multimap<std::string, std::string> texts;
    for (const auto& member : std::as_const(document).GetObject())
        texts.emplace(member.name.GetString(), member.value.GetString());
    return texts;
}

// Each "%" together with the character behind it.
std::multiset<std::string> placeholders(const std::string& text) {
    static const std::regex placeholder("%.?");
    std::multiset<std::string> found;
    for (std::sregex_iterator match(text.begin(), text.end(), placeholder), end; match != end; ++match)
        found.insert(match->str());
    return found;
}

TEST(Messages, EveryShippedLanguageIsCompleteAndGivesTheSameArguments) {
    std::vector<std::string> wanted = kMessageIds, languages;
    std::sort(wanted.begin(), wanted.end());
    const auto english = MessageCatalogue::load("en", "")->texts();
    for (const auto& language : builtinMessages()) {
        languages.emplace_back(language.language);
        SCOPED_TRACE(languages.back());
        std::vector<std::string> ids, lackingUnknownOrTwice;
        for (const auto& [id, text] : textsAsTheyStand(language)) {
            ids.push_back(id);
            EXPECT_FALSE(text.empty()) << id;
            if (const auto original = english.find(id); original != english.end())
                EXPECT_EQ(placeholders(text), placeholders(original->second)) << id << ": " << text;
        }
        std::set_symmetric_difference(ids.begin(), ids.end(), wanted.begin(), wanted.end(),
                                      std::back_inserter(lackingUnknownOrTwice));
        EXPECT_THAT(lackingUnknownOrTwice, testing::IsEmpty());
    }
    EXPECT_THAT(languages, ElementsAre("de", "en"));
}

TEST(Messages, PlaceholdersAreThoseOfTheArgumentsGiven) {
    const auto catalogue = MessageCatalogue::load("en", "");
    for (const auto& [id, text] : catalogue->texts()) {
        if (id.rfind("page_", 0) == 0) continue;  // their arguments are the page's
        const auto takes = [&, wanted = id](const auto& ids) {
            return std::count(ids.begin(), ids.end(), wanted);
        };
        const int count = takes(kArguments[0]) ? 1 : takes(kArguments[1]) ? 2 : 0;
        std::string rest = text;
        for (int i = 1; i <= count; ++i) {
            const auto at = rest.find("%" + std::to_string(i));
            ASSERT_NE(at, std::string::npos) << id << ": " << text;
            rest.erase(at, 2);
        }
        rest = std::regex_replace(rest, std::regex("%%"), "");
        EXPECT_EQ(rest.find('%'), std::string::npos) << id << ": " << text;
    }
}

TEST(Messages, EveryRoofOfTheTableIsDescribed) {
    const auto catalogue = MessageCatalogue::load("en", "");
    for (const auto& roof : kRoofCaptions) {
        std::string id(roof.owner == RoofOwner::Device ? "RoofDescriptiongpu" : "RoofDescription");
        for (const unsigned char c : roof.caption)
            if (!std::isspace(c)) id += static_cast<char>(std::tolower(c));
        EXPECT_TRUE(catalogue->has(id)) << id;
    }
}

TEST(Messages, ArgumentsReplacePlaceholdersOnce) {
    const std::tuple<const char*, std::vector<variant_t>, const char*> rows[] = {
        {"%1 and %2", {"a", 2}, "a and 2"},
        {"%2%1%2", {"a", "b"}, "bab"},
        {"%3", {"a", "b", variant_t::literal("c"), "d"}, "c"},
        {"[%1][%2]", {variant_t()}, "[][]"},
        {"%1 %2", {"%2", "%1%%"}, "%2 %1%%"},
        {"100%% of %1", {0.25}, "100% of 0.25"},
        {"%%1", {"a"}, "%1"},
        {"%%%1", {"a"}, "%a"},
        {"%4 %0 %x %", {"a", "b", "c", "d"}, "%4 %0 %x %"},
        {"%12", {"a"}, "a2"},
        {"\xC3\xA9%1\xC3\xA9", {"-"}, "\xC3\xA9-\xC3\xA9"},
        {"", {"a"}, ""},
    };
    for (const auto& [text, arguments, expected] : rows)
        EXPECT_EQ(formatMessage(text, arguments), expected) << text;
}

TEST_F(MessageFiles, OverrideSingleTextsAndBringALanguageThatFallsBackOnEnglish) {
    write("en", R"({"roofline_options_l1": "First \u00e9 %1", "of_a_later_version": "new"})");
    const auto catalogue = load("en");
    EXPECT_EQ(catalogue->format("roofline_options_l1", {7}), "First \xC3\xA9 7");
    EXPECT_EQ(catalogue->format("roofline_options_l2", {}), "L2");
    EXPECT_TRUE(catalogue->has("of_a_later_version"));
    write("nl", R"({"roofline_options_operation_int": "Geheel"})");
    const auto dutch = load("nl");
    ASSERT_TRUE(dutch);
    EXPECT_EQ(dutch->format("roofline_options_operation_int", {}), "Geheel");
    EXPECT_EQ(dutch->format("roofline_options_operation_float", {}), "Float");
    EXPECT_THAT(reports, testing::IsEmpty());
}

TEST_F(MessageFiles, ThatAreMalformedAreReportedOnceAndIgnored) {
    const std::string deep(1'000'000, '[');
    for (const std::string text :
         {"", "{", "[]", "null", R"({"roofline_options_l1": 1})", R"({"roofline_options_l1": {"a": "b"}})",
          R"({"roofline_options_l1": "x"} trailing)", "{\"roofline_options_l1\": \"\xFF\"}", deep.c_str()}) {
        SCOPED_TRACE(text.substr(0, 60));
        reports.clear();
        write("en", text);
        EXPECT_EQ(load("en")->format("roofline_options_l1", {}), "L1");
        EXPECT_THAT(reports, ElementsAre(HasSubstr("en.json")));
        write("fr", text);
        EXPECT_FALSE(load("fr"));
        EXPECT_THAT(languages(), ElementsAre("de", "en"));
    }
}

TEST_F(MessageFiles, AreNotSoughtOutsideTheirFolder) {
    write("nl", "{}");
    EXPECT_THAT(languages(), ElementsAre("de", "en", "nl"));
    for (const auto* const language : {"", "xx", "../messages/nl", "./nl", "nl.json", "nl/../nl"})
        EXPECT_FALSE(load(language)) << language;
    EXPECT_THAT(reports, testing::IsEmpty());
}

// All of the process's choice is in this one test: the first look-up ends it.
TEST_F(MessageFiles, ChooseTheLanguageOfTheProcessUntilTheFirstLookUp) {
    write("nl", R"({"roofline_options_stacks_caption": "Stapels"})");
    EXPECT_FALSE(data_models2::loadMessageCatalogue("data_models.other"));
    const auto early = data_models2::loadMessageCatalogue("data_models.roofline");
    EXPECT_FALSE(setLanguage("nl"));
    setMessageFolder(m_folder.string());
    EXPECT_TRUE(setLanguage("nl"));
    EXPECT_FALSE(setLanguage("xx"));
    EXPECT_EQ(early->format("roofline_options_stacks_caption", {}), "Stapels");
    EXPECT_FALSE(early->has("roofline_options_stacks_caption_lin"));
    EXPECT_EQ(early->format("roofline_options_stacks_caption_lin", {}), "");
    EXPECT_FALSE(setLanguage("en"));
    EXPECT_EQ(data_models2::loadMessageCatalogue("data_models.roofline"), early);
}

}  // namespace
}  // namespace embedded_host
