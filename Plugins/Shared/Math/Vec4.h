#pragma once

#include "Plugins/Shared/Math/Vec3.h"

namespace Ombrique::GaussianBlur {

/// A homogeneous vector of space, or any value of four components. All four take part alike in everything, and w is 0
/// unless it is set. Nothing reports an error: division by zero gives what IEEE arithmetic gives.
///
/// Two traps. `lerp` walks an arc and gives a unit vector, unlike that of Vec2 and Vec3. And the comparisons go by
/// distance with the bound excluded, not per component.
struct Vec4 {
    double x = 0.0;
    double y = 0.0;
    double z = 0.0;
    double w = 0.0;

    Vec4() = default;
    constexpr Vec4(double xValue, double yValue, double zValue, double wValue) noexcept
        : x(xValue), y(yValue), z(zValue), w(wValue) {}
    constexpr Vec4(const Vec3& v, double wValue) noexcept : x(v.x), y(v.y), z(v.z), w(wValue) {}

    constexpr void set(double xValue, double yValue, double zValue, double wValue) noexcept {
        *this = Vec4(xValue, yValue, zValue, wValue);
    }
    /// x, y and z as they are: w is dropped, not divided by.
    constexpr Vec3 getVec3() const noexcept { return Vec3(x, y, z); }

private:
    // Before its users: Clang evaluates them in constant expressions only where it has seen the body.
    template <typename Step, typename... Others> constexpr void forEach(Step step, const Others&... others) noexcept {
        step(x, others.x...);
        step(y, others.y...);
        step(z, others.z...);
        step(w, others.w...);
    }

public:
    using Self = Vec4;
#include "Plugins/Shared/Math/VectorMembers.inl"

    constexpr double dot(const Vec4& other) const noexcept {
        return x * other.x + y * other.y + z * other.z + w * other.w;
    }
    /// One over each component.
    constexpr Vec4 invert() const noexcept { return Vec4(1.0 / x, 1.0 / y, 1.0 / z, 1.0 / w); }
    /// The sum of the absolute values.
    double lengthManhattan() const;

    /// Spherical interpolation along the shorter arc between two directions to a unit vector. a and b need not be of
    /// unit length, but one that is longer than the other pulls the result towards itself. At t = 0 and t = 1 exactly
    /// the result is a or b itself, not normalised; t is not clamped, and beyond 0 to 1 the arc goes on. Directions
    /// whose cosine exceeds 0.99 are blended along the chord. Angle and sines are taken in single precision. A zero
    /// vector gives NaN.
    static Vec4 lerp(Vec4 a, Vec4 b, double t);

    /// A Euclidean distance below 1e-12, the bound excluded.
    constexpr bool operator==(const Vec4& other) const noexcept { return 1e-24 > (*this - other).lengthSquare(); }
    constexpr bool operator!=(const Vec4& other) const noexcept { return !(*this == other); }
    /// A Euclidean distance below the tolerance, the bound excluded: a tolerance of 0 is false for identical vectors.
    constexpr bool equal(const Vec4& other, double tolerance) const noexcept {
        return tolerance * tolerance > (*this - other).lengthSquare();
    }
    constexpr bool isZero() const noexcept { return x == 0.0 && y == 0.0 && z == 0.0 && w == 0.0; }
};

} // namespace Ombrique::GaussianBlur
