#pragma once

#include <algorithm>
#include <cstdint>

namespace Ombrique::Hosts {

/// A sample from 0 to 1 in 8 bits, rounded, halves up; what lies outside is clamped, and what isn't a number becomes 0.
inline std::uint8_t quantised(float value) {
    constexpr float kHalf = 0.5f; // rounds what isn't negative, once it is cut off
    return static_cast<std::uint8_t>((value > 0.0f ? std::min(value, 1.0f) : 0.0f) * 255.0f + kHalf);
}

} // namespace Ombrique::Hosts
