#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <thread>

namespace Ombrique::Tests {

/// Whose calls of operator new count. What the C++ library allocates counts for whoever called it.
enum class Allocations {
    /// The bundle's binary and the binding of OpenGL.
    Plugin,
    /// The bundle's binary and the program itself. The binding is loaded meanwhile, which takes a great many that
    /// nothing of ours could answer for.
    Program,
};

/// Makes an allocation fail: for as long as this lives, that call of operator new which shallFail() chooses throws
/// std::bad_alloc, on whatever thread. One object at a time.
///
/// A program that has the source of this linked in replaces operator new for the whole process: a bundle exports
/// nothing, but it imports that.
class AllocationFault {
public:
    explicit AllocationFault(Allocations counted);
    AllocationFault(const AllocationFault&) = delete;
    AllocationFault& operator=(const AllocationFault&) = delete;
    virtual ~AllocationFault();

    /// For operator new: whether the call that returns to `caller` is the one.
    bool strikes(const void* caller);

protected:
    /// Asked for each allocation that counts, on its thread; doesn't allocate.
    virtual bool shallFail() = 0;

private:
    Allocations mCounted;
};

/// The `nth` allocation fails; none for 0.
class FailingNew : public AllocationFault {
public:
    explicit FailingNew(int nth) : AllocationFault(Allocations::Plugin), mNth(nth) {}

    /// Allocations so far that could have failed.
    int count() const { return mCount; }
    bool fired() const { return mNth > 0 && mCount >= mNth; }

private:
    bool shallFail() override { return ++mCount == mNth; }

    int mNth;
    std::atomic<int> mCount = 0;
};

/// The way that calls took to an allocation, from where the fault was made or the thread began, and whether it was the
/// first on this way: the same in all processes that load the same binaries.
using CallPath = std::uint64_t;

/// The call paths of allocations that could have failed, in their order. May lie in memory that processes share.
struct CallPaths {
    std::array<CallPath, 1 << 14> paths;
    std::atomic<std::size_t> count = 0;
    std::atomic<bool> fired = false;
};

/// The first allocation of the program that has this path fails; none for 0.
class FailingPath : public AllocationFault {
public:
    /// `seen` gets all paths, and outlives this.
    FailingPath(CallPath path, CallPaths& seen);

private:
    bool shallFail() override;

    CallPath mPath;
    CallPaths& mSeen;
    std::thread::id mThread = std::this_thread::get_id();
    /// The frames of that thread which belong to whoever made this.
    std::size_t mDepth;
};

} // namespace Ombrique::Tests
