#include "Platform/Mach/Semaphore.h"
#include "Tests/Support/Sleepers.h"

#include <atomic>

using namespace Ombrique::Tests;

namespace {

using Order = std::vector<int>;

class Mach : public testing::Test {
protected:
    void SetUp() override { EXPECT_EQ(KERN_SUCCESS, semaphore_create(mach_task_self(), &mName, SYNC_POLICY_LIFO, 0)); }
    void TearDown() override { semaphore_destroy(mach_task_self(), mName); }

    void expectState(std::int64_t count, std::size_t blocked) const {
        EXPECT_EQ(count, inspectSemaphore(mName).count);
        EXPECT_EQ(blocked, inspectSemaphore(mName).blocked);
    }

    semaphore_t mName = 0;
};

// Each signal is given only after the last one's thread has run, so the order can't come from the scheduler.
TEST_F(Mach, SignalsWakeTheThreadThatCameLast) {
    Sleepers sleepers(mName, [this] { semaphore_wait(mName); });
    for (const int id : {0, 1, 2, 3})
        sleepers.add(id);
    for (std::size_t count = 1; count <= 4; ++count) {
        semaphore_signal(mName);
        sleepers.woken(count);
        expectState(0, 4 - count);
    }
    EXPECT_EQ((Order{3, 2, 1, 0}), sleepers.woken(4));
}

// The signal belongs to its thread as soon as it is given: a thread that comes between signal and wake-up blocks.
TEST_F(Mach, LatecomersDoNotTakeAGivenSignal) {
    Sleepers sleepers(mName, [this] { semaphore_wait(mName); });
    sleepers.add(0);
    sleepers.add(1);
    semaphore_signal(mName);
    expectState(0, 1);
    sleepers.add(2);
    EXPECT_EQ((Order{1}), sleepers.woken(1));
    semaphore_signal(mName);
    sleepers.woken(2);
    semaphore_signal(mName);
    EXPECT_EQ((Order{1, 2, 0}), sleepers.woken(3));
}

TEST_F(Mach, SignalAllWakesAllAndLeavesTheCount) {
    Sleepers sleepers(mName, [this] { semaphore_wait(mName); });
    for (const int id : {0, 1, 2})
        sleepers.add(id);
    semaphore_signal_all(mName);
    expectState(0, 0);
    EXPECT_EQ(3U, sleepers.woken(3).size());
    semaphore_signal(mName);
    semaphore_signal_all(mName);
    expectState(1, 0);
}

TEST_F(Mach, DestructionEndsWaitsAndTheName) {
    std::atomic<int> terminated = 0;
    Sleepers sleepers(mName, [&] { terminated += semaphore_wait(mName) == KERN_TERMINATED ? 1 : 0; });
    sleepers.add(0);
    sleepers.add(1);
    EXPECT_EQ(KERN_SUCCESS, semaphore_destroy(mach_task_self(), mName));
    sleepers.woken(2);
    EXPECT_EQ(2, terminated);
    for (const auto call : {semaphore_wait, semaphore_signal, semaphore_signal_all})
        EXPECT_EQ(KERN_INVALID_ARGUMENT, call(mName));
}

TEST_F(Mach, CreationRefusesWhatItCannotServe) {
    semaphore_t name = 77;
    EXPECT_EQ(KERN_INVALID_ARGUMENT, semaphore_create(mach_task_self() + 1, &name, SYNC_POLICY_LIFO, 0));
    EXPECT_EQ(KERN_INVALID_ARGUMENT, semaphore_create(mach_task_self(), &name, SYNC_POLICY_LIFO + 1, 0));
    EXPECT_EQ(KERN_INVALID_ARGUMENT, semaphore_create(mach_task_self(), &name, SYNC_POLICY_LIFO, -1));
    EXPECT_EQ(77U, name);
}

// The waiter destroys the semaphore while the signal that woke it may still be on its way out.
TEST_F(Mach, DestructionRightAfterAWakeIsSafe) {
    constexpr int kRounds = 3000;
    std::atomic<semaphore_t> offered = 0;
    const BoundedThread signaller([&] {
        for (int round = 0; round < kRounds; ++round) {
            semaphore_t name = 0;
            while ((name = offered.exchange(0)) == 0)
                std::this_thread::yield();
            semaphore_signal(name);
            semaphore_signal(name); // Meets the destruction at any of its stages.
        }
    });
    for (int round = 0; round < kRounds; ++round) {
        semaphore_t name = 0;
        semaphore_create(mach_task_self(), &name, SYNC_POLICY_LIFO, 0);
        offered = name;
        ASSERT_EQ(KERN_SUCCESS, semaphore_wait(name));
        ASSERT_EQ(KERN_SUCCESS, semaphore_destroy(mach_task_self(), name));
    }
}

// As many waits as signals, from all sides at once: a lost signal leaves a thread stuck, a doubled one a count.
TEST_F(Mach, NoSignalOfAStormIsLostOrDoubled) {
    constexpr int kRounds = 5000;
    {
        std::list<BoundedThread> threads;
        for (int pair = 0; pair < 4; ++pair) {
            for (const auto call : {semaphore_wait, semaphore_signal})
                threads.emplace_back([this, call] {
                    for (int round = 0; round < kRounds; ++round)
                        call(mName);
                });
        }
    }
    expectState(0, 0);
}

// Threads that are woken only all together, and come back at once, block anew instead of going round on one signal.
TEST_F(Mach, StormsOfSignalAllLeaveNobodyBehind) {
    std::atomic<int> running = 4;
    {
        std::list<BoundedThread> threads;
        for (int thread = 0; thread < 4; ++thread)
            threads.emplace_back([&] {
                for (int round = 0; round < 1000; ++round)
                    semaphore_wait(mName);
                --running;
            });
        EXPECT_TRUE(eventually([&] {
            for (int burst = 0; burst < 100; ++burst)
                semaphore_signal_all(mName);
            return running == 0;
        }));
    }
    expectState(0, 0);
}

} // namespace
