// The rules of the indicators and checks, one named row each.
#include "results_comparer/configurations.h"
#include "results_comparer/cpu_match_indicators.h"
#include "results_comparer/gpu_match_indicators.h"
#include "tests/embedded_host/result_text.h"
#include "tests/roofline_model/test_host.h"

#include <boost/core/demangle.hpp>

#include <functional>
#include <typeinfo>

namespace data_models2::results_comparer_algs {
namespace {

using namespace cpu_match_indicators;
using namespace gpu_match_indicators;

std::string textOf(const MatchResult& result) {
    constexpr const char* kNames[] = {"no", "yes", "-"};
    const std::string text = kNames[static_cast<int>(result.status)];
    return result.weight == 1.0 ? text : fmt::format("{} {}", text, result.weight);
}

// "no dataset" is none; the judged row is the last one of its text, "no row" none at all.
struct Input {
    explicit Input(const std::string& text) {
        if (text == "no dataset") return;
        auto table = test::tableOf(text == "no row" || text == "no name" ? "f" : text);
        const int last = static_cast<int>(table.rows.size()) - 1;
        if (text == "no name") table.rows[0].cells.clear();
        const sptr_t<test::Dataset> made(new test::Dataset(std::move(table)));
        dataset = made;
        if (text != "no row") row = made->row(last);
    }
    sptr_t<IDataset> dataset;
    sptr_t<RowNode> row;
};

using Make = std::function<std::shared_ptr<IMatchIndicator>(const Input&, const Input&)>;

template <class Indicator>
Make of() {
    return [](const Input& a, const Input& b) { return std::make_shared<Indicator>(a.dataset, b.dataset); };
}

Make ofMetric(double weight) {
    return [weight](const Input& a, const Input& b) {
        return std::make_shared<MetricsMatch<long long>>(a.dataset, b.dataset, FieldId::ComparisonMetric,
                                                         weight);
    };
}

TEST(MatchIndicators, judge_two_rows_by_their_rules) {
    const std::tuple<Make, const char*, const char*, const char*> cases[]{
        {of<SourceFilesMatch>(), R"(f SourceLocation="a.c:1")", R"(f SourceLocation="a.c:7:2")", "yes"},
        {of<SourceFilesMatch>(), R"(f SourceLocation="a.c")", R"(f SourceLocation="a.c:1")", "yes"},
        {of<SourceFilesMatch>(), R"(f SourceLocation="a.c")", R"(f SourceLocation="b.c")", "no"},
        {of<SourceFilesMatch>(), R"(f SourceLocation=":1")", R"(f SourceLocation=":2")", "yes"},
        {of<SourceFilesMatch>(), R"(f SourceLocation="")", "f SourceLocation=5u", "-"},
        {of<SourceFilesMatch>(), R"(f SourceLocation="")", R"(f SourceLocation=":2")", "no"},
        {of<SourceFilesMatch>(), R"(f SourceLocation="")", "f", "no"},
        {of<SourceFilesMatch>(), "no dataset", "no dataset", "-"},

        {of<SourceLinesMatch>(), "f SourceLine=10u", "f SourceLine=13u", "yes"},
        {of<SourceLinesMatch>(), "f SourceLine=14u", "f SourceLine=10u", "no"},
        {of<SourceLinesMatch>(), "f SourceLine=9223372036854775807l", "f SourceLine=-9l", "no"},
        {of<SourceLinesMatch>(), "f SourceLine=1u", "f", "no"},

        {ofMetric(2.5), "f ComparisonMetric=5l", "f ComparisonMetric=5u", "yes 2.5"},
        {ofMetric(2.5), "f ComparisonMetric=5l", "f ComparisonMetric=6l", "no 2.5"},
        {ofMetric(2.5), "f", "f", "- 2.5"},

        {of<NestingLevelsMatch>(), "f NestingLevel=2u type=0xc", "f NestingLevel=1u type=0x4", "yes"},
        {of<NestingLevelsMatch>(), "f NestingLevel=0u type=0xc", "f NestingLevel=0u type=0x4", "yes"},
        {of<NestingLevelsMatch>(), "f NestingLevel=1u", "f NestingLevel=2u", "no"},
        {of<NestingLevelsMatch>(), "f NestingLevel=1u", "f", "no"},
        {of<NestingLevelsMatch>(), "f NestingLevel=1u type=none", "f NestingLevel=1u", "no"},
        {of<NestingLevelsMatch>(), "f NestingLevel=1u type=none", "f NestingLevel=1u type=none", "-"},
        {of<NestingLevelsMatch>(), "no row", "f NestingLevel=1u type=none", "no"},

        {of<CallCountsMatch>(), "f CallCount=7l", "f CallCount=7l", "yes"},
        {of<CallCountsMatch>(), "f CallCount=7l type=0x4", "f CallCount=8l type=0x4", "-"},
        {of<CallCountsMatch>(), "f CallCount=7l type=0x4", "f CallCount=7l", "yes"},
        {of<CallCountsMatch>(), "f CallCount=7l", "f", "no"},

        {of<MangledNamesMatch>(), R"(f MangledName="__go")", R"(f MangledName="at line 5 go")", "yes 3"},
        {of<MangledNamesMatch>(), R"(f MangledName="go")", R"(f MangledName="stop")", "no 3"},
        {of<MangledNamesMatch>(), R"(f MangledName="")", "f MangledName=7u", "yes 3"},

        {of<RowTypesMatch>(), "f type=0x164", "f type=0x164", "yes"},
        {of<RowTypesMatch>(), "f type=0x4", "f type=0x14", "yes"},        // both plain
        {of<RowTypesMatch>(), "f type=0x104", "f type=0x10c", "no"},      // one of the kind
        {of<RowTypesMatch>(), "f type=0x104", "f type=0x44", "no"},       // neither
        {of<RowTypesMatch>(), "f type=0x184", "f type=0x4c", "yes"},      // at the top
        {of<RowTypesMatch>(), "f\n  f type=0x184", "f type=0x4c", "no"},  // below a row
        {of<RowTypesMatch>(), "f type=0x0", "f type=0x100", "yes"},       // two functions
        {of<RowTypesMatch>(), "f type=0x40000", "f type=0x40100", "yes"},
        {of<RowTypesMatch>(), "f type=0x40000", "f type=0x100", "no"},
        {of<RowTypesMatch>(), "f type=none", "f type=none", "-"},

        {of<DataTypesMatch>(), R"(f DataTypes="Int32; [a]")", R"(f DataTypes="Int32; [b]; [c]")", "yes"},
        {of<DataTypesMatch>(), R"(f DataTypes="<b>I</b>; A")", R"(f DataTypes="B; <b>I</b>")", "yes 1.2"},
        {of<DataTypesMatch>(), R"(f DataTypes="<b>Int32</b>")", R"(f DataTypes="<b>Int64</b>")", "no 1.2"},
        {of<DataTypesMatch>(), R"(f DataTypes="<b>Int32")", R"(f DataTypes="</b><b>Int32")", "yes 1.2"},
        {of<DataTypesMatch>(), R"(f DataTypes="<b>I; [</b>")", R"(f DataTypes="<b>I</b>")", "yes 1.2"},
        {of<DataTypesMatch>(), R"(f DataTypes="<b>Int32</b>")", R"(f DataTypes="A; Int32")", "yes"},
        {of<DataTypesMatch>(), R"(f DataTypes="UInt32")", R"(f DataTypes="<b>Int32</b>")", "yes"},
        {of<DataTypesMatch>(), R"(f DataTypes="A; [Int32]")", R"(f DataTypes="<b>Int32</b>")", "no"},
        {of<DataTypesMatch>(), R"(f DataTypes="<b></b>")", R"(f DataTypes="<b></b>")", "yes"},
        {of<DataTypesMatch>(), "f DataTypes=5u", R"(f DataTypes="5")", "no"},
        {of<DataTypesMatch>(), "f DataTypes=5u", "f", "-"},
        {of<DataTypesMatch>(), "no dataset", "f", "no"},

        {of<BUParentalPresenceMatch>(), "f\n  g", "h\n  i", "yes"},
        {of<BUParentalPresenceMatch>(), "f", "g", "yes"},
        {of<BUParentalPresenceMatch>(), "f\n  g", "h", "no"},
        {of<BUParentalPresenceMatch>(), "no row", "h", "no"},

        {of<FunctionNameMatch>(), "f(int)", "f(long)", "yes"},
        {of<FunctionNameMatch>(), "f", "no name", "-"},
        {of<FunctionNameMatch>(), "no name", "f", "-"},
        {of<FunctionNameMatch>(), "no dataset", "no name", "no"},
        {of<FunctionNameMatch>(), "no dataset", "no dataset", "-"},

        {of<InstanceCountMatch>(), "f InstanceCount=-1l", "f InstanceCount=-1i", "yes"},
    };
    for (const auto& [make, a, b, expected] : cases) {
        const Input first(a), second(b);
        EXPECT_EQ(textOf((*make(first, second))(first.row, second.row)), expected) << a << " | " << b;
    }
}

using ModelPtr = std::shared_ptr<ISurveyingViewModel>;

// The first row of a result of the embedded host, with the rows that stand in `children` below it.
ModelPtr modelOf(const std::string& row, const std::string& children = {}) {
    return embedded_host::test::viewOf(R"({"id":1,)" + row + R"(,"children":[)" + children + "]}");
}

template <class Indicator>
std::string judge(const ModelPtr& a, const ModelPtr& b) {
    const auto first = [](const auto& model) { return *model->getDataset(DataType::Cpu)->getRows(0); };
    return textOf(Indicator(a, b)(first(a), first(b)));
}

TEST(MatchIndicators, compare_medians_of_trip_counts_unless_both_are_functions) {
    const auto row = [](int type, const char* counts) {
        return modelOf(fmt::format(R"("type":{},"cells":{{"TripCounts":"{}"}})", type, counts));
    };
    const auto loop = row(4, "8; 100; 16"), function = row(0, "9, 16, 17, 18"), none = modelOf(R"("type":4)");
    const std::pair<const char*, const char*> rows[]{{"16", "yes"},
                                                     {"17", "no"},
                                                     {"many", "no"},
                                                     {"0", "no"},
                                                     // What isn't a count as a whole is none.
                                                     {"1e3 16.9 10x -2 -0.5", "yes"},
                                                     {"16.9.1; 16.x", "no"}};
    for (const auto& [counts, expected] : rows)
        EXPECT_EQ(judge<TripCountMediansMatch>(loop, row(4, counts)), expected) << counts;
    EXPECT_EQ(judge<TripCountMediansMatch>(loop, function), "yes");
    EXPECT_EQ(judge<TripCountMediansMatch>(none, none), "-");
    EXPECT_EQ(judge<TripCountMediansMatch>(function, function), "-");
}

TEST(MatchIndicators, compare_the_widths_that_loops_were_unrolled_to) {
    const auto loop = [](int level, const std::string& parts) {
        return modelOf(fmt::format(R"("cells":{{"NestingLevel":{}}})", level), parts);
    };
    const std::string wide = R"({"id":2,"type":2048,"cells":{"UnrollFactor":2,"Isa":"AVX2"}})";
    const std::string scalar = R"({"id":3,"type":2048,"cells":{}})";
    const auto model = loop(1, wide + "," + scalar);
    const std::string wider = R"({"id":4,"type":2304,"cells":{"Isa":"AVX512"}})";
    const std::string other = R"({"id":5,"kind":"loop"})";  // no part of an unrolled loop
    EXPECT_EQ(judge<UnrolledChildPresenceMatch>(model,
                                                loop(1, boost::join(std::vector{scalar, wider, other}, ","))),
              "yes");
    EXPECT_EQ(judge<UnrolledChildPresenceMatch>(model, loop(1, wide)), "no");
    EXPECT_EQ(judge<UnrolledChildPresenceMatch>(model, loop(1, R"({"id":2})")), "-");
    EXPECT_EQ(judge<UnrolledChildPresenceMatch>(model, loop(2, wide)), "-");
    const auto lost = std::make_shared<test::ViewModel>();  // rows can't be asked for
    lost->datasets = {{DataType::Cpu, test::makeDataset("f NestingLevel=1u")}};
    EXPECT_EQ(judge<UnrolledChildPresenceMatch>(model, lost), "no");
    EXPECT_EQ(judge<UnrolledChildPresenceMatch>(lost, lost), "-");
    EXPECT_EQ(judge<UnrolledChildPresenceMatch>(loop(1, R"({"id":9,"children":[)" + wide + "]}"), model),
              "-");
}

// The classes of a list, in its order.
template <class List>
std::string classesOf(const List& list) {
    std::vector<std::string> names;
    for (const auto& item : list) {
        const auto& object = *item;
        const auto name = boost::core::demangle(typeid(object).name());
        names.push_back(name.substr(name.rfind("::") + 2));
    }
    return boost::join(names, " ");
}

TEST(Configurations, list_what_they_look_at) {
    const auto model = [](const std::string& collected, const char* kind = "cpu") {
        const auto program = R"(,"program":{"collected":[)" + collected + "]}";
        return embedded_host::parseResult(embedded_host::test::resultText("", program, kind), "r")
            ->viewModel();
    };
    const auto both = model(R"("trip_counts","call_counts")"), trips = model(R"("trip_counts")"),
               gpu = model("", "gpu");
    const std::string cpuList =
        "NestingLevelsMatch MetricsMatch<long long> MangledNamesMatch RowTypesMatch DataTypesMatch "
        "UnrolledChildPresenceMatch BUParentalPresenceMatch SourceFilesMatch SourceLinesMatch";
    for (const auto type :
         {ComparableReportType::Default, ComparableReportType::Roofline, ComparableReportType{7}}) {
        const auto configuration = getComparisonConfig(type);
        const auto indicators = [&](const auto& a, const auto& b, bool isGpu = false) {
            return classesOf(configuration->getMatchIndicators(a, b, isGpu));
        };
        EXPECT_EQ(indicators(both, both), cpuList + " TripCountMediansMatch CallCountsMatch");
        EXPECT_EQ(indicators(both, trips), cpuList + " TripCountMediansMatch");
        EXPECT_EQ(indicators(model(""), both), cpuList);
        EXPECT_EQ(indicators(both, nullptr), "");
        EXPECT_EQ(indicators(both, gpu), "");
        EXPECT_EQ(indicators(gpu, both, true), "");
        EXPECT_EQ(indicators(gpu, gpu, true),
                  "FunctionNameMatch InstanceCountMatch SourceLinesMatch SourceFilesMatch");
        EXPECT_EQ(classesOf(configuration->getEligibilityChecks(false)),
                  type == ComparableReportType::Roofline ? "ExecutedLoop FuncIndexPresence NonZeroGMixedOPS"
                                                         : "ExecutedLoop FuncIndexPresence");
        EXPECT_EQ(classesOf(configuration->getEligibilityChecks(true)), "ExecutedLoop");
        EXPECT_EQ(classesOf(configuration->getComparabilityChecks(false)), "RowTypesComparability");
        EXPECT_EQ(classesOf(configuration->getComparabilityChecks(true)), "");
    }
    const auto metric = DefaultConfiguration().getCPUMatchIndicators(both, both)[1];
    EXPECT_EQ(dynamic_cast<const MetricsMatch<long long>&>(*metric).field, FieldId::ComparisonMetric);
}

TEST(Checks, pass_executed_rows_with_an_address_and_operations) {
    for (const auto& [text, passed] :
         {std::pair{R"(f Rva="" SelfGMixedOps=1)", "executed address operations"},
          {"f TotalGMixedOps=2u type=0x400", "operations"},
          {"f SelfGMixedOps=1e-12 Rva=0u type=none", "address"},
          {R"(f SelfGMixedOps="7")", "executed"}}) {
        const Input input(text);
        std::vector<std::string> words;
        if (ExecutedLoop()(input.row, input.dataset)) words.push_back("executed");
        if (FuncIndexPresence()(input.row, input.dataset)) words.push_back("address");
        if (NonZeroGMixedOPS()(input.row, input.dataset)) words.push_back("operations");
        EXPECT_EQ(boost::join(words, " "), passed) << text;
    }
    EXPECT_FALSE(FuncIndexPresence()(Input("f Rva=1").row, nullptr));
}

}  // namespace
}  // namespace data_models2::results_comparer_algs
