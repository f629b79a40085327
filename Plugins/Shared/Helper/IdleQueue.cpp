#include "Plugins/Shared/Helper/IdleQueue.h"

#include "Plugins/Shared/Helper/ScopeExit.h"

#include <utility>

namespace Ombrique::GaussianBlur {

namespace {

auto hold(Semaphore& lock) {
    lock.wait();
    return ScopeExit([&lock] { lock.signal(); });
}

} // namespace

// Made in the body: where that throws, the other field is complete and is destroyed.
IdleQueue::IdleQueue() { mQueueLock = new Semaphore(1); }

IdleQueue::~IdleQueue() {
    // The dropped tasks may still use the queue, so they go before its lock does.
    while (takeOldest().has_value()) {
    }
    delete mQueueLock;
}

void IdleQueue::async(const std::function<void()>& task) {
    // Copied before the lock is taken: copying runs the captures' constructors.
    std::function<void()> copy = task;
    const auto held = hold(*mQueueLock);
    mTasks.push_back(std::move(copy));
}

bool IdleQueue::hasTask() {
    const auto held = hold(*mQueueLock);
    return !mTasks.empty();
}

void IdleQueue::updateQueue() {
    if (const auto task = takeOldest())
        (*task)();
}

void IdleQueue::clearAsyncQueue() {
    std::deque<std::function<void()>> dropped;
    const auto held = hold(*mQueueLock);
    dropped.swap(mTasks);
}

std::optional<std::function<void()>> IdleQueue::takeOldest() {
    std::optional<std::function<void()>> task;
    const auto held = hold(*mQueueLock);
    if (!mTasks.empty()) {
        // Swapped, not moved: what pop_front destroys under the lock is then certain to be empty.
        task.emplace().swap(mTasks.front());
        mTasks.pop_front();
    }
    return task;
}

} // namespace Ombrique::GaussianBlur
