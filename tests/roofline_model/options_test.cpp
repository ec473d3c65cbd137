// The option tree, how selections are read from it, and the configurations that they stand for.
#include "roofline_model/unified/configurations.h"
#include "roofline_model/unified/option_tables.h"

#include "tests/roofline_model/test_host.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace data_models2::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// A group a line: what isn't "options" as JSON, then value, caption and explanation of each option.
std::string linesOfTree(const std::string& json) {
    const auto tree = parse(json);
    std::string text = textOf(tree["defConfigurationCaption"]);
    for (const auto& group : tree["groups"].GetArray()) {
        text += "\n";
        for (const auto& member : group.GetObject())
            if (!member.value.IsArray() || textOf(member.name) != "options")
                text += textOf(member.name) + "=" + textOf(member.value) + " ";
        for (const auto& option : group["options"].GetArray())
            text += fmt::format("| {} {}{}", textOf(option["value"]), textOf(option["caption"]),
                                option.HasMember("expl") ? " (explained)" : "");
    }
    return text;
}

TEST(OptionTree, OfACpuFollowsTheMeasuredLevels) {
    const std::string first =
        R"(caption=Operations defRooflineTypes=["f"] isRadio=true | f Float| i Integer| b Integer and Float
caption=Call Stacks defRooflineTypes=["1"] isTwoStates=true )"
        "| 0 With call stacks (explained)| 1 Without call stacks";
    const std::string levels =
        "\ncaption=Memory Level provideCaption=true defRooflineTypes=[] isCertainValue=true | L1 L1";
    const std::string last =
        "\ncaption=Memory Operations defRooflineTypes=[\"all\"] isRadio=true | load Loads| store Stores| all "
        "Loads and stores";
    const std::string caption = "Default: float operations";
    EXPECT_EQ(linesOfTree(initRooflineOptions(1, nullptr)->toString()), caption + "\n" + first);
    EXPECT_EQ(linesOfTree(initRooflineOptions(0, nullptr)->toString()), caption + "\n" + first);
    EXPECT_EQ(linesOfTree(initRooflineOptions(2, nullptr)->toString()),
              caption + ", L1\n" + first + levels + "| DRAM DRAM" + last);
    EXPECT_EQ(linesOfTree(initRooflineOptions(4, nullptr)->toString()),
              caption + ", L1\n" + first + levels + "| L2 L2| L3 L3| DRAM DRAM" + last);
    EXPECT_EQ(linesOfTree(initRooflineOptions(9, nullptr)->toString()),
              caption + ", L1\n" + first + levels + "| L2 L2| L3 L3| L4 L4| DRAM DRAM" + last);
}

TEST(OptionTree, DefaultsToIntegersWhereNoFloatWorkIsAtTheFirstLevel) {
    const auto metrics = makeMemoryMetrics(makeDataset("a SelfElapsedTime=1 SelfFloatOps=2 SelfMemL2=1"), {});
    for (const int levels : {1, 4}) {
        const auto tree = parse(initRooflineOptions(levels, metrics)->toString());
        EXPECT_EQ(textOf(tree["groups"][0]["defRooflineTypes"]), R"(["i"])");
        EXPECT_EQ(textOf(tree["defConfigurationCaption"]),
                  levels == 1 ? "Default: integer operations" : "Default: integer operations, L1");
    }
}

TEST(OptionTree, IsTranslatedOnceAndWrittenInOrder) {
    CRooflineOptions options;
    const CRadioOptionsStrategy radio;
    COptionGroup group(radio, "b", true);  // its text is "[b_lin ]"
    group.addOptionValue({"d", "x", ""});
    group.addOptionValue({"", "y", "e"});
    options.addOptionGroup(group);
    const std::string expected =
        R"({"groups":[{"caption":"[b_lin ]","provideCaption":true,"defRooflineTypes":[],)"
        R"("options":[{"caption":"[d ]","value":"x"},)"
        R"({"caption":"","value":"y","expl":"e"}],"isRadio":true}]})";
    EXPECT_EQ(options.toString(), expected);
    EXPECT_EQ(options.toString(), expected);
    EXPECT_EQ(options.getOptionCaption("x") + options.getOptionCaption("y") + options.getOptionCaption("z"),
              "[d ]");
}

// With all levels; not made before the tests' messages are set up.
std::shared_ptr<const CRooflineOptions> fullTree() {
    static const auto tree = initRooflineOptions(9, nullptr);
    return tree;
}

// "f/1/L1/all f/1/L2/all"
std::string textOf(const RooflineConfigurations& configurations) {
    std::vector<std::string> items;
    for (const auto& configuration : configurations)
        items.push_back(boost::join(configuration.getTypes(), "/"));
    return boost::join(items, " ");
}

TEST(ConfigurationString, IsReadByTheFirstPlaceOfEachToken) {
    const struct {
        const char* configuration;
        const char* expected;
    } cases[]{
        {"", "f/1/L1/all"},
        {"zzz--", "f/1/L1/all"},
        {"i-0", "i/0/L1/all"},
        {"i-f", "f/1/L1/all"},  // a radio group's order decides
        {"b-load-store", "b/1/L1/load"},
        {"xL1-DRAM", "f/1/DRAM/all"},  // no "-" ahead of L1
        {"L1gpu", "f/1/L1/all"},       // what follows a token isn't tested
        {"L2gpu-DRAM", "f/1/L2/all f/1/DRAM/all"},
        {"DRAM-L2", "f/1/L2/all f/1/DRAM/all"},
        {"0-1-L3", "f/0/L3/all f/1/L3/all"},
        {"f-L1-1-0", "f/0/L1/all"},  // the first "1" stands inside "L1"
        {"L2-1-0", "f/0/L2/all f/1/L2/all"},
        {"fail-store", "f/1/L1/store"},
    };
    for (const auto& [configuration, expected] : cases) {
        RooflineConfigurations configurations;
        EXPECT_TRUE(configurations.init(configuration, fullTree()));
        EXPECT_EQ(textOf(configurations), expected) << configuration;
        std::vector<std::string> tokens;
        for (const auto& axis : configurations.getAxes())
            tokens.insert(tokens.end(), axis.begin(), axis.end());
        EXPECT_EQ(fullTree()->getRooflineConfigurationStr(tokens), boost::join(tokens, "-")) << configuration;
    }
}

TEST(ConfigurationString, OfAnySelectionReadsBackToIt) {
    EXPECT_TRUE(rc::check([] {
        RooflineTypes types;
        for (const char* token :
             {"f", "i", "b", "0", "1", "L1", "L2", "L3", "L4", "DRAM", "load", "store", "all", "x"})
            if (pick(0, 2)) types.insert(types.begin() + pick(0, static_cast<int>(types.size()) + 1), token);
        const auto text = fullTree()->getRooflineConfigurationStr(types);
        const auto read = fullTree()->getRooflineTypesSet(text);
        RC_ASSERT(read.size() == 4u);
        std::vector<std::string> tokens;
        for (const auto& axis : read) tokens.insert(tokens.end(), axis.begin(), axis.end());
        RC_ASSERT(boost::join(tokens, "-") == text);
        for (const auto& type : types) {  // all that was chosen is there, but in the radio groups
            const bool isRadio = type.size() == 1 ? std::isalpha(static_cast<unsigned char>(type[0]))
                                                  : type.find_first_of("0123456789D") == std::string::npos;
            RC_ASSERT(isRadio || std::count(tokens.begin(), tokens.end(), type) == 1);
        }
    }));
}

TEST(Configurations, OfAllThatOccursAreTheProductWithoutDefaults) {
    RooflineConfigurations configurations;
    EXPECT_TRUE(configurations.init({{"i", "f"}, {"1"}, {"DRAM", "L1"}, {"all"}}, fullTree()));
    EXPECT_EQ(textOf(configurations), "f/1/L1/all f/1/DRAM/all i/1/L1/all i/1/DRAM/all");
    EXPECT_TRUE(configurations.init({{"f"}, {"1"}, {"L1"}}, fullTree()));
    EXPECT_TRUE(configurations.empty()) << "no traffic was chosen";
    EXPECT_TRUE(configurations.init("0", fullTree()));
    EXPECT_EQ(configurations.size(), 1u) << "replaced, not added to";
    EXPECT_FALSE(configurations.init("0", nullptr));
    EXPECT_TRUE(configurations.empty() && configurations.getAxes().empty());
    EXPECT_TRUE(configurations.init("0", std::make_shared<const CRooflineOptions>()));
    EXPECT_TRUE(configurations.empty()) << "a tree without groups";
}

TEST(Configurations, AnswerForTheirTypes) {
    const RooflineConfiguration configuration({"f", "1"});
    EXPECT_TRUE(configuration.hasType("") && RooflineConfiguration().hasType(""));
    EXPECT_TRUE(configuration.hasTypes({}) && configuration.hasTypes({"1", "", "f"}));
    EXPECT_FALSE(configuration.hasTypes({"1", "0"}));
    EXPECT_TRUE(configuration.hasNoTypes({}) && configuration.hasNoTypes({"0", "L1"}));
    EXPECT_FALSE(configuration.hasNoTypes({""}) || configuration.hasNoTypes({"0", "1"}));
    EXPECT_THAT(configuration.getCaptions(nullptr), IsEmpty());
}

TEST(Options, OfUnusualGroups) {
    const COptionsStrategy any;
    CRooflineOptions options;
    COptionGroup noDefaults(any, "no defaults", false);
    noDefaults.addOptionValue({"caption", "x", ""});
    noDefaults.addOptionValue({"", "y", ""});
    options.addOptionGroup(COptionGroup(any, "no values", true));
    options.addOptionGroup(noDefaults);
    EXPECT_EQ(options.getRooflineConfigurationStr({}), "x");
    EXPECT_EQ(options.getRooflineConfigurationStr({"y", "x"}), "x-y");
    EXPECT_THAT(options.getRooflineTypesSet("y"), ElementsAre(IsEmpty(), ElementsAre("y")));
    EXPECT_EQ(noDefaults.getCaption({"y", "z", "x"}), "caption") << "the first with a caption";
    EXPECT_THAT(options.getCaptions({"x"}), ElementsAre("")) << "one a group that provides captions";
    EXPECT_THAT(CRooflineOptions().getCaptions({"x"}), ElementsAre("L1"));
    EXPECT_THAT(fullTree()->getCaptions({"f", "L2", "all"}), ElementsAre(fullTree()->getOptionCaption("L2")));

    COptionGroup front(any, "front", false);
    front.addOptionValue({"", "a", ""});
    COptionGroup back(any, "back", false);
    back.addOptionValue({"", "b", ""});
    options.insertOptionGroup(0, front);
    options.insertOptionGroup(99, back);
    EXPECT_EQ(options.getRooflineConfigurationStr({}), "a-x-b");
}

}  // namespace
}  // namespace data_models2::test
