#include "Plugins/Shared/Helper/IdleQueue.h"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

// A queue that blocks on itself hangs its test until CTest ends it.
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

/// A callable whose copying and destruction use the queue, as code that is run under a lock must not.
struct QueueUser {
    explicit QueueUser(IdleQueue& queue) : mQueue(queue) {}
    QueueUser(const QueueUser& other) : mQueue(other.mQueue) { mQueue.hasTask(); }
    ~QueueUser() { mQueue.hasTask(); }
    void operator()() const {}
    IdleQueue& mQueue;
};

TEST(IdleQueue, RunsOneTaskAtATimeOldestFirst) {
    IdleQueue queue;
    std::string log;
    queue.updateQueue();
    for (const char name : {'a', 'b', 'c'})
        queue.async([&log, name] { log += name; });
    for (const char* expected : {"a", "ab", "abc"}) {
        EXPECT_TRUE(queue.hasTask());
        queue.updateQueue();
        EXPECT_EQ(log, expected);
    }
    EXPECT_FALSE(queue.hasTask());
}

TEST(IdleQueue, TasksAndWhatTheyCaptureMayUseTheQueue) {
    IdleQueue queue;
    std::string log;
    const std::function<void()> user = QueueUser(queue);
    queue.async([&] {
        EXPECT_FALSE(queue.hasTask()) << "a running task isn't pending";
        queue.async([&] {
            log += 'b';
            queue.async([&] { log += 'c'; });
            queue.async([&] { log += 'x'; });
            queue.async(user);
            queue.updateQueue();
            queue.clearAsyncQueue();
            log += 'd';
        });
        log += 'a';
    });
    queue.updateQueue();
    EXPECT_EQ(log, "a") << "an added task waits for a later call";
    drain(queue);
    EXPECT_EQ(log, "abcd");
    queue.async(user);
    queue.updateQueue();
    queue.async(user); // left to the queue's end
}

/// A task of which each of `links` copies is added by the destruction of the one before.
std::function<void()> chain(IdleQueue& queue, int& ran, const std::shared_ptr<int>& alive, int links) {
    const auto addNext = [&queue, &ran, alive, links] {
        if (links > 1)
            queue.async(chain(queue, ran, alive, links - 1));
    };
    return [&ran, last = atDestruction(addNext)] { ++ran; };
}

TEST(IdleQueue, WhatADestroyedTaskAddsIsKeptUntilTheQueueEnds) {
    const auto alive = std::make_shared<int>();
    int ran = 0;
    {
        IdleQueue queue;
        queue.async(chain(queue, ran, alive, 2));
        drain(queue);
        EXPECT_EQ(ran, 2);
        queue.async(chain(queue, ran, alive, 2));
        queue.clearAsyncQueue();
        drain(queue);
        EXPECT_EQ(ran, 3);
        for (int chains = 0; chains < 2; ++chains)
            queue.async(chain(queue, ran, alive, 5));
    }
    EXPECT_EQ(ran, 3) << "a queue that ends runs nothing";
    EXPECT_EQ(alive.use_count(), 1) << "a dropped task is alive";
}

TEST(IdleQueue, FailingTasksLeaveTheQueueIntact) {
    IdleQueue queue;
    bool ran = false;
    bool wasPending = false;
    queue.async([last = atDestruction([&] { wasPending = queue.hasTask(); })] { throw std::runtime_error("task"); });
    queue.async(nullptr);
    queue.async([&] { ran = true; });
    EXPECT_THROW(queue.updateQueue(), std::runtime_error);
    EXPECT_TRUE(wasPending);
    EXPECT_THROW(queue.updateQueue(), std::bad_function_call);
    queue.updateQueue();
    EXPECT_TRUE(ran && !queue.hasTask());
}

// Every task runs or is dropped exactly once, and each consumer meets each producer's in order. Producers wait while
// about `backlog` tasks are alive; where that is one, consumers fight over each.
void handleTraffic(int consumers, bool clearing, int backlog) {
    constexpr int kProducers = 4, kTasks = 500;
    IdleQueue queue;
    std::array<std::array<std::atomic<int>, kTasks>, kProducers> ran{};
    std::atomic<int> added = 0, gone = 0;
    static thread_local std::array<int, kProducers> newest;
    const auto whileTasksAreLeft = [&](void (IdleQueue::*action)()) {
        for (newest.fill(-1); gone < kProducers * kTasks;) {
            (queue.*action)();
            // The lock wakes its last comer first: consumers that never pause could keep the producers out for long.
            if (!queue.hasTask())
                std::this_thread::sleep_for(std::chrono::microseconds(1));
        }
    };
    std::vector<std::jthread> threads;
    for (std::size_t producer = 0; producer < kProducers; ++producer)
        threads.emplace_back([&, producer] {
            for (int number = 0; number < kTasks; ++number) {
                while (added - gone >= backlog)
                    std::this_thread::yield();
                ++added;
                queue.async([&, producer, number, last = atDestruction([&] { ++gone; })] {
                    EXPECT_LT(std::exchange(newest[producer], number), number) << "of producer " << producer;
                    ++ran[producer][static_cast<std::size_t>(number)];
                });
            }
        });
    for (int consumer = 0; consumer < consumers; ++consumer)
        threads.emplace_back(whileTasksAreLeft, &IdleQueue::updateQueue);
    if (clearing)
        threads.emplace_back(whileTasksAreLeft, &IdleQueue::clearAsyncQueue);
    threads.clear();
    EXPECT_FALSE(queue.hasTask());
    for (const auto& tasks : ran)
        for (const auto& times : tasks)
            EXPECT_TRUE(times == 1 || (clearing && times == 0)) << "ran " << times << " times";
}

TEST(IdleQueue, ServesManyProducersAndOneConsumer) { handleTraffic(1, false, 500); }
TEST(IdleQueue, GivesATaskThatConsumersFightOverToOne) { handleTraffic(3, false, 1); }
TEST(IdleQueue, IsClearedBesideProducersAndConsumers) { handleTraffic(2, true, 500); }

} // namespace

} // namespace Ombrique::GaussianBlur
