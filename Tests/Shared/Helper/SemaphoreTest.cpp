#include "Plugins/Shared/Helper/Semaphore.h"

#include <gtest/gtest.h>

#include <mutex>
#include <thread>
#include <vector>

// The plug-in's semaphore, and the platform's under it. Where a signal is lost, a test hangs until CTest ends it.
namespace Ombrique::GaussianBlur {

namespace {

struct ObservedSemaphore : Semaphore {
    using Semaphore::mSemaphore;
    using Semaphore::mWaiters;
    using Semaphore::Semaphore;
    std::int64_t count() const { return inspectSemaphore(mSemaphore).count; }
    std::size_t blocked() const { return inspectSemaphore(mSemaphore).blocked; }
};

template <typename Condition> void await(Condition condition) {
    while (!condition())
        std::this_thread::yield();
}

TEST(Semaphore, GivesEachSignalToTheThreadThatCameLast) {
    ObservedSemaphore semaphore(0);
    std::mutex mutex;
    std::vector<int> woken;
    std::vector<std::jthread> threads;
    const auto block = [&](int id) {
        const std::size_t before = semaphore.blocked();
        threads.emplace_back([&, id] {
            semaphore.wait();
            const std::lock_guard lock(mutex);
            woken.push_back(id);
        });
        await([&] { return semaphore.blocked() == before + 1; });
    };
    const auto wokenOf = [&](std::size_t count) {
        await([&] { return std::lock_guard(mutex), woken.size() >= count; });
        return std::lock_guard(mutex), woken;
    };
    for (int id = 0; id < 7; ++id)
        block(id);
    semaphore.signal();
    EXPECT_EQ(semaphore.blocked(), 6u) << "the thread has the signal before it runs";
    block(7); // and one that comes in between can't take it
    EXPECT_EQ(wokenOf(1), (std::vector{6}));
    semaphore.signal(1);
    EXPECT_EQ(wokenOf(2), (std::vector{6, 7}));
    semaphore.signal(0);
    EXPECT_EQ(semaphore.mWaiters, 6);
    semaphore.signal(3);
    EXPECT_EQ(semaphore.blocked(), 3u);
    wokenOf(5);
    semaphore.signal();
    EXPECT_EQ(wokenOf(6).back(), 2);
    semaphore.signalAll();
    EXPECT_EQ(semaphore.count(), 0);
    threads.clear();
    EXPECT_EQ(semaphore.mWaiters, 0);
    semaphore.signal(3); // kept, as nobody waits
    semaphore.signalAll();
    EXPECT_EQ(semaphore.count(), 3);
    EXPECT_EQ(ObservedSemaphore(2).count(), 2);
}

TEST(Semaphore, LosesAndDoublesNoSignal) {
    ObservedSemaphore lock(1);
    ObservedSemaphore turns[2] = {ObservedSemaphore(1), ObservedSemaphore(0)};
    int guarded = 0;
    std::vector<std::jthread> threads;
    for (const int self : {0, 0, 1, 1})
        threads.emplace_back([&, self] {
            for (int round = 0; round < 5000; ++round) {
                turns[self].wait();
                turns[1 - self].signal();
                lock.wait();
                ++guarded;
                lock.signal();
            }
        });
    threads.clear();
    EXPECT_EQ(guarded, 20000);
    EXPECT_EQ(lock.count(), 1);
}

TEST(PlatformSemaphore, IsRefusedOrEndsAsItsCallersAreTold) {
    semaphore_t name = 77;
    for (const auto& [task, policy, value] : {std::tuple{2u, 2, 0}, {1u, 3, 0}, {1u, 2, -1}})
        EXPECT_EQ(semaphore_create(task, &name, policy, value), KERN_INVALID_ARGUMENT);
    EXPECT_EQ(name, 77u);
    ASSERT_EQ(semaphore_create(mach_task_self(), &name, SYNC_POLICY_LIFO, 0), KERN_SUCCESS);
    std::vector<std::jthread> threads;
    for (int thread = 0; thread < 2; ++thread)
        threads.emplace_back([name] { EXPECT_EQ(semaphore_wait(name), KERN_TERMINATED); });
    await([&] { return inspectSemaphore(name).blocked == 2; });
    EXPECT_EQ(semaphore_destroy(mach_task_self() + 1, name), KERN_INVALID_ARGUMENT);
    EXPECT_EQ(semaphore_destroy(mach_task_self(), name), KERN_SUCCESS);
    for (const auto call : {semaphore_wait, semaphore_signal, semaphore_signal_all})
        EXPECT_EQ(call(name), KERN_INVALID_ARGUMENT);
}

// The waiter destroys the semaphore while the signal that woke it may still be on its way out.
TEST(PlatformSemaphore, MayBeDestroyedRightAfterAWake) {
    std::atomic<semaphore_t> offered = 0;
    const std::jthread signaller([&](const std::stop_token& stop) {
        while (!stop.stop_requested()) {
            const semaphore_t name = offered.exchange(0);
            semaphore_signal(name);
            semaphore_signal(name); // meets the destruction at any of its stages
        }
    });
    for (int round = 0; round < 3000; ++round) {
        semaphore_t name = 0;
        semaphore_create(mach_task_self(), &name, SYNC_POLICY_LIFO, 0);
        offered = name;
        EXPECT_EQ(semaphore_wait(name), KERN_SUCCESS);
        EXPECT_EQ(semaphore_destroy(mach_task_self(), name), KERN_SUCCESS);
    }
}

} // namespace

} // namespace Ombrique::GaussianBlur
