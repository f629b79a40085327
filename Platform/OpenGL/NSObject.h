#pragma once

#include <atomic>

/// An object with a count of references. It begins with one, which belongs to whoever made it, and ends when the last
/// is released. Any thread may retain and release.
class NSObject {
public:
    NSObject(const NSObject&) = delete;
    NSObject& operator=(const NSObject&) = delete;

    void retain();
    void release();

protected:
    NSObject() = default;
    virtual ~NSObject() = default;

    /// Takes a reference unless the last one has been released already; returns whether it did. For tables that list
    /// objects without holding them.
    bool retainIfAlive();

private:
    std::atomic<int> mReferences = 1;
};
