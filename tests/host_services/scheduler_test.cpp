// The scheduler: what it runs, what it drops, and on which thread completions arrive.
#include "host_interfaces/tasks.h"

#include "embedded_host/embedded_host.h"

#include <gtest/gtest.h>

#include <future>
#include <thread>

namespace data_models2 {
namespace {

using namespace std::chrono_literals;
using embedded_host::pumpTasks;

struct Log {
    std::promise<void> gate;
    std::shared_future<void> opened = gate.get_future().share();
    std::atomic<int> runs = 0;
    int finished = 0;  // of the pumping thread
    std::thread::id host = std::this_thread::get_id();
};

// Waits for the gate or its cancellation.
class Task final : public DefaultTaskImpl {
public:
    explicit Task(std::shared_ptr<Log> log) : m_log(std::move(log)) {}
    void DoTask() override {
        EXPECT_NE(std::this_thread::get_id(), m_log->host);
        while (!isCancelled() && m_log->opened.wait_for(1ms) != std::future_status::ready) {
        }
        ++m_log->runs;
    }
    void TaskFinished() override {
        EXPECT_EQ(std::this_thread::get_id(), m_log->host);
        ++m_log->finished;
        throw 42;  // harms nobody
    }

private:
    std::shared_ptr<Log> m_log;
};

TEST(Scheduler, RunsEachIdOnceAtATimeAndTellsTheHostThread) {
    embedded_host::setAssertionHandler([](const std::string&, const std::string&, int) {});
    const auto log = std::make_shared<Log>();
    const auto scheduler = IScheduler::Get();
    const auto start = [&](const char* id) { scheduler->schedule(sptr_t<ITask>(new Task(log)), id); };
    start("a");
    start("a");
    start("b");
    start("c");  // queued behind the two threads
    start("c");
    scheduler->schedule(nullptr, "d");
    EXPECT_FALSE(pumpTasks(10ms));
    log->gate.set_value();
    EXPECT_TRUE(pumpTasks(1min));
    EXPECT_EQ(log->runs, 3);
    EXPECT_EQ(log->finished, 3);
    start("a");
    EXPECT_TRUE(pumpTasks(1min));
    EXPECT_EQ(log->finished, 4);
    embedded_host::setAssertionHandler({});
}

TEST(Scheduler, StopsWhatRunsAndTellsNothing) {
    const auto log = std::make_shared<Log>();
    const auto scheduler = IScheduler::Get();
    for (const char* id : {"a", "b", "c"}) scheduler->schedule(sptr_t<ITask>(new Task(log)), id);
    embedded_host::stopTasks();
    EXPECT_LE(log->runs, 2) << "what was queued isn't run";
    EXPECT_TRUE(pumpTasks(0ms));
    EXPECT_EQ(log->finished, 0);
    embedded_host::setTaskThreads(0);
    EXPECT_FALSE(scheduler->isEnabled());
    embedded_host::setTaskThreads(2);
}

}  // namespace
}  // namespace data_models2
