// Own values of roofs: what they hold for, and what the machine file keeps of them.
#include "tests/embedded_host/folder_test.h"
#include "tests/embedded_host/result_text.h"

#include <gmock/gmock.h>

#include <map>
#include <stdexcept>
#include <thread>

namespace embedded_host::test {
namespace {
using namespace data_models2;
using Strategy = RoofThreadingFeatures::Strategy;
using testing::HasSubstr;

constexpr auto kDram = RoofId::DramBandwidth;
const std::string kMachine = machineText(R"({"id": 6, "value": 10.00, "unit": "GB/s"},
    {"id": 16, "value": 2e1, "unit": "GINTOP/s"})") +
                             "\n";

using OwnRoofsTest = FolderTest;

// A program of three threads.
std::shared_ptr<Result> open(const std::string& machine) {
    return parseResult(resultText("", R"(, "program": {"usedThreads": 3})"), "r.json",
                       {.machineFile = machine});
}

std::shared_ptr<IRoofManager> tableOf(const std::shared_ptr<Result>& result) {
    return result->viewModel()->getRoofManager(DataType::Cpu);
}

std::string key(const RoofThreadingFeatures& features, OperationsType operations = OperationsType::Undefined,
                int perspective = 3) {
    return roof::getCpuRoofConfiguration(features, operations, IRooflineInfo::Perspective{perspective});
}

std::uint64_t dramOf(const std::shared_ptr<IRoofManager>& table, const std::string& configuration) {
    auto roofs = table->getRoofs(configuration);
    while ((*roofs).id != kDram) ++roofs;
    return (*roofs).value;
}

TEST_F(OwnRoofsTest, HoldForTheirSetUpUntilTheyAreCleared) {
    std::vector<RoofThreadingFeatures> grid;
    for (const int threads : {0, 1, 2, 3, 4, 5, 1'000'000})
        for (const auto strategy : {Strategy::MultiThread, Strategy::SingleThread})
            for (const int packages : {1, 2}) grid.push_back({threads, strategy, packages});
    const auto setUpOf = [](RoofThreadingFeatures features) {
        auto& threads = features.threadCount;
        threads = threads == 0 || threads == 3 ? 4 : threads == 5 ? 6 : threads;
        return features;
    };
    const auto path = file("machine.json", kMachine);
    const auto table = tableOf(open(path));
    std::map<RoofThreadingFeatures, std::uint64_t> own;
    const auto check = [&](const std::shared_ptr<IRoofManager>& asked) {
        for (const auto& features : grid)
            for (const auto operations : {OperationsType::Float, OperationsType::Int, OperationsType::Mixed})
                for (const int perspective : {1, 2, 3}) {
                    const auto set = own.find(setUpOf(features));
                    const auto text = key(features, operations, perspective);
                    ASSERT_EQ(dramOf(asked, text), set == own.end() ? 10'000'000'000 : set->second) << text;
                }
    };
    std::uint64_t value = 9'007'199'254'740'993;  // no double has it
    for (const auto& features : grid) {
        own[setUpOf(features)] = ++value;
        EXPECT_TRUE(table->setCustomRoofValues({{kDram, value}}, key(features)));
        check(table);
    }
    check(tableOf(open(path)));
    const std::jthread reader([&](std::stop_token stop) {
        while (!stop.stop_requested()) table->getRoofs("");
    });
    for (const auto& features : grid) {
        own.erase(setUpOf(features));
        EXPECT_TRUE(table->clearCustomRoofValues(key(features)));
        check(table);
    }
    EXPECT_EQ(readFile(path), kMachine);
}

TEST_F(OwnRoofsTest, StandBesideWhatOthersWroteInTheFile) {
    const auto path = file("machine.json", kMachine);
    const auto table = tableOf(open(path));
    const std::string others = R"({"threads":5,"unit":"KiB/s" , "id":6,"value":1e1})";
    auto text = kMachine;
    file("machine.json", text.insert(text.rfind('}'), R"(,"custom" : [)" + others + "]"));
    EXPECT_TRUE(table->setCustomRoofValues({{kDram, 42'500'000'000}, {RoofId::Int32VectorAddPeak, 7}},
                                           key({2, Strategy::SingleThread, 2})));
    EXPECT_EQ(dramOf(table, key({6, {}, 1})), 10240u);
    const std::string rest = R"("threads": 2, "packages": 2, "strategy": "single"})";
    EXPECT_THAT(readFile(path),
                HasSubstr(R"(,"custom" : [)" + others + R"(, {"id": 6, "value": 42.5, "unit": "GB/s", )" +
                          rest + R"(, {"id": 16, "value": 7, "unit": "INTOP/s", )" + rest + "]}"));
}

TEST_F(OwnRoofsTest, ChangeNothingWhenTheyCannotBeKept) {
    const auto openCopy = [&](const std::string& name) { return open(file(name, kMachine)); };
    const auto good = openCopy("good.json"), broken = openCopy("broken.json"), gone = openCopy("gone.json");
    const auto full = openCopy(std::string(252, 'm'));  // no room for the name of a temporary beside it
    file("broken.json", "no machine");
    std::filesystem::remove(m_folder / "gone.json");
    const auto inside = parseResult(resultText("", R"(, "machine": )" + kMachine), "r.json");
    const std::tuple<std::shared_ptr<Result>, RoofId, std::uint64_t, int, const char*> cases[] = {
        {good, RoofId::L1Bandwidth, 1, 3, "no roof 1"},
        {good, kDram, 0, 3, "1 to 1e19"},
        {good, kDram, 10'000'000'000'000'000'001U, 3, "1 to 1e19"},
        {good, kDram, 1, 1'000'001, "threads"},
        {full, kDram, 1, 3, "cannot write"},
        {broken, kDram, 1, 3, "broken.json: line 1"},
        {gone, kDram, 1, 3, "gone.json: cannot open"},
        {inside, kDram, 1, 3, "there is none"},
    };
    for (const auto& [result, id, value, threads, fault] : cases) {
        const auto configuration = key({threads, {}, 1});
        EXPECT_FALSE(tableOf(result)->setCustomRoofValues({{id, value}}, configuration)) << fault;
        EXPECT_THAT(result->ownRoofsFault(), HasSubstr(fault));
        EXPECT_EQ(dramOf(tableOf(result), configuration), 10'000'000'000u) << fault;
    }
    for (const auto& result : {good, full}) EXPECT_EQ(readFile(result->machineFile()), kMachine);
}

TEST(RoofValue, IsReadWithItsUnit) {
    const auto read = [](const std::string& text, bool isMemory) -> std::string {
        try {
            return fmt::format("={}", parseRoofValue(text, isMemory));
        } catch (const std::invalid_argument& error) {
            return error.what();
        }
    };
    const std::tuple<const char*, bool, const char*> cases[] = {{" 40 GiB/s ", true, "=42949672960"},
                                                                {"40", true, "=40000000000"},
                                                                {"0.5", false, "=500000000"},
                                                                {"40Gb/s", true, "b stands for bits"},
                                                                {"40GB/s", false, "for a compute roof"},
                                                                {"GB/s", true, "a number and a unit"},
                                                                {"nan", true, "1 to 1e19"}};
    for (const auto& [text, isMemory, answer] : cases) EXPECT_THAT(read(text, isMemory), HasSubstr(answer));
}

}  // namespace
}  // namespace embedded_host::test
