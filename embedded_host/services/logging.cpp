// Where debug messages go.
#include "embedded_host/embedded_host.h"

#include <log4cplus/consoleappender.h>
#include <log4cplus/layout.h>
#include <log4cplus/logger.h>
#include <log4cplus/nullappender.h>

#include <memory>

namespace embedded_host {
namespace {

log4cplus::SharedAppenderPtr stderrAppender() {
    log4cplus::SharedAppenderPtr appender(new log4cplus::ConsoleAppender(true, true));
    appender->setLayout(std::make_unique<log4cplus::PatternLayout>("%D{%H:%M:%S.%q} %c: %m%n"));
    return appender;
}

}  // namespace

void setUpLogging(bool debug) {
    auto root = log4cplus::Logger::getRoot();
    root.removeAllAppenders();
    // Without any appender a forced message makes log4cplus complain on stderr.
    root.addAppender(debug ? stderrAppender() : log4cplus::SharedAppenderPtr(new log4cplus::NullAppender));
    root.setLogLevel(debug ? log4cplus::DEBUG_LOG_LEVEL : log4cplus::OFF_LOG_LEVEL);
}

}  // namespace embedded_host
