// Runs of the program within the test's process, and a folder for the files of one test.
#pragma once

#include "embedded_host/embedded_host.h"

#include "cli/program.h"
#include "tests/embedded_host/folder_test.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

namespace cli::test {

struct Run {
    int code;
    std::string out, err;
};

inline Run run(std::vector<std::string> arguments, const std::string& input = {}) {
    std::vector<const char*> argv{"roofline"};
    for (const auto& argument : arguments) argv.push_back(argument.c_str());
    std::istringstream in(input);
    std::ostringstream out, err;
    Console console{out, err, false, false, &in};
    const auto code = runRoofline(static_cast<int>(argv.size()), argv.data(), console);
    return {code, out.str(), err.str()};
}

// Nothing but one line that holds the reason, on stderr.
inline void expectRefused(const std::vector<std::string>& arguments, int code, const char* reason) {
    const auto result = run(arguments);
    EXPECT_EQ(result.code, code) << result.err;
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err.rfind("roofline: ", 0), 0U) << result.err;
    EXPECT_NE(result.err.find(reason), std::string::npos) << result.err;
    EXPECT_EQ(result.err.find('\n') + 1, result.err.size()) << result.err;
}

using embedded_host::test::FolderTest;

}  // namespace cli::test
