// The option tree, how selections are read from it, and the configurations that they stand for.
#include "roofline_model/unified/configurations.h"
#include "roofline_model/unified/option_tables.h"

#include "tests/roofline_model/test_host.h"

#include <gtest/gtest.h>

namespace data_models2::test {
namespace {

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
    EXPECT_EQ(linesOfTree(initRooflineOptions(2, nullptr)->toString()),
              caption + ", L1\n" + first + levels + "| DRAM DRAM" + last);
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
    const std::pair<const char*, const char*> cases[]{
        {"", "f/1/L1/all"},
        {"i-0", "i/0/L1/all"},
        {"i-f", "f/1/L1/all"},  // a radio group's order decides
        {"b-load-store", "b/1/L1/load"},
        {"xL1-DRAM", "f/1/DRAM/all"},  // no "-" ahead of L1
        {"L1gpu", "f/1/L1/all"},       // what follows a token isn't tested
        {"L2gpu-DRAM", "f/1/L2/all f/1/DRAM/all"},
        {"0-1-L3", "f/0/L3/all f/1/L3/all"},
        {"f-L1-1-0", "f/0/L1/all"},  // the first "1" stands inside "L1"
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
        for (const char* type : {"0", "1", "L1", "L2", "L3", "L4", "DRAM"})  // not of a radio group
            RC_ASSERT(!std::count(types.begin(), types.end(), type) ||
                      std::count(tokens.begin(), tokens.end(), type) == 1);
    }));
}

TEST(Configurations, OfAllThatOccursAreTheProductWithoutDefaults) {
    RooflineConfigurations configurations;
    EXPECT_TRUE(configurations.init({{"i", "f"}, {"1"}, {"DRAM", "L1"}, {"all"}}, fullTree()));
    EXPECT_EQ(textOf(configurations), "f/1/L1/all f/1/DRAM/all i/1/L1/all i/1/DRAM/all");
    EXPECT_TRUE(configurations.init({{"f"}, {"1"}, {"L1"}}, fullTree()) && configurations.empty());
}

}  // namespace
}  // namespace data_models2::test
