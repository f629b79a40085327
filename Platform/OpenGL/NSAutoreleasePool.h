#pragma once

#include <vector>

class NSObject;

/// A scope on the calling thread that releases, at its end, what was handed to addObject within it. Pools nest and end
/// in the reverse order of their beginning: make them as local variables only.
class NSAutoreleasePool {
public:
    NSAutoreleasePool();
    NSAutoreleasePool(const NSAutoreleasePool&) = delete;
    NSAutoreleasePool& operator=(const NSAutoreleasePool&) = delete;
    /// Drains the pool, so that an exception that passes through the scope drains it, too. A failure to drain ends the
    /// process.
    ~NSAutoreleasePool();

    /// Releases what the pool holds, now. The pool stays in place until its scope ends.
    void drain() noexcept;

    /// Hands the caller's reference over to the innermost pool of the calling thread. A thread without a pool asserts.
    static void addObject(NSObject* object);

private:
    NSAutoreleasePool* mOuter;
    std::vector<NSObject*> mObjects;
};
