#pragma once

#include "Platform/Mach/Semaphore.h"

#include <atomic>
#include <cstdint>

namespace Ombrique::GaussianBlur {

/// A counting semaphore for the threads of this process. Of the threads that are blocked, the one that came last is
/// woken first, so a thread may wait for long while others come and go; whoever needs fairness needs something else.
///
/// All operations may be called from any thread at the same time. Destruction must not overlap with any of them: where
/// a signal ends the last wait, the woken thread may destroy the semaphore once its own call has returned.
class Semaphore {
public:
    /// `value` is the start count, up to the greatest `int`. A failure of the platform isn't reported: a semaphore
    /// without one never blocks.
    explicit Semaphore(unsigned int value);
    virtual ~Semaphore();

    Semaphore(const Semaphore&) = delete;
    Semaphore& operator=(const Semaphore&) = delete;

    /// Blocks until the count is above 0, then takes one.
    void wait();
    /// Wakes one waiter, or adds one to the count if there is none.
    void signal();
    /// The same, `count` times.
    void signal(unsigned int count);
    /// Wakes all threads that are blocked now; the count stays as it is.
    void signalAll();

protected:
    semaphore_t mSemaphore = 0;
    /// Threads inside `wait`: blocked, about to block, or about to return.
    std::atomic<std::int64_t> mWaiters = 0;
};

} // namespace Ombrique::GaussianBlur
