#include "Plugins/Shared/Math/Vec4.h"

namespace Ombrique::GaussianBlur {

namespace {

/// 1 - cosine below this blends along the chord: 0.01 in single precision.
constexpr double kChordBelow = 0.01f;

/// The sine of an angle, angle and result in single precision.
float singleSine(double angle) { return std::sin(static_cast<float>(angle)); }

} // namespace

double Vec4::lengthManhattan() const { return std::fabs(x) + std::fabs(y) + std::fabs(z) + std::fabs(w); }

Vec4 Vec4::lerp(Vec4 a, Vec4 b, double t) {
    if (t == 0.0)
        return a;
    if (t == 1.0)
        return b;
    const double cosine = a.dot(b) / (a.length() * b.length());
    if (0.0 > cosine)
        return lerp(a, b.negate(), t);

    double weightA = 1.0 - t;
    double weightB = t;
    if (!(1.0 - cosine < kChordBelow)) {
        const double theta = std::acos(static_cast<float>(cosine));
        const double inverseSine = 1.0f / singleSine(theta);
        weightA = inverseSine * singleSine((1.0 - t) * theta);
        weightB = inverseSine * singleSine(theta * t);
    }
    Vec4 result = a * weightA + b * weightB;
    result.setLength(1.0);
    return result;
}

} // namespace Ombrique::GaussianBlur
