#pragma once

#include <atomic>

/// A reference-counted object. It starts with one reference, which belongs to its maker, and is destroyed when the last
/// one is released. Any thread may retain and release.
class NSObject {
public:
    NSObject(const NSObject&) = delete;
    NSObject& operator=(const NSObject&) = delete;

    void retain() { mReferences.fetch_add(1, std::memory_order_relaxed); }
    void release() {
        if (mReferences.fetch_sub(1, std::memory_order_acq_rel) == 1)
            delete this;
    }

protected:
    NSObject() = default;
    virtual ~NSObject() = default;

    /// Takes a reference unless the last one has been released already; returns whether it did. For lists of objects
    /// that hold no reference to them.
    bool retainIfAlive() {
        int references = mReferences.load(std::memory_order_relaxed);
        while (references > 0)
            if (mReferences.compare_exchange_weak(references, references + 1, std::memory_order_acq_rel))
                return true;
        return false;
    }

private:
    std::atomic<int> mReferences = 1;
};
