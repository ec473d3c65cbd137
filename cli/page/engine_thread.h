// The one thread that calls the library while a page is served: what others want of it is run there in turn.
#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>

namespace cli::page {

class EngineThread {
public:
    struct Duties {
        std::function<void()> tick;   // now and then between jobs
        std::function<void()> atEnd;  // the last thing that is run there
    };
    // No function of a duty or a job lets an exception out.
    struct Job {
        std::function<void()> run;   // on the thread
        std::function<void()> drop;  // in its place, on another, when the thread stops before
    };
    explicit EngineThread(Duties duties);
    ~EngineThread();
    EngineThread(const EngineThread&) = delete;
    EngineThread& operator=(const EngineThread&) = delete;

    // From any thread.
    void post(Job job);
    // Drops the jobs that wait and waits for the one that runs. From then on every job is dropped.
    void stop();

private:
    void work();

    const Duties m_duties;
    std::mutex m_mutex;  // guards what follows
    std::condition_variable m_changed;
    std::deque<Job> m_jobs;
    bool m_isStopping = false;

    std::thread m_thread;
};

}  // namespace cli::page
