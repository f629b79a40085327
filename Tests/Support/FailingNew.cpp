#include "Tests/Support/FailingNew.h"

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

thread_local FailingNew* tArmed = nullptr;

enum class Binary { Plugin, Library, Other };

Binary binaryOf(const void* address) {
    dl_find_object object{};
    if (_dl_find_object(const_cast<void*>(address), &object) != 0)
        return Binary::Other;
    const std::string_view name = object.dlfo_link_map->l_name;
    if (name.ends_with("/OmbriqueContrast") || name.find("libglbinding") != std::string_view::npos)
        return Binary::Plugin;
    return name.find("libstdc++") != std::string_view::npos ? Binary::Library : Binary::Other;
}

/// Whether the call of operator new that returns to `caller` came from the plug-in, itself or through the C++ library.
bool isFromPlugin(const void* caller) {
    // The driver allocates without end, so that only the library's callers are looked for.
    if (const Binary binary = binaryOf(caller); binary != Binary::Library)
        return binary == Binary::Plugin;
    constexpr int kDeepest = 24;
    std::array<void*, kDeepest> frames{};
    const auto end = frames.begin() + backtrace(frames.data(), kDeepest);
    const auto first = std::find_if(std::find(frames.begin(), end, caller), end,
                                    [](const void* frame) { return binaryOf(frame) != Binary::Library; });
    return first != end && binaryOf(*first) == Binary::Plugin;
}

} // namespace

FailingNew::FailingNew(int nth) : mNth(nth) {
    std::array<void*, 1> frame{};
    backtrace(frame.data(), 1); // loads what it needs
    tArmed = this;
}

FailingNew::~FailingNew() { tArmed = nullptr; }

bool FailingNew::strikes(const void* caller) { return isFromPlugin(caller) && ++mCount == mNth; }

namespace {

void* allocate(std::size_t size, const void* caller) {
    // Looking for the caller must not meet itself.
    if (FailingNew* const armed = std::exchange(tArmed, nullptr)) {
        const bool strikes = armed->strikes(caller);
        tArmed = armed;
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
