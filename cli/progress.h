// Progress and cancelling of long work, and where the texts of imports go.
#pragma once

#include "host_interfaces/progress.h"

#include "cli/console.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <mutex>
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

// Throws Cancelled when the user has cancelled.
void throwIfCancelled(const ProgressBar& bar);

// The bar as the library wants it. The bar outlives this object.
class BarProgress final : public data_models2::IProgress {
public:
    explicit BarProgress(ProgressBar& bar) : m_bar(bar) {}
    void start(const std::string& what, std::uint64_t totalSteps) override;
    void message(const std::string&) override {}
    void advance(std::uint64_t doneSteps) override;
    void finish() override;
    std::uint64_t getTotalSteps() const override { return m_totalSteps; }
    void cancel() override { m_isCancelled = true; }
    bool isCancelled() const override { return m_isCancelled || m_bar.isCancelled(); }

private:
    ProgressBar& m_bar;
    std::mutex m_mutex;  // one thread at a time draws
    std::atomic<std::uint64_t> m_totalSteps = 0;
    std::atomic<bool> m_isCancelled = false;
};

// To stdout when `path` is empty or "-", else to a file, which is replaced only with `force`.
int writeImported(const std::string& text, const std::string& path, bool force, Console& console);

}  // namespace cli
