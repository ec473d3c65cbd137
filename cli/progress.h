// Progress and cancelling of imports, and where their texts go.
#pragma once

#include "cli/console.h"

#include <cstddef>
#include <stdexcept>
#include <string>

namespace cli {

// Ends with kCancelled.
class Cancelled : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// A bar on a terminal, nothing elsewhere. While it lives, an interrupt cancels instead of killing, so that no
// half-written file stays behind.
class ProgressBar {
public:
    ProgressBar(Console& console, std::string what);
    ~ProgressBar();
    ProgressBar(const ProgressBar&) = delete;
    ProgressBar& operator=(const ProgressBar&) = delete;

    // False when the user cancelled.
    bool show(std::size_t done, std::size_t all);
    void clear();
    bool isCancelled() const;

private:
    using Handler = void (*)(int);
    Console& m_console;
    std::string m_what;
    Handler m_before;
    int m_shown = -1;  // percent
};

// To stdout when `path` is empty or "-", else to a file, which is replaced only with `force`.
int writeImported(const std::string& text, const std::string& path, bool force, Console& console);

}  // namespace cli
