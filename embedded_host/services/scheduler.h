// The scheduler of the embedded host: threads of its own, completions on the host's thread.
#pragma once

#include "host_interfaces/tasks.h"

#include <chrono>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace embedded_host {

// The threads start with the first task. All operations may be called from any thread.
class Scheduler final : public data_models2::RefCounted<data_models2::IScheduler> {
public:
    ~Scheduler() override { stop(); }

    bool isEnabled() const override;
    void schedule(const data_models2::sptr_t<data_models2::ITask>& task, const std::string& id) override;

    // Of threads that are started from now on; with 0 no further task is taken.
    void setThreadCount(unsigned count);
    // Delivers completions on the calling thread until no task is queued, running or being delivered or
    // `limit` has passed; true when none is left.
    bool pump(std::chrono::milliseconds limit);
    // Cancels what is queued or running, waits for the threads, delivers nothing. A later task starts anew.
    void stop();

private:
    struct Job {
        data_models2::sptr_t<data_models2::ITask> task;
        std::string id;
    };

    void work(const std::stop_token& stopped);
    bool isIdle() const { return m_queue.empty() && m_running.empty() && m_delivering == 0; }

    mutable std::mutex m_mutex;
    std::condition_variable_any m_queueChanged;  // a job was queued
    std::condition_variable m_jobDone;           // or delivered, or dropped
    std::deque<Job> m_queue;
    std::vector<Job> m_running;
    std::deque<data_models2::sptr_t<data_models2::ITask>> m_done;  // not delivered yet
    unsigned m_threadCount = 2;
    int m_delivering = 0;
    std::vector<std::jthread> m_threads;
};

Scheduler& theScheduler();

}  // namespace embedded_host
