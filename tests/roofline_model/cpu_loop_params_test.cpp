// The CPU's parameter table against its rules, and the captions of its charts.
#include "roofline_model/unified/loop_params_tables.h"

#include "tests/roofline_model/test_host.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace data_models2::test {
namespace {

const LoopParams& params() { return getCpuTables().params; }

// "name: expression [types] bits"
std::string lineOf(const LoopParam& param) {
    return fmt::format("{}: {} [{}] {}", param.getName(), expressionOf(param),
                       boost::join(param.getRooflineTypes(), ","), param.getType());
}

LoopParams selected(const RooflineTypes& types) {
    return getLoopParams4RooflineConfiguration(params(), RooflineConfiguration(types));
}

// Every configuration that a chart can show; without levels when the level is empty.
template <class Check>
void forEachConfiguration(Check check) {
    for (const std::string operations : {"f", "i", "b"})
        for (const std::string data : {"0", "1"}) {
            check(operations, data, std::string(), std::string());
            for (const std::string level : {"L1", "L2", "L3", "L4", "DRAM"})
                for (const std::string traffic : {"load", "store", "all"})
                    check(operations, data, level, traffic);
        }
}

// The fields of a level's traffic: "SelfL2Load SelfL2Store +".
std::string trafficOf(const std::string& data, const std::string& level, const std::string& traffic) {
    const auto prefix = data + (level == "DRAM" ? "Dram" : level);
    if (traffic != "all") return prefix + (traffic == "load" ? "Load" : "Store");
    return prefix + "Load " + prefix + "Store +";
}

const std::map<std::string, std::string> kKinds{{"f", "Float"}, {"i", "Int"}, {"b", "Mixed"}};
const std::map<std::string, std::string> kRates{{"f", "GFlops"}, {"i", "GIntOps"}, {"b", "GMixedOps"}};

TEST(CpuLoopParams, Are195InFiveGroups) {
    std::map<std::size_t, int> points, others;  // by the number of types
    std::string common;
    for (const auto& param : params()) {
        const auto& types = param.getRooflineTypes();
        const bool isCommon = types == RooflineTypes{""};
        if (isCommon)
            common += "\n" + lineOf(param);
        else
            ++(param.isCoordinate() ? points : others)[types.size()];
    }
    EXPECT_EQ(params().size(), 195u);
    EXPECT_EQ(points, (std::map<std::size_t, int>{{2, 18}, {4, 135}}));
    EXPECT_EQ(others, (std::map<std::size_t, int>{{1, 1}, {2, 30}}));
    EXPECT_EQ(common, R"t(
name: FunctionName [] 8
locat: Location [] 0
type: LoopType TypeDetail "(%1)" DataTypes translate join [] 0
vec: Vectorized [] 1
selfElapsedTime: SelfElapsedTime [] 1
selfTime: SelfTime [] 1
key: RowKey [] 0
totalTime: TotalTime [] 1
totalElapsedTime: TotalElapsedTime [] 1
selfMem: SelfMemL1 [] 1
totalMem: TotalMem [] 1)t");
    EXPECT_EQ(lineOf(params()[29]), "rva: Rva [0] 0");
}

TEST(CpuLoopParams, OfAConfigurationMakeOnePointAndTheLevelsIntensityComesLast) {
    forEachConfiguration(
        [](const auto& operations, const auto& data, const auto& level, const auto& traffic) {
            std::map<std::string, std::string> last, expected;
            std::map<std::string, int> bits;
            const auto types = level.empty() ? RooflineTypes{operations, data}
                                             : RooflineTypes{operations, data, level, traffic};
            for (const auto& param : selected(types)) {
                const std::string name(param.getName());
                if (!param.isCoordinate() && !name.ends_with("Mem")) continue;
                last[name] = expressionOf(param);
                bits.emplace(name, param.getType());
                EXPECT_EQ(bits[name], param.getType()) << name << " is as necessary at a level";
            }
            const auto expect = [&, operations, level, traffic](const std::string& suffix,
                                                                const std::string& rows) {
                const auto intensity =
                    rows + kKinds.at(operations) + "Ops " + trafficOf(rows, level, traffic) + " /";
                expected["x" + suffix] =
                    (level.empty() ? rows + kKinds.at(operations) + "Ai" : intensity) + " log10";
                expected["y" + suffix] = rows + kRates.at(operations) + " log10";
            };
            expect("", "Self");
            if (data == "0") expect("1", "Total");
            expected["selfMem"] = level.empty() ? "SelfMemL1" : trafficOf("Self", level, traffic);
            expected["totalMem"] = level.empty() ? "TotalMem" : trafficOf("Total", level, traffic);
            // Deliberate: of L3 alone the stores are those of L1.
            if (level == "L3" && traffic == "all") expected["totalMem"] = "TotalL3Load TotalL1Store +";
            EXPECT_EQ(last, expected) << boost::join(types, "-");
            const int self = param_type::kLog10 | (data == "1" ? param_type::kNecessary : 0);
            EXPECT_TRUE(bits["x"] == self && bits["y"] == self);
            EXPECT_TRUE(data == "1" || (bits["x1"] == 6 && bits["y1"] == 6));
        });
}

TEST(CpuLoopParams, OfOneConfigurationKeepTheTablesOrder) {
    const auto some = selected({"f", "1", "L2", "load"});
    EXPECT_EQ(lineOf(some[13]) + lineOf(some.back()),
              "selfMem: SelfL2Load [L2,load] 1x: SelfFloatOps SelfL2Load / log10 [f,1,L2,load] 6");
    EXPECT_TRUE(some.back().isApplicable({"0", "L2"}) && !some.back().isApplicable({"0", "L3", ""}));
    int calls = 0;
    forEachLoopParamSet({{some, {}}, {some, {"L2"}}}, [&](const LoopParam&) { ++calls; });
    EXPECT_EQ(calls, 32);
}

TEST(CpuLoopParams, AreBoundForTheLifeOfTheInitializer) {
    const auto dataset = makeDataset("a SelfFloatOps=100 SelfL2Load=10");
    const auto some = selected({"f", "1", "L2", "load"});
    {
        const LoopParamsInitializer binding(some, dataset);
        EXPECT_TRUE(some.back().isValid());
        EXPECT_EQ(some.back().getValue(dataset, rowsOf(dataset).front()).toDouble(), 1.0);
        EXPECT_FALSE(some[11].isValid()) << "the dataset has no rate";
    }
    EXPECT_FALSE(some.back().isValid());
    const LoopParam none("none", nullptr, {""}, param_type::kNumeric);
    none.init(dataset);
    EXPECT_TRUE(!none.isValid() && none.getExpr().empty() && none.getValue(dataset, nullptr).isEmpty());
}

TEST(CpuCaptions, FollowTheConfigurationAndAreTranslatedOnce) {
    const std::tuple<RooflineTypes, const char*, const char*, const char*> rows[]{
        {{"f", "1"}, "FLOP/byte", "GFLOP/s", "}"},
        {{"i", "0"}, "INTOP/byte", "GINTOP/s", R"(,"namePref":"Self","namePref1":"Total"})"},
        {{"b", "1"}, "(INTOP+FLOP)/byte", "(GINTOP+GFLOP)/s", "}"},
        {{"f", "1"}, "FLOP/byte", "GFLOP/s", "}"}};
    for (const auto& [types, x, y, rest] : rows)
        EXPECT_EQ(rabbit::writeObject([&, t = types](rabbit::object& object) {
                      addRooflineProperties(object, getCpuTables().properties, RooflineConfiguration(t));
                  }),
                  fmt::format(R"({{"nameX":"Arithmetic Intensity","nameY":"Performance","measureX":"{}",)"
                              R"("measureY":"{}"{})",
                              x, y, rest));
}

TEST(CpuCaptions, OfTheAttributesHaveTheProgramsValues) {
    const RooflineConfiguration any({"f"});
    const auto attributes = parse(rabbit::writeObject(
        [&](rabbit::object& object) { addRooflineAttributes(object, getCpuTables().attributes, any); }));
    EXPECT_EQ(test::lineOf(attributes, {"selfTime", "totalMem"}),
              R"(selfTime={"name":"Self Time","measure":"s","isMem":false} )"
              R"(totalMem={"name":"Total Memory Traffic","measure":"GB","isMem":false})");
    const RooflineAttrsTotal total({.name = "L1", .elapsedTime = 1.5, .time = 2.5, .gigabytes = 3.5});
    EXPECT_EQ(rabbit::writeObject([&](rabbit::object& object) {
                  addProgramTotalRooflineAttributes(object, getCpuTables().attributes, any, total);
              }),
              R"({"selfElapsedTime":1.5,"selfTime":2.5,"totalElapsedTime":1.5,"totalTime":2.5,)"
              R"("selfMem":3.5,"totalMem":3.5})");
}

}  // namespace
}  // namespace data_models2::test
