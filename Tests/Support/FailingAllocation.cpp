#include "Tests/Support/FailingAllocation.h"

#include <cstdlib>
#include <dlfcn.h>
#include <link.h>
#include <new>

namespace Ombrique::Tests {

namespace {

std::atomic<FailingAllocation*> gArmed = nullptr;

void* allocate(std::size_t size, void* caller) {
    FailingAllocation* const armed = gArmed;
    void* const memory = armed && armed->strikes(caller) ? nullptr : std::malloc(size == 0 ? 1 : size);
    if (memory == nullptr)
        throw std::bad_alloc();
    return memory;
}

} // namespace

FailingAllocation::FailingAllocation(int nth, std::string_view binary) : mNth(nth), mBinary(binary) { gArmed = this; }

FailingAllocation::~FailingAllocation() { gArmed = nullptr; }

bool FailingAllocation::strikes(void* caller) {
    dl_find_object object{};
    if (_dl_find_object(caller, &object) != 0) // made at run time
        return false;
    const std::string_view path = object.dlfo_link_map->l_name;
    const bool counts = mBinary.empty() ? path.empty() : path.ends_with(mBinary);
    return counts && ++mCount == mNth;
}

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
