#include "Tests/Hosts/CommandLine/FailingNew.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <dlfcn.h>
#include <execinfo.h>
#include <link.h>
#include <new>
#include <string_view>
#include <utility>

namespace Ombrique::Tests {

namespace {

std::atomic<AllocationFault*> gArmed = nullptr;
/// Looking for the caller must not meet itself.
thread_local bool tIsLooking = false;

enum class Binary { Plugin, Binding, Program, Library, Other };

Binary binaryOf(const void* address) {
    dl_find_object object{};
    if (_dl_find_object(const_cast<void*>(address), &object) != 0)
        return Binary::Other;
    const std::string_view name = object.dlfo_link_map->l_name;
    if (name.empty()) // so the main program is called
        return Binary::Program;
    if (name.ends_with("/OmbriqueContrast"))
        return Binary::Plugin;
    if (name.find("libglbinding") != std::string_view::npos)
        return Binary::Binding;
    return name.find("libstdc++") != std::string_view::npos ? Binary::Library : Binary::Other;
}

/// Who called operator new, which returns to `caller`, itself or through the C++ library.
Binary allocatorAt(const void* caller) {
    // The driver allocates without end, so that only the library's callers are looked for.
    if (const Binary binary = binaryOf(caller); binary != Binary::Library)
        return binary;
    constexpr int kDeepest = 24;
    std::array<void*, kDeepest> frames{};
    const auto end = frames.begin() + backtrace(frames.data(), kDeepest);
    const auto first = std::find_if(std::find(frames.begin(), end, caller), end,
                                    [](const void* frame) { return binaryOf(frame) != Binary::Library; });
    return first == end ? Binary::Other : binaryOf(*first);
}

bool counts(Binary allocator, Allocations counted) {
    return allocator == Binary::Plugin ||
           allocator == (counted == Allocations::Plugin ? Binary::Binding : Binary::Program);
}

} // namespace

AllocationFault::AllocationFault(Allocations counted) : mCounted(counted) {
    std::array<void*, 1> frame{};
    backtrace(frame.data(), 1); // loads what it needs
    gArmed = this;
}

AllocationFault::~AllocationFault() { gArmed = nullptr; }

bool AllocationFault::strikes(const void* caller) { return counts(allocatorAt(caller), mCounted) && shallFail(); }

namespace {

constexpr std::size_t kDeepest = 128;
using Frames = std::array<void*, kDeepest>;

std::size_t findFrames(Frames& frames) {
    return static_cast<std::size_t>(backtrace(frames.data(), static_cast<int>(kDeepest)));
}

} // namespace

FailingPath::FailingPath(CallPath path, CallPaths& seen)
    : AllocationFault(Allocations::Program), mPath(path), mSeen(seen) {
    Frames frames;
    mDepth = findFrames(frames);
}

bool FailingPath::shallFail() {
    Frames frames;
    std::size_t depth = findFrames(frames);
    if (std::this_thread::get_id() == mThread)
        depth -= std::min(depth, mDepth);
    CallPath path = 14695981039346656037u; // FNV-1a
    for (std::size_t i = 0; i < depth; ++i) {
        dl_find_object object{};
        if (_dl_find_object(frames[i], &object) == 0) // else made at run time
            path = (path ^
                    static_cast<CallPath>(static_cast<char*>(frames[i]) - static_cast<char*>(object.dlfo_map_start))) *
                   1099511628211u;
    }
    const std::size_t place = mSeen.count++;
    if (place >= mSeen.paths.size())
        return false;
    const auto end = mSeen.paths.begin() + static_cast<std::ptrdiff_t>(place);
    if (std::find(mSeen.paths.begin(), end, path) != end)
        ++path; // as all after the first
    mSeen.paths[place] = path;
    return path == mPath && !mSeen.fired.exchange(true);
}

namespace {

void* allocate(std::size_t size, const void* caller) {
    if (AllocationFault* const armed = gArmed; armed && !std::exchange(tIsLooking, true)) {
        const bool strikes = armed->strikes(caller);
        tIsLooking = false;
        if (strikes)
            throw std::bad_alloc();
    }
    if (void* const memory = std::malloc(size == 0 ? 1 : size))
        return memory;
    throw std::bad_alloc();
}

} // namespace

} // namespace Ombrique::Tests

void* operator new(std::size_t size) { return Ombrique::Tests::allocate(size, __builtin_return_address(0)); }
void* operator new[](std::size_t size) { return Ombrique::Tests::allocate(size, __builtin_return_address(0)); }
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete[](void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
void operator delete[](void* memory, std::size_t) noexcept { std::free(memory); }

/// AddressSanitizer asks here at start-up. The operators above stand in for some forms of new only, and the driver's
/// compiler pairs others with them; both sides end in malloc and free.
extern "C" __attribute__((visibility("default"))) const char* __asan_default_options() {
    return "alloc_dealloc_mismatch=0";
}
