#pragma once

#include <cmath>

/// Scalar constants and comparisons that the whole math library shares.
namespace Ombrique::GaussianBlur {

/// The library's tolerance. Each comparison says whether the bound itself counts as equal.
inline constexpr double kTolerance = 1e-12;

/// Degrees to radians, with fifteen decimals: a little less than pi / 180, so that a quarter turn's cosine comes out
/// near 2.6e-14 and not near 6e-17.
inline constexpr double kRadiansPerDegree = 0.017453292519943;

/// Radians to degrees: 180 / pi in full double precision.
inline constexpr double kDegreesPerRadian = 57.29577951308232;

/// `low` for a value below it, `high` for a value above it, else the value; NaN stays NaN.
constexpr double clamp(double value, double low, double high) noexcept {
    return value < low ? low : high < value ? high : value;
}

/// Whether a and b differ by at most the tolerance, the bound included. NaN is near to nothing, nor is an infinity.
constexpr bool isNear(double a, double b, double tolerance = kTolerance) noexcept {
    return -tolerance <= a - b && a - b <= tolerance;
}

} // namespace Ombrique::GaussianBlur
