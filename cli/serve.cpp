// `roofline serve`: the page of one or two results from this machine, for as long as the program runs.
#include "cli/page/live_page.h"
#include "cli/page/quiet_thread.h"
#include "cli/text.h"

#include <fmt/format.h>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <future>
#include <optional>
#include <thread>

namespace cli {
namespace {

// While it lives, Ctrl-C and a request to terminate wait to be taken by `wait`. It is made on the thread that
// starts the program: the others hear no signals.
class Interrupts {
public:
    Interrupts() {
        sigemptyset(&m_signals);
        sigaddset(&m_signals, SIGTERM);
        struct sigaction usual {};
        // A script's background job is deaf to Ctrl-C.
        if (sigaction(SIGINT, nullptr, &usual) == 0 && usual.sa_handler != SIG_IGN)
            sigaddset(&m_signals, SIGINT);
        pthread_sigmask(SIG_BLOCK, &m_signals, &m_before);
    }
    ~Interrupts() { pthread_sigmask(SIG_SETMASK, &m_before, nullptr); }
    Interrupts(const Interrupts&) = delete;
    Interrupts& operator=(const Interrupts&) = delete;

    void wait() const {
        int signal = 0;
        while (sigwait(&m_signals, &signal) != 0) {
        }
    }

private:
    sigset_t m_signals;
    sigset_t m_before;
};

// Ends the program, as done, when it lives too long: a large result may just be read anew. Custom roofs
// replace their file at once, so that none is left half written.
class Deadline {
public:
    Deadline()
        : m_thread(page::startQuietly([done = m_done.get_future()] {
              if (done.wait_for(std::chrono::seconds(3)) == std::future_status::timeout)
                  std::quick_exit(kDone);
          })) {}
    ~Deadline() {
        m_done.set_value();
        m_thread.join();
    }
    Deadline(const Deadline&) = delete;
    Deadline& operator=(const Deadline&) = delete;

private:
    std::promise<void> m_done;
    std::thread m_thread;
};

}  // namespace

int runServe(const ServeRequest& request, Console& console) {
    std::optional<Deadline> deadline;  // outlives the page
    const page::LivePage live(request, page::requireResources(page::resources()));
    const Interrupts interrupts;  // given up before the page is: a second Ctrl-C doesn't wait for it
    const auto files = request.source.file + (request.compare.empty() ? "" : " and " + request.compare);
    console.err << cleanText(fmt::format("serving {} on this machine; Ctrl-C ends it", files)) << std::endl;
    console.out << live.address() << std::endl;
    interrupts.wait();
    deadline.emplace();
    return kDone;
}

}  // namespace cli
