#pragma once

#include <atomic>
#include <string_view>

namespace Ombrique::Tests {

/// For as long as this lives, the `nth` call of operator new throws std::bad_alloc that comes from one binary's own
/// code, on whatever thread; none for 0. What other libraries allocate on that binary's behalf doesn't count. One
/// object at a time.
///
/// A program that has this linked in replaces operator new for the whole process: a bundle exports nothing, but it
/// imports that.
class FailingAllocation {
public:
    /// `binary` is how the path of the binary ends; the main program's is empty.
    explicit FailingAllocation(int nth, std::string_view binary = "/OmbriqueContrast");
    FailingAllocation(const FailingAllocation&) = delete;
    FailingAllocation& operator=(const FailingAllocation&) = delete;
    ~FailingAllocation();

    bool fired() const { return mNth > 0 && mCount >= mNth; }

    /// For operator new: whether the call that returns to `caller` is the one.
    bool strikes(void* caller);

private:
    int mNth;
    std::string_view mBinary;
    std::atomic<int> mCount = 0;
};

} // namespace Ombrique::Tests
