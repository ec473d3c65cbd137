// Work in the background: tasks, their completion, and the scheduler that a host runs them with.
#pragma once

#include "host_interfaces/export.h"
#include "host_interfaces/signals.h"
#include "host_interfaces/values.h"

#include <atomic>
#include <string>

namespace data_models2 {

// A piece of work that a scheduler runs once. Operations have the names of the scheduler's protocol.
class OMBRIX_API ITask : public IRefCounted {
public:
    // The work, on a thread of the scheduler's; lets no exception out.
    virtual void DoTask() = 0;
    // Asks for an early end, which a task may come to late or never; from any thread, at any time.
    virtual void Cancel() = 0;
    // After `DoTask`, on the thread that the host takes completions on, and once.
    virtual void TaskFinished() = 0;
};

// A task that remembers that it was cancelled.
class OMBRIX_API DefaultTaskImpl : public RefCounted<ITask> {
public:
    DefaultTaskImpl() = default;
    DefaultTaskImpl(const DefaultTaskImpl&) = delete;
    DefaultTaskImpl& operator=(const DefaultTaskImpl&) = delete;

    void Cancel() override { m_cancelled = true; }
    bool isCancelled() const { return m_cancelled; }

private:
    std::atomic<bool> m_cancelled = false;
};

// A task that tells its subscribers how it ended.
class OMBRIX_API BaseLongOperationTask : public DefaultTaskImpl {
public:
    enum class LoadType : int { Succeeded = 0, Failed = 1, Cancelled = 2 };

    void SetCompleteStatus(LoadType status) { m_status = status; }
    LoadType getCompleteStatus() const { return m_status; }

    // Raised by `TaskFinished`, after the status was set. A slot may disconnect itself.
    signal_t<const BaseLongOperationTask&> completed;

private:
    LoadType m_status = LoadType::Failed;
};

// The scheduler of the process.
class OMBRIX_API IScheduler : public IRefCounted {
public:
    // Never null.
    static sptr_t<IScheduler> Get();
    // Whether tasks can be run at all.
    virtual bool isEnabled() const = 0;
    // Runs `task` some time and returns at once; a host without threads may run it inside the call. A task
    // whose id is that of one queued or running is dropped: it isn't run and nothing of it is heard.
    // `task` must not be scheduled twice.
    virtual void schedule(const sptr_t<ITask>& task, const std::string& id) = 0;
};

}  // namespace data_models2
