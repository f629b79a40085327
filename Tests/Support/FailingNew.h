#pragma once

namespace Ombrique::Tests {

/// Makes one allocation of the plug-in fail: on the thread that made this, and for as long as it lives, the `nth` call
/// of operator new (0 for none) by the bundle's binary or the binding of OpenGL throws std::bad_alloc. What the C++
/// library allocates counts for whoever called it. The driver's, the host's and the test's own allocations don't count.
///
/// A program that has the source of this linked in replaces operator new for the whole process: a bundle exports
/// nothing, but it imports that.
class FailingNew {
public:
    explicit FailingNew(int nth);
    FailingNew(const FailingNew&) = delete;
    FailingNew& operator=(const FailingNew&) = delete;
    ~FailingNew();

    /// Allocations so far that could have failed.
    int count() const { return mCount; }
    bool fired() const { return mNth > 0 && mCount >= mNth; }

    /// For operator new: whether the call that returns to `caller` is the one.
    bool strikes(const void* caller);

private:
    int mNth;
    int mCount = 0;
};

} // namespace Ombrique::Tests
