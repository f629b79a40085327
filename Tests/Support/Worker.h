#pragma once

#include <functional>
#include <semaphore>
#include <thread>

namespace Ombrique::Tests {

/// A thread that runs what it is given, one thing after the other, and keeps its thread-local state in between. It ends
/// with the object. Work may not throw.
class Worker {
public:
    Worker() = default;
    Worker(const Worker&) = delete;
    Worker& operator=(const Worker&) = delete;
    ~Worker() {
        mWork = nullptr;
        mGiven.release();
        mThread.join();
    }

    /// Runs `work` on the thread, and waits for its end.
    void run(std::function<void()> work) {
        mWork = std::move(work);
        mGiven.release();
        mDone.acquire();
    }

private:
    void loop() {
        for (mGiven.acquire(); mWork; mGiven.acquire()) {
            mWork();
            mDone.release();
        }
    }

    std::function<void()> mWork;
    std::binary_semaphore mGiven{0};
    std::binary_semaphore mDone{0};
    std::thread mThread{[this] { loop(); }};
};

} // namespace Ombrique::Tests
