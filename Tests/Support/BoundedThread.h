#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <future>
#include <thread>
#include <utility>

/// Waits with an end: a deadlock fails the test instead of hanging it.
namespace Ombrique::Tests {

constexpr std::chrono::seconds kWaitLimit{20};

/// Whether `condition` comes true within the limit.
inline bool eventually(const std::function<bool()>& condition) {
    const auto end = std::chrono::steady_clock::now() + kWaitLimit;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end)
            return false;
        std::this_thread::sleep_for(std::chrono::microseconds(200));
    }
    return true;
}

/// A thread whose end its destructor waits for. One that is stuck can't be ended alone, so it ends the program; one
/// that throws fails the test.
class BoundedThread {
public:
    explicit BoundedThread(std::function<void()> body) : mEnd(std::async(std::launch::async, std::move(body))) {}
    ~BoundedThread() {
        if (mEnd.wait_for(kWaitLimit) != std::future_status::ready) {
            std::fputs("a thread is stuck\n", stderr);
            std::abort();
        }
        EXPECT_NO_THROW(mEnd.get());
    }

private:
    std::future<void> mEnd;
};

} // namespace Ombrique::Tests
