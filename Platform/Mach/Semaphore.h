#pragma once

#include <cstddef>
#include <cstdint>

/// The platform's counting semaphores, under Mach's names and over standard C++.
///
/// A semaphore is known by a name, a number that is never 0. Every function may be called from any thread at the same
/// time as any other, on the same semaphore too; none throws. A name without a semaphore gives KERN_INVALID_ARGUMENT.
///
/// A signal belongs to one blocked thread from the moment that it is given. However late that thread runs, no other can
/// take the signal. So no thread is blocked while the count is above 0.

using kern_return_t = int;

enum : kern_return_t {
    KERN_SUCCESS = 0,
    KERN_INVALID_ARGUMENT = 4,
    KERN_RESOURCE_SHORTAGE = 6,
    /// The semaphore was destroyed while the caller was blocked on it.
    KERN_TERMINATED = 37,
};

using mach_port_t = std::uint32_t;
using task_t = mach_port_t;
using semaphore_t = mach_port_t;

/// The order in which blocked threads wake: the one that came last is the first.
enum : int {
    SYNC_POLICY_LIFO = 2,
};

/// The name of this process, the only task that has semaphores here.
task_t mach_task_self() noexcept;

/// Makes a semaphore with the start count `value` and stores its name at `semaphore`, which stays untouched on failure.
/// The caller destroys it. Fails with KERN_INVALID_ARGUMENT for another task, another policy or a negative value, and
/// with KERN_RESOURCE_SHORTAGE when there is no memory for it.
kern_return_t semaphore_create(task_t task, semaphore_t* semaphore, int policy, int value) noexcept;

/// Ends a semaphore and its name. Threads that are blocked on it wake with KERN_TERMINATED; calls that are still
/// returning finish safely. So a thread may destroy the semaphore while the signal that woke it returns.
kern_return_t semaphore_destroy(task_t task, semaphore_t semaphore) noexcept;

/// Takes one from the count, or blocks until a signal comes to this thread. There are no spurious wake-ups.
kern_return_t semaphore_wait(semaphore_t semaphore) noexcept;

/// Wakes the thread that blocked last, or adds one to the count if none is blocked.
kern_return_t semaphore_signal(semaphore_t semaphore) noexcept;

/// Wakes all threads that are blocked now. The count stays as it is, whether there are such threads or not.
kern_return_t semaphore_signal_all(semaphore_t semaphore) noexcept;

/// The state of a semaphore at one moment.
struct SemaphoreState {
    std::int64_t count;
    /// Threads that only a signal, or the semaphore's end, will wake. One that was signalled isn't among them.
    std::size_t blocked;
};

/// Not one of Mach's functions. Returns the state of a semaphore, zeros for a name without one. Other threads may
/// change it before the caller reads it, but a thread that was seen blocked stays so until it is signalled.
SemaphoreState inspectSemaphore(semaphore_t semaphore) noexcept;
