// The progress bar, for importers and for the library, and the writing of imported texts.
#include "cli/progress.h"

#include "embedded_host/embedded_host.h"

#include <fmt/format.h>

#include <algorithm>
#include <csignal>
#include <utility>

namespace cli {
namespace {

volatile std::sig_atomic_t g_interrupted = 0;

// The second one ends the program at once.
void onInterrupt(int signal) {
    if (g_interrupted) {
        std::signal(signal, SIG_DFL);
        std::raise(signal);
    }
    g_interrupted = 1;
}

}  // namespace

ProgressBar::ProgressBar(Console& console, std::string what) : m_console(console), m_what(std::move(what)) {
    g_interrupted = 0;
    m_before = std::signal(SIGINT, onInterrupt);
    if (m_before == SIG_IGN) std::signal(SIGINT, SIG_IGN);  // a script's background job
}

ProgressBar::~ProgressBar() {
    clear();
    std::signal(SIGINT, m_before == SIG_ERR ? SIG_DFL : m_before);
}

bool ProgressBar::isCancelled() const { return g_interrupted != 0; }

bool ProgressBar::show(std::size_t done, std::size_t all) {
    constexpr int kWidth = 40;
    const auto percent =
        all == 0 ? 100 : static_cast<int>(100.0 * static_cast<double>(done) / static_cast<double>(all));
    if (m_console.errIsTerminal && percent != m_shown) {
        m_shown = percent;
        const auto full = std::clamp(percent * kWidth / 100, 0, kWidth);
        m_console.err << fmt::format("\r{} [{:#<{}}{:{}}] {} %", m_what, "", full, "", kWidth - full, percent)
                      << std::flush;
    }
    return !isCancelled();
}

void ProgressBar::clear() {
    if (m_shown >= 0) m_console.err << "\r\x1b[K" << std::flush;
    m_shown = -1;
}

void throwIfCancelled(const ProgressBar& bar) {
    if (bar.isCancelled()) throw Cancelled("cancelled");
}

void BarProgress::start(const std::string&, std::uint64_t totalSteps) { m_totalSteps = totalSteps; }

void BarProgress::advance(std::uint64_t doneSteps) {
    if (m_totalSteps == 0) return;
    const std::lock_guard lock(m_mutex);
    m_bar.show(doneSteps, m_totalSteps);
}

void BarProgress::finish() {
    const std::lock_guard lock(m_mutex);
    m_bar.clear();
}

int writeImported(const std::string& text, const std::string& path, bool force, Console& console) {
    if (path.empty() || path == "-") {
        console.out << text;
        return kDone;
    }
    embedded_host::writeFile(path, text, force);
    console.err << "wrote " << path << '\n';
    return kDone;
}

}  // namespace cli
