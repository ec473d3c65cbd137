// The one thread that calls the library while a page is served: what others want of it is run there in turn.
#pragma once

#include <chrono>
#include <condition_variable>
#include <deque>
#include <functional>
#include <future>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <thread>
#include <type_traits>
#include <utility>

namespace cli::page {

// A job wasn't done: the thread is stopping, or others take too long.
class NotNow : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

inline constexpr auto kStopping = "the program is stopping";

class EngineThread {
public:
    struct Duties {
        std::function<void()> tick;   // now and then between jobs; lets no exception out
        std::function<void()> atEnd;  // the last thing that is run there
    };
    explicit EngineThread(Duties duties);
    ~EngineThread();
    EngineThread(const EngineThread&) = delete;
    EngineThread& operator=(const EngineThread&) = delete;

    // Runs `job` on the thread and gives its answer or throws its exception; any thread but that one. Throws
    // NotNow when the thread stops or `limit` has passed, and the job may then still be run: it must own all
    // that it uses.
    template <class Job>
    std::invoke_result_t<Job&> ask(Job job, std::chrono::milliseconds limit);

    // Drops the jobs that wait and waits for the one that runs. From then on every `ask` throws.
    void stop();

private:
    void post(std::function<void()> job);
    void work();

    const Duties m_duties;
    std::mutex m_mutex;  // guards what follows
    std::condition_variable m_changed;
    std::deque<std::function<void()>> m_jobs;
    bool m_isStopping = false;

    std::thread m_thread;
};

template <class Job>
std::invoke_result_t<Job&> EngineThread::ask(Job job, std::chrono::milliseconds limit) {
    auto task = std::make_shared<std::packaged_task<std::invoke_result_t<Job&>()>>(std::move(job));
    auto answer = task->get_future();
    post([moved = std::move(task)] { (*moved)(); });
    if (answer.wait_for(limit) != std::future_status::ready) throw NotNow("the program is busy: try again");
    try {
        return answer.get();
    } catch (const std::future_error&) {  // dropped before it was run
        throw NotNow(kStopping);
    }
}

}  // namespace cli::page
