#pragma once

#include <cstdint>
#include <limits>

namespace Ombrique::GaussianBlur {

/// A pair of integers.
struct Range {
    std::int32_t first;
    std::int32_t second;

    /// From 0 to the largest 32-bit integer, or (0, 0).
    explicit constexpr Range(bool all) noexcept : Range(0, all ? std::numeric_limits<std::int32_t>::max() : 0) {}
    /// The second is 0.
    explicit constexpr Range(int firstValue) noexcept : Range(firstValue, 0) {}
    constexpr Range(int firstValue, int secondValue) noexcept : first(firstValue), second(secondValue) {}
};

} // namespace Ombrique::GaussianBlur
