// What a process sets up: logging and the assertion handler.
#include "host_interfaces/host_functions.h"

#include "embedded_host/embedded_host.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <log4cplus/logger.h>

#include <stdexcept>

namespace embedded_host {
namespace {

using data_models2::reportAssertion;

// What `body` writes to stderr.
template <class Body>
std::string stderrOf(Body body) {
    testing::internal::CaptureStderr();
    body();
    return testing::internal::GetCapturedStderr();
}

TEST(Logging, GoesToStderrOnlyWhenAskedFor) {
    const auto log = [] {
        auto logger = log4cplus::Logger::getInstance("ombrix.roofline.utils");
        logger.forcedLog(log4cplus::DEBUG_LOG_LEVEL, "hello", __FILE__, __LINE__);
        return logger.isEnabledFor(10000);
    };
    bool enabled = true;
    EXPECT_EQ(stderrOf([&] { setUpLogging(false), enabled = log(); }), "");
    EXPECT_FALSE(enabled);
    const auto debug = stderrOf([&] { setUpLogging(true), setUpLogging(true), enabled = log(); });
    EXPECT_THAT(debug, testing::HasSubstr("ombrix.roofline.utils: hello\n"));
    EXPECT_EQ(std::count(debug.begin(), debug.end(), '\n'), 1) << debug;
    EXPECT_TRUE(enabled);
}

TEST(Assertions, GoToTheHandlerAndReturn) {
    std::vector<std::string> seen;
    setAssertionHandler([&](const std::string& expression, const std::string& unit, int line) {
        seen.push_back(expression + '|' + unit + '|' + std::to_string(line));
        setAssertionHandler({});  // a handler may replace itself
    });
    reportAssertion("m_row", "utils", 7);
    EXPECT_THAT(seen, testing::ElementsAre("m_row|utils|7"));
    EXPECT_EQ(stderrOf([] { reportAssertion("m_row", nullptr, 7); }), "assertion failed: m_row (, line 7)\n");
    EXPECT_EQ(seen.size(), 1u);

    setAssertionHandler([](const auto&, const auto&, int) { throw std::runtime_error("from a handler"); });
    EXPECT_NO_THROW(reportAssertion(nullptr, "utils", 7));
    setAssertionHandler({});
}

}  // namespace
}  // namespace embedded_host
