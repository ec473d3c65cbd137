// Debug messages: one log4cplus channel a source unit, a message is put together only when somebody listens.
#pragma once

#include <log4cplus/logger.h>

#include <sstream>
#include <string>

namespace data_models2::roofline {

// Held by each unit as a file-level object.
class LogChannel {
public:
    explicit LogChannel(const char* unit)
        : m_logger(log4cplus::Logger::getInstance(std::string("ombrix.roofline.") + unit)) {}

    // `write` is given the stream that takes the message.
    template <class Write>
    void debug(Write&& write, const char* file = __builtin_FILE(), int line = __builtin_LINE()) const {
        if (!m_logger.isEnabledFor(log4cplus::DEBUG_LOG_LEVEL)) return;
        std::ostringstream stream;
        write(stream);
        m_logger.forcedLog(log4cplus::DEBUG_LOG_LEVEL, stream.str(), file, line);
    }

private:
    log4cplus::Logger m_logger;
};

}  // namespace data_models2::roofline
