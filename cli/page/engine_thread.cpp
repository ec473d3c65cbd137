// Running of jobs and of what the library's tasks have found.
#include "cli/page/engine_thread.h"

#include "embedded_host/embedded_host.h"

#include "cli/page/quiet_thread.h"

#include <chrono>
#include <utility>

namespace cli::page {
namespace {

constexpr std::chrono::milliseconds kTick(500);

}  // namespace

EngineThread::EngineThread(Duties duties)
    : m_duties(std::move(duties)), m_thread(startQuietly([this] { work(); })) {}

EngineThread::~EngineThread() { stop(); }

void EngineThread::post(Job job) {
    {
        const std::lock_guard lock(m_mutex);
        if (!m_isStopping) {
            m_jobs.push_back(std::move(job));
            m_changed.notify_one();
            return;
        }
    }
    job.drop();
}

void EngineThread::stop() {
    std::deque<Job> dropped;
    {
        const std::lock_guard lock(m_mutex);
        m_isStopping = true;
        dropped.swap(m_jobs);
    }
    m_changed.notify_one();
    for (const auto& job : dropped) job.drop();
    if (m_thread.joinable()) m_thread.join();
}

void EngineThread::work() {
    using Clock = std::chrono::steady_clock;
    auto nextTick = Clock::now() + kTick;
    std::unique_lock lock(m_mutex);
    while (!m_isStopping) {
        m_changed.wait_until(lock, nextTick, [this] { return m_isStopping || !m_jobs.empty(); });
        if (m_isStopping) break;
        Job job;
        if (!m_jobs.empty()) {
            job = std::move(m_jobs.front());
            m_jobs.pop_front();
        }
        lock.unlock();
        if (job.run) job.run();
        job = {};  // what it holds may be the last of a result
        embedded_host::pumpTasks(std::chrono::milliseconds::zero());
        if (Clock::now() >= nextTick) {
            m_duties.tick();
            nextTick = Clock::now() + kTick;
        }
        lock.lock();
    }
    lock.unlock();
    m_duties.atEnd();
}

}  // namespace cli::page
