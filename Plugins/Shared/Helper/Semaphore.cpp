#include "Plugins/Shared/Helper/Semaphore.h"

namespace Ombrique::GaussianBlur {

Semaphore::Semaphore(unsigned int value) {
    semaphore_create(mach_task_self(), &mSemaphore, SYNC_POLICY_LIFO, static_cast<int>(value));
}

Semaphore::~Semaphore() { semaphore_destroy(mach_task_self(), mSemaphore); }

void Semaphore::wait() {
    ++mWaiters;
    semaphore_wait(mSemaphore);
    --mWaiters;
}

void Semaphore::signal() { semaphore_signal(mSemaphore); }

void Semaphore::signal(unsigned int count) {
    for (; count > 0; --count)
        signal();
}

void Semaphore::signalAll() { semaphore_signal_all(mSemaphore); }

} // namespace Ombrique::GaussianBlur
