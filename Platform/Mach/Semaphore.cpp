#include "Platform/Mach/Semaphore.h"

#include <condition_variable>
#include <memory>
#include <mutex>
#include <new>
#include <shared_mutex>
#include <unordered_map>
#include <utility>

namespace {

constexpr task_t kThisTask = 1;

class CountingSemaphore {
public:
    explicit CountingSemaphore(std::int64_t count) : mCount(count) {}

    kern_return_t wait() {
        std::unique_lock lock(mMutex);
        if (mTerminated)
            return KERN_TERMINATED;
        if (mCount > 0) {
            --mCount;
            return KERN_SUCCESS;
        }
        Waiter self{.below = mLast};
        mLast = &self;
        self.wake.wait(lock, [&self] { return self.released; });
        return self.result;
    }

    kern_return_t signal() {
        const std::lock_guard lock(mMutex);
        if (mLast != nullptr)
            releaseLast(KERN_SUCCESS);
        else
            ++mCount;
        return KERN_SUCCESS;
    }

    kern_return_t signalAll() {
        const std::lock_guard lock(mMutex);
        releaseAll(KERN_SUCCESS);
        return KERN_SUCCESS;
    }

    // A thread that found the semaphore before it lost its name may call wait() after this. It must not block for ever.
    void terminate() {
        const std::lock_guard lock(mMutex);
        mTerminated = true;
        releaseAll(KERN_TERMINATED);
    }

    SemaphoreState state() {
        const std::lock_guard lock(mMutex);
        SemaphoreState state{mCount, 0};
        for (const Waiter* waiter = mLast; waiter != nullptr; waiter = waiter->below)
            ++state.blocked;
        return state;
    }

private:
    // A blocked thread, on that thread's own stack. The chain from mLast on is the order in which threads wake.
    struct Waiter {
        Waiter* below;
        std::condition_variable wake{};
        bool released = false;
        kern_return_t result = KERN_SUCCESS;
    };

    // Notifies under the lock: without it, the waiter and its condition variable may already be gone.
    void releaseLast(kern_return_t result) {
        Waiter& waiter = *std::exchange(mLast, mLast->below);
        waiter.released = true;
        waiter.result = result;
        waiter.wake.notify_one();
    }

    void releaseAll(kern_return_t result) {
        while (mLast != nullptr)
            releaseLast(result);
    }

    std::mutex mMutex;
    std::int64_t mCount;
    Waiter* mLast = nullptr;
    bool mTerminated = false;
};

// The semaphores by their names. A call holds the semaphore that it found until it returns, whatever becomes of the
// name.
class Registry {
public:
    semaphore_t add(std::shared_ptr<CountingSemaphore> semaphore) {
        const std::lock_guard lock(mMutex);
        while (mNextName == 0 || mSemaphores.contains(mNextName))
            ++mNextName;
        mSemaphores.emplace(mNextName, std::move(semaphore));
        return mNextName++;
    }

    std::shared_ptr<CountingSemaphore> find(semaphore_t name) {
        const std::shared_lock lock(mMutex);
        const auto found = mSemaphores.find(name);
        return found == mSemaphores.end() ? nullptr : found->second;
    }

    std::shared_ptr<CountingSemaphore> remove(semaphore_t name) {
        const std::lock_guard lock(mMutex);
        const auto node = mSemaphores.extract(name);
        return node.empty() ? nullptr : node.mapped();
    }

private:
    std::shared_mutex mMutex;
    std::unordered_map<semaphore_t, std::shared_ptr<CountingSemaphore>> mSemaphores;
    semaphore_t mNextName = 1;
};

Registry& registry() {
    static Registry instance;
    return instance;
}

kern_return_t call(semaphore_t name, kern_return_t (CountingSemaphore::*operation)()) {
    const auto found = registry().find(name);
    return found != nullptr ? ((*found).*operation)() : KERN_INVALID_ARGUMENT;
}

} // namespace

task_t mach_task_self() noexcept { return kThisTask; }

kern_return_t semaphore_create(task_t task, semaphore_t* semaphore, int policy, int value) noexcept {
    if (task != kThisTask || semaphore == nullptr || policy != SYNC_POLICY_LIFO || value < 0)
        return KERN_INVALID_ARGUMENT;
    try {
        *semaphore = registry().add(std::make_shared<CountingSemaphore>(value));
        return KERN_SUCCESS;
    } catch (const std::bad_alloc&) {
        return KERN_RESOURCE_SHORTAGE;
    }
}

kern_return_t semaphore_destroy(task_t task, semaphore_t semaphore) noexcept {
    const auto removed = task == kThisTask ? registry().remove(semaphore) : nullptr;
    if (removed == nullptr)
        return KERN_INVALID_ARGUMENT;
    removed->terminate();
    return KERN_SUCCESS;
}

kern_return_t semaphore_wait(semaphore_t semaphore) noexcept { return call(semaphore, &CountingSemaphore::wait); }

kern_return_t semaphore_signal(semaphore_t semaphore) noexcept { return call(semaphore, &CountingSemaphore::signal); }

kern_return_t semaphore_signal_all(semaphore_t semaphore) noexcept {
    return call(semaphore, &CountingSemaphore::signalAll);
}

SemaphoreState inspectSemaphore(semaphore_t semaphore) noexcept {
    const auto found = registry().find(semaphore);
    return found != nullptr ? found->state() : SemaphoreState{};
}
