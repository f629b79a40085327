#include "Plugins/Shared/Helper/Semaphore.h"

#include "Tests/Support/Sleepers.h"

using namespace Ombrique::Tests;

namespace Ombrique::GaussianBlur {

namespace {

using Order = std::vector<int>;

struct ObservedSemaphore : Semaphore {
    using Semaphore::mSemaphore;
    using Semaphore::mWaiters;
    using Semaphore::Semaphore;
    std::int64_t count() const { return inspectSemaphore(mSemaphore).count; }
};

TEST(Semaphore, ExcludesOthersWhenItStartsWithOne) {
    ObservedSemaphore lock(1);
    int unguarded = 0;
    {
        std::list<BoundedThread> threads;
        for (int thread = 0; thread < 4; ++thread)
            threads.emplace_back([&] {
                for (int round = 0; round < 5000; ++round) {
                    lock.wait();
                    ++unguarded;
                    lock.signal();
                }
            });
    }
    EXPECT_EQ(20000, unguarded);
    EXPECT_EQ(1, lock.count());
    EXPECT_EQ(0, lock.mWaiters);
}

TEST(Semaphore, WakesAsManyAsItIsToldLastComerFirst) {
    ObservedSemaphore semaphore(0);
    Sleepers sleepers(semaphore.mSemaphore, [&] { semaphore.wait(); });
    for (const int id : {0, 1, 2, 3, 4, 5})
        sleepers.add(id);
    EXPECT_EQ(6, semaphore.mWaiters);
    semaphore.signal();
    EXPECT_EQ((Order{5}), sleepers.woken(1));
    semaphore.signal(1);
    EXPECT_EQ((Order{5, 4}), sleepers.woken(2));
    semaphore.signal(0);
    EXPECT_EQ(4U, sleepers.blocked());
    semaphore.signal(3);
    EXPECT_EQ(1U, sleepers.blocked());
    EXPECT_EQ(5U, sleepers.woken(5).size());
    semaphore.signalAll();
    EXPECT_EQ(0, sleepers.woken(6).back());
    EXPECT_EQ(0, semaphore.count());
}

TEST(Semaphore, KeepsTheCountThatNobodyWaitedFor) {
    ObservedSemaphore semaphore(2);
    semaphore.signal(3);
    semaphore.signal(0);
    semaphore.signalAll();
    EXPECT_EQ(5, semaphore.count());
}

} // namespace

} // namespace Ombrique::GaussianBlur
