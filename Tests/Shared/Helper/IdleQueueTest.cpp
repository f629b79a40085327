#include "Plugins/Shared/Helper/IdleQueue.h"

#include "Plugins/Shared/Helper/ScopeExit.h"
#include "Tests/Support/BoundedThread.h"

#include <array>
#include <atomic>
#include <list>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

using namespace Ombrique::Tests;

namespace Ombrique::GaussianBlur {

namespace {

void drain(IdleQueue& queue) {
    while (queue.hasTask())
        queue.updateQueue();
}

/// Runs `action` when the last task that holds it is destroyed.
std::shared_ptr<void> atDestruction(std::function<void()> action) {
    return {nullptr, [action = std::move(action)](void*) { action(); }};
}

/// A callable whose copying and destruction both use the queue, as code that is run under a lock must not.
struct QueueUser {
    explicit QueueUser(IdleQueue& queue) : mQueue(&queue) {}
    QueueUser(const QueueUser& other) : mQueue(other.mQueue) { mQueue->hasTask(); }
    ~QueueUser() { mQueue->hasTask(); }
    QueueUser& operator=(const QueueUser&) = delete;
    void operator()() const { mQueue->hasTask(); }
    IdleQueue* mQueue;
};

// Every body runs on a bounded thread, since what it could do wrong is to block on itself.
TEST(IdleQueue, RunsOneTaskAtATimeOldestFirst) {
    const BoundedThread body([] {
        IdleQueue queue;
        std::string log;
        queue.updateQueue();
        for (const char name : {'a', 'b', 'c'})
            queue.async([&log, name] { log += name; });
        for (const char* expected : {"a", "ab", "abc"}) {
            EXPECT_TRUE(queue.hasTask());
            queue.updateQueue();
            EXPECT_EQ(expected, log);
        }
        EXPECT_FALSE(queue.hasTask());
    });
}

TEST(IdleQueue, TasksMayUseTheQueue) {
    const BoundedThread body([] {
        IdleQueue queue;
        std::string log;
        queue.async([&] {
            EXPECT_FALSE(queue.hasTask()) << "a running task isn't pending";
            queue.async([&] {
                log += 'b';
                queue.async([&] { log += 'd'; });
                queue.async([&] { log += 'x'; });
                queue.updateQueue();
                queue.clearAsyncQueue();
                log += 'e';
            });
            log += 'a';
        });
        queue.updateQueue();
        EXPECT_EQ("a", log) << "an added task waits for a later call";
        drain(queue);
        EXPECT_EQ("abde", log);
    });
}

TEST(IdleQueue, CopyingAndDestroyingCapturesMayUseTheQueue) {
    const BoundedThread body([] {
        IdleQueue queue;
        const std::function<void()> task = QueueUser(queue);
        queue.async(task);
        queue.async(task);
        queue.updateQueue();
        queue.clearAsyncQueue();
        queue.async(task);
        EXPECT_TRUE(queue.hasTask());
    });
}

TEST(IdleQueue, WhatADestroyedTaskAddsIsKeptUntilTheQueueEnds) {
    const BoundedThread body([] {
        std::string log;
        const auto observed = std::make_shared<int>();
        {
            IdleQueue queue;
            const auto addsWhenDestroyed = [&](char run, char added) {
                const auto add = [&, added] { queue.async([&log, observed, added] { log += added; }); };
                queue.async([&log, run, last = atDestruction(add)] { log += run; });
            };
            addsWhenDestroyed('a', 'b');
            drain(queue);
            EXPECT_EQ("ab", log);
            addsWhenDestroyed('x', 'c');
            queue.clearAsyncQueue();
            drain(queue);
            EXPECT_EQ("abc", log);
            addsWhenDestroyed('x', 'x');
            addsWhenDestroyed('x', 'x');
        }
        EXPECT_EQ("abc", log) << "a queue that ends runs nothing";
        EXPECT_EQ(1, observed.use_count()) << "a dropped task is alive";
    });
}

TEST(IdleQueue, FailingTasksLeaveTheQueueIntact) {
    const BoundedThread body([] {
        IdleQueue queue;
        bool destroyed = false;
        bool ran = false;
        const auto noteDestruction = [&] { destroyed = queue.hasTask(); };
        queue.async([last = atDestruction(noteDestruction)] { throw std::runtime_error("task"); });
        queue.async(nullptr);
        queue.async([&] { ran = true; });
        EXPECT_THROW(queue.updateQueue(), std::runtime_error);
        EXPECT_TRUE(destroyed);
        EXPECT_THROW(queue.updateQueue(), std::bad_function_call);
        queue.updateQueue();
        EXPECT_TRUE(ran);
        EXPECT_FALSE(queue.hasTask());
    });
}

constexpr int kProducers = 4;
constexpr int kTasks = 2000;
/// Of each producer, the number of the newest task that the thread has met.
thread_local std::array<int, kProducers> newest;

/// Lets several threads add numbered tasks while `consumers` others run them, and, if `clearing`, one more drops what
/// it finds. Every task must run or be dropped exactly once, and each consumer must meet each producer's in order.
/// Producers wait while about `backlog` tasks are alive; where those are few, consumers fight over each.
void produceAndConsume(int consumers, bool clearing, int backlog) {
    IdleQueue queue;
    std::vector<std::vector<std::atomic<int>>> ran(kProducers);
    for (auto& tasks : ran)
        tasks = std::vector<std::atomic<int>>(kTasks);
    std::atomic<int> added = 0;
    std::atomic<int> gone = 0;
    const auto whileTasksAreLeft = [&](const std::function<void()>& action) {
        newest.fill(-1);
        while (gone < kProducers * kTasks) {
            action();
            // The lock wakes its last comer first: consumers that never pause could keep the producers out for long.
            if (!queue.hasTask())
                std::this_thread::sleep_for(std::chrono::microseconds(1));
        }
    };
    {
        std::list<BoundedThread> threads;
        for (int producer = 0; producer < kProducers; ++producer)
            threads.emplace_back([&, producer] {
                for (int number = 0; number < kTasks; ++number) {
                    while (added - gone >= backlog)
                        std::this_thread::yield();
                    ++added;
                    queue.async([&, producer, number, last = atDestruction([&] { ++gone; })] {
                        auto& previous = newest.at(static_cast<std::size_t>(producer));
                        EXPECT_LT(std::exchange(previous, number), number) << "of producer " << producer;
                        ++ran[static_cast<std::size_t>(producer)][static_cast<std::size_t>(number)];
                    });
                }
            });
        for (int consumer = 0; consumer < consumers; ++consumer)
            threads.emplace_back([&] { whileTasksAreLeft([&] { queue.updateQueue(); }); });
        if (clearing)
            threads.emplace_back([&] { whileTasksAreLeft([&] { queue.clearAsyncQueue(); }); });
    }
    EXPECT_EQ(kProducers * kTasks, gone);
    EXPECT_FALSE(queue.hasTask());
    for (const auto& tasks : ran)
        for (const auto& times : tasks)
            EXPECT_TRUE(times == 1 || (clearing && times == 0)) << "ran " << times << " times";
}

TEST(IdleQueue, ServesManyProducersAndOneConsumer) { produceAndConsume(1, false, kTasks); }
TEST(IdleQueue, ServesManyProducersAndConsumers) { produceAndConsume(3, false, kTasks); }
TEST(IdleQueue, GivesATaskThatConsumersFightOverToOne) { produceAndConsume(3, false, 1); }
TEST(IdleQueue, IsClearedBesideProducersAndConsumers) { produceAndConsume(2, true, kTasks); }

} // namespace

} // namespace Ombrique::GaussianBlur
