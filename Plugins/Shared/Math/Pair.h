#pragma once

#include <cstring>

namespace Ombrique::GaussianBlur {

/// Two doubles that the processor works on side by side, where compilers don't find such pairs by themselves. Each lane
/// gives what a double would, to the last bit.
using Pair = double __attribute__((vector_size(16)));

/// The double at p and the one behind it.
inline Pair loadPair(const double* p) noexcept {
    Pair pair;
    std::memcpy(&pair, p, sizeof pair);
    return pair;
}

inline void storePair(double* p, Pair pair) noexcept { std::memcpy(p, &pair, sizeof pair); }

} // namespace Ombrique::GaussianBlur
