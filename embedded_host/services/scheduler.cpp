// Runs tasks and hands their completions to the host's thread.
#include "embedded_host/services/scheduler.h"

#include "host_interfaces/host_functions.h"

#include "embedded_host/embedded_host.h"

#include <algorithm>
#include <utility>

namespace embedded_host {
namespace {
using namespace data_models2;

// A task lets no exception out; one that does ends as it stands.
template <class Step>
void runStep(Step step) {
    try {
        step();
    } catch (...) {
        reportAssertion("no exception leaves a task", "embedded_host/services/scheduler", __LINE__);
    }
}

}  // namespace

bool Scheduler::isEnabled() const {
    const std::lock_guard lock(m_mutex);
    return m_threadCount > 0;
}

void Scheduler::setThreadCount(unsigned count) {
    const std::lock_guard lock(m_mutex);
    m_threadCount = count;
}

void Scheduler::schedule(const sptr_t<ITask>& task, const std::string& id) {
    const std::lock_guard lock(m_mutex);
    const auto isSame = [&id](const Job& job) { return job.id == id; };
    if (!task || m_threadCount == 0 || std::any_of(m_queue.begin(), m_queue.end(), isSame) ||
        std::any_of(m_running.begin(), m_running.end(), isSame))
        return;
    while (m_threads.size() < m_threadCount)
        m_threads.emplace_back([this](const std::stop_token& stopped) { work(stopped); });
    m_queue.push_back({task, id});
    m_queueChanged.notify_one();
}

void Scheduler::work(const std::stop_token& stopped) {
    std::unique_lock lock(m_mutex);
    while (m_queueChanged.wait(lock, stopped, [this] { return !m_queue.empty(); })) {
        const Job job = std::move(m_queue.front());
        m_queue.pop_front();
        m_running.push_back(job);
        lock.unlock();
        runStep([&] { job.task->DoTask(); });
        lock.lock();
        std::erase_if(m_running, [&job](const Job& running) { return running.id == job.id; });
        m_done.push_back(job.task);
        m_jobDone.notify_all();
    }
}

bool Scheduler::pump(std::chrono::milliseconds limit) {
    const auto end = std::chrono::steady_clock::now() + limit;
    std::unique_lock lock(m_mutex);
    for (;;) {
        if (!m_jobDone.wait_until(lock, end, [this] { return !m_done.empty() || isIdle(); })) return false;
        if (m_done.empty()) return true;
        auto task = std::move(m_done.front());
        m_done.pop_front();
        ++m_delivering;
        lock.unlock();
        runStep([&] { task->TaskFinished(); });
        task.reset();  // which may end a whole result: not under the lock
        lock.lock();
        --m_delivering;
        m_jobDone.notify_all();
    }
}

// Tasks are cancelled and dropped outside the lock: what belongs to them may ask the scheduler.
void Scheduler::stop() {
    std::vector<std::jthread> threads;
    std::deque<sptr_t<ITask>> dropped;
    {
        const std::lock_guard lock(m_mutex);
        for (const auto& job : m_running) dropped.push_back(job.task);
        for (const auto& job : m_queue) dropped.push_back(job.task);
        m_queue.clear();
        threads.swap(m_threads);
    }
    for (const auto& task : dropped) runStep([&task] { task->Cancel(); });
    for (auto& thread : threads) thread.request_stop();
    threads.clear();  // joins
    dropped.clear();
    {
        const std::lock_guard lock(m_mutex);
        dropped.swap(m_done);
    }
    m_jobDone.notify_all();
}

Scheduler& theScheduler() {
    static const sptr_t<Scheduler> scheduler(new Scheduler);
    return *scheduler;
}

bool pumpTasks(std::chrono::milliseconds limit) { return theScheduler().pump(limit); }

void setTaskThreads(unsigned count) { theScheduler().setThreadCount(count); }

void stopTasks() { theScheduler().stop(); }

}  // namespace embedded_host

namespace data_models2 {

sptr_t<IScheduler> IScheduler::Get() { return sptr_t<IScheduler>(&embedded_host::theScheduler()); }

}  // namespace data_models2
