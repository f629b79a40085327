#pragma once

#include "Platform/Mach/Semaphore.h"
#include "Tests/Support/BoundedThread.h"

#include <list>
#include <mutex>
#include <vector>

namespace Ombrique::Tests {

/// Threads that block on one semaphore, each known to be blocked before the next one starts, and the order in which
/// they wake. A test wakes all of them before it ends.
class Sleepers {
public:
    /// `wait` blocks on `semaphore` in the way that is under test.
    Sleepers(semaphore_t semaphore, std::function<void()> wait) : mSemaphore(semaphore), mWait(std::move(wait)) {}

    void add(int id) {
        const std::size_t before = blocked();
        mThreads.emplace_back([this, id] {
            mWait();
            const std::lock_guard lock(mMutex);
            mWoken.push_back(id);
        });
        EXPECT_TRUE(eventually([&] { return blocked() == before + 1; })) << "sleeper " << id << " doesn't block";
    }

    std::size_t blocked() const { return inspectSemaphore(mSemaphore).blocked; }

    /// The sleepers that have woken, in their order, once there are `count` of them.
    std::vector<int> woken(std::size_t count) {
        const auto read = [this] {
            const std::lock_guard lock(mMutex);
            return mWoken;
        };
        EXPECT_TRUE(eventually([&] { return read().size() >= count; })) << "a signal woke nobody";
        return read();
    }

private:
    semaphore_t mSemaphore;
    std::function<void()> mWait;
    std::mutex mMutex;
    std::vector<int> mWoken;
    std::list<BoundedThread> mThreads;
};

} // namespace Ombrique::Tests
