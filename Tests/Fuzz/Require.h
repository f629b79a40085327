#pragma once

#include <cstdio>
#include <cstdlib>

namespace Ombrique::Tests {

/// Ends the process where `holds` is false, so that the fuzzer keeps the input that led there.
inline void require(bool holds, const char* what) {
    if (holds)
        return;
    std::fprintf(stderr, "not so: %s\n", what);
    std::abort();
}

} // namespace Ombrique::Tests
