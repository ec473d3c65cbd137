// Debug messages: one log4cplus channel a source unit, a message is put together only when somebody listens.
#pragma once

#include <log4cplus/logger.h>

#include <locale>
#include <mutex>
#include <optional>
#include <sstream>
#include <string>

namespace data_models2::roofline {

// Held by each unit as a file-level object. Its logger is looked up at the first message, so a unit may be
// used before `main` begins.
class LogChannel {
public:
    constexpr explicit LogChannel(const char* unit) : m_unit(unit) {}

    // `write` is given the stream that takes the message.
    template <class Write>
    void debug(Write&& write, const char* file = __builtin_FILE(), int line = __builtin_LINE()) const {
        std::call_once(m_once, [this] {
            m_logger = log4cplus::Logger::getInstance(std::string("ombrix.roofline.") + m_unit);
        });
        if (!m_logger->isEnabledFor(log4cplus::DEBUG_LOG_LEVEL)) return;
        std::ostringstream stream;
        stream.imbue(std::locale::classic());
        write(stream);
        m_logger->forcedLog(log4cplus::DEBUG_LOG_LEVEL, stream.str(), file, line);
    }

private:
    const char* m_unit;
    mutable std::once_flag m_once;
    mutable std::optional<log4cplus::Logger> m_logger;
};

}  // namespace data_models2::roofline
