// The set-up of the test process: no log output, and messages of the tests' own beside the built-in ones.
#include "embedded_host/embedded_host.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace {

class Environment final : public testing::Environment {
public:
    void SetUp() override {
        embedded_host::setUpLogging(false);
        embedded_host::setTaskThreads(0);  // view models of tests change under way
        auto folder = (std::filesystem::temp_directory_path() / "roofline-XXXXXX").string();
        m_folder = mkdtemp(folder.data());
        std::filesystem::create_directory(m_folder / "messages");
        std::ofstream(m_folder / "messages" / "en.json")
            << R"({"a": "[a %1]", "a_lin": "[a_lin %1]", "a_s": "[a_s %1]", "a_lin_s": "[a_lin_s %1]",
            "b": "[b %1]", "b_lin": "[b_lin %1]", "b_s": "[b_s %1]", "c": "[c %1]", "c_lin": "[c_lin %1]",
            "d": "[d %1]"})";
        embedded_host::setMessageFolder(m_folder.string());
    }
    void TearDown() override { std::filesystem::remove_all(m_folder); }

private:
    std::filesystem::path m_folder;
};

[[maybe_unused]] const auto* const kEnvironment = testing::AddGlobalTestEnvironment(new Environment);

}  // namespace
