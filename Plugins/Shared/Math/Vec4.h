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
    Vec4(double xValue, double yValue, double zValue, double wValue) : x(xValue), y(yValue), z(zValue), w(wValue) {}
    Vec4(Vec3 const& v, double wValue) : x(v.x), y(v.y), z(v.z), w(wValue) {}

    void set(double xValue, double yValue, double zValue, double wValue) {
        *this = Vec4(xValue, yValue, zValue, wValue);
    }
    /// x, y and z as they are: w is dropped, not divided by.
    Vec3 getVec3() const { return Vec3(x, y, z); }

    using Self = Vec4;
#include "Plugins/Shared/Math/VectorMembers.inl"

    double dot(Vec4 const& other) const { return x * other.x + y * other.y + z * other.z + w * other.w; }
    /// One over each component.
    Vec4 invert() const { return Vec4(1.0 / x, 1.0 / y, 1.0 / z, 1.0 / w); }
    /// The sum of the absolute values.
    double lengthManhattan() const;

    /// Spherical interpolation along the shorter arc between two directions to a unit vector. a and b need not be of
    /// unit length, but one that is longer than the other pulls the result towards itself. At t = 0 and t = 1 exactly
    /// the result is a or b itself, not normalised; t is not clamped, and beyond 0 to 1 the arc goes on. Directions
    /// whose cosine exceeds 0.99 are blended along the chord. Angle and sines are taken in single precision. A zero
    /// vector gives NaN.
    static Vec4 lerp(Vec4 a, Vec4 b, double t);

    /// A Euclidean distance below 1e-12, the bound excluded.
    bool operator==(Vec4 const& other) const { return 1e-24 > (*this - other).lengthSquare(); }
    bool operator!=(Vec4 const& other) const { return !(*this == other); }
    /// A Euclidean distance below the tolerance, the bound excluded: a tolerance of 0 is false for identical vectors.
    bool equal(Vec4 const& other, double tolerance) const {
        return tolerance * tolerance > (*this - other).lengthSquare();
    }
    bool isZero() const { return x == 0.0 && y == 0.0 && z == 0.0 && w == 0.0; }

private:
    template <typename Step, typename... Others> void forEach(Step step, const Others&... others) {
        step(x, others.x...);
        step(y, others.y...);
        step(z, others.z...);
        step(w, others.w...);
    }
};

} // namespace Ombrique::GaussianBlur
