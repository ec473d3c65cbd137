// Own values of roofs and the choice of roofs, as the program tells them.
#include "roofline_model/factories.h"

#include "tests/cli/program_run.h"
#include "tests/embedded_host/result_text.h"

#include <gmock/gmock.h>

namespace cli {
namespace {

using ::testing::HasSubstr;

const std::string kFolder = OMBRIX_SOURCE_DIR "/examples/quick/";

class Roofs : public test::FolderTest {
protected:
    const std::string machineText = embedded_host::readFile(kFolder + "machine.json");
    const std::string machine = file("machine.json", machineText);
    const std::string result = file("result.json", embedded_host::readFile(kFolder + "result.json"));
    test::Run roofs(std::vector<std::string> arguments) const {
        arguments.insert(arguments.begin(), {"roofs", result});
        return test::run(arguments);
    }
};

TEST_F(Roofs, KeepOwnValuesUntilTheyAreCleared) {
    const auto before = roofs({});
    const auto set =
        roofs({"--set", "dram  BANDWIDTH=40 GiB/s", "--set", "Scalar Add Peak=50", "--csv", "-"});
    EXPECT_THAT(set.out, HasSubstr("DRAM Bandwidth,memory,42.94967296,GB/s,6\n"));
    EXPECT_THAT(set.out, HasSubstr("Scalar Add Peak,compute,50,GFLOP/s,9\n"));
    EXPECT_THAT(set.err,
                ::testing::StartsWith("set DRAM Bandwidth to 42.94967296 GB/s, Scalar Add Peak to 50 "));
    EXPECT_EQ(roofs({"--csv", "-"}).out, set.out) << "another run sees them";
    EXPECT_THAT(roofs({"--clear", "--threads", "7", "--csv", "-"}).err, HasSubstr("8 threads (odd numbers"));
    EXPECT_EQ(roofs({}).out, before.out);
    EXPECT_EQ(embedded_host::readFile(machine), machineText);
}

TEST_F(Roofs, RefuseWhatCannotBeMeantOrKept) {
    const auto inside =
        file("inside.json", embedded_host::test::resultText("", R"(, "machine": )" + machineText));
    const auto unwritable = file(std::string(252, 'm'), machineText);  // no room for a temporary beside it
    const std::string set = "--set", dram = "DRAM Bandwidth=1";
    const std::tuple<std::vector<std::string>, int, const char*> rows[] = {
        {{result, set, dram, "--clear"}, kUsage, "excludes"},
        {{result, "--selected", "--threads", "2"}, kUsage, "excludes"},
        {{result, set, dram, set, "dram=1"}, kUsage, "did you mean DRAM Bandwidth"},
        {{result, set, "lake=1"}, kUsage, "there are L1 Bandwidth, L2 Bandwidth"},
        {{result, set, "DRAM Bandwidth=40Gb/s"}, kUsage, "b stands for bits"},
        {{result, set, dram, set, "dramBandwidth=2"}, kUsage, "twice"},
        {{inside, set, dram}, kNoAnswer, "--machine FILE"},
        {{result, set, dram, "--machine", unwritable}, kNoAnswer, "cannot write"},
    };
    for (auto [arguments, code, reason] : rows) {
        arguments.insert(arguments.begin(), "roofs");
        test::expectRefused(arguments, code, reason);
    }
    EXPECT_EQ(embedded_host::readFile(machine), machineText);
}

TEST_F(Roofs, TellWhichAChartSelectsOnceThatIsKnown) {
    using namespace data_models2;
    const auto example = embedded_host::openResult(result);
    const auto engine = createRooflineInfo(example->viewModel());
    example->load(IViewModelBase::LoadType::Result);
    EXPECT_TRUE(embedded_host::pumpTasks(std::chrono::minutes(1)));
    const auto expected = engine->getSelectedRoofs("f", IRooflineInfo::Perspective::NotVectorized);
    const auto text = roofs({"--selected", "--config", "f", "--perspective", "2", "--json", "-"}).out;
    EXPECT_EQ(text, expected);
    EXPECT_THAT(text, HasSubstr("peak\":{\"selected\":true")) << "what dominates was waited for";
    EXPECT_THAT(roofs({"--selected", "--csv", "-"}).out, HasSubstr("\nScalar L1 Bandwidth,no,yes\n"));
}

}  // namespace
}  // namespace cli
