#pragma once

#include "Plugins/Shared/Helper/Semaphore.h"

#include <deque>
#include <functional>
#include <optional>

namespace Ombrique::GaussianBlur {

/// Deferred tasks, first in, first out. Any thread adds tasks; a thread that has time calls `updateQueue` from its own
/// loop and thereby runs one on itself. The queue has no thread of its own and never blocks for work.
///
/// All operations may be called from any thread at the same time, by several consumers too: each task runs once, and is
/// taken in the order in which it was added, though tasks that different consumers took run side by side. No foreign
/// code runs while the queue is locked. So a task may call every operation, nested `updateQueue` among them, and so may
/// the copying and the destruction of what it captured.
///
/// Destruction must not overlap with an operation on another thread.
class IdleQueue {
public:
    IdleQueue();
    /// Drops the pending tasks without running them, and also those that are added by the destruction of what they
    /// captured, which must come to an end.
    virtual ~IdleQueue();

    IdleQueue(const IdleQueue&) = delete;
    IdleQueue& operator=(const IdleQueue&) = delete;

    /// Adds a copy of `task` and returns at once. What copying it throws passes out, and the queue is as before.
    void async(const std::function<void()>& task);
    /// Whether a task is pending; one that runs at this moment is not. Another consumer can change the answer.
    bool hasTask();
    /// Runs the oldest pending task, if there is one, and destroys it. An exception of the task's passes out, with the
    /// task gone and the others still pending; an empty function throws std::bad_function_call in this way.
    void updateQueue();
    /// Drops the tasks that are pending now without running them. What their destruction adds stays pending.
    void clearAsyncQueue();

private:
    std::optional<std::function<void()>> takeOldest();

    /// Used as a lock: its count starts at 1. Owned.
    Semaphore* mQueueLock = nullptr;
    std::deque<std::function<void()>> mTasks;
};

} // namespace Ombrique::GaussianBlur
