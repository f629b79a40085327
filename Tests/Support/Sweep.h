#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>
#include <iostream>
#include <string>
#include <string_view>

namespace Ombrique::Tests {

/// Makes one thing after the other fail: runs `attempt(n)` for n = 1, 2, ... until that says that there was no n-th
/// thing, or a check fails. A sweep that takes long tries one n of `every`, and all where the environment says
/// OMBRIQUE_FULL_SWEEPS=1. What was tried is counted and printed.
inline void sweep(const std::string& name, int every, const std::function<bool(int)>& attempt) {
    const char* const full = std::getenv("OMBRIQUE_FULL_SWEEPS");
    const int step = full && std::string_view(full) == "1" ? 1 : every;
    int tried = 0;
    for (int n = 1; attempt(n); n += step) {
        ++tried;
        if (testing::Test::HasFailure())
            FAIL() << name << ", number " << n;
    }
    std::cout << name << ": " << tried << " tried"
              << (step > 1 ? ", one of " + std::to_string(step) + "; all with OMBRIQUE_FULL_SWEEPS=1\n" : "\n");
    EXPECT_GT(tried, 0) << name;
}

} // namespace Ombrique::Tests
