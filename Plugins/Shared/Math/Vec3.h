#pragma once

#include "Plugins/Shared/Math/Vec2.h"

namespace Ombrique::GaussianBlur {

struct Mat4;
struct Quaternion;

/// A point, a direction, or a value for each axis (scale, anchor, position) in space.
///
/// Angles are radians, unlike those of Vec2. Nothing reports an error: zero divisors and zero vectors give what IEEE
/// arithmetic gives. `operator*` of two vectors multiplies component by component; the products of geometry are `dot`
/// and `cross`. `getMin` and `getMax` work in place.
struct Vec3 {
    double x = 0.0;
    double y = 0.0;
    double z = 0.0;

    Vec3() = default;
    explicit constexpr Vec3(double v) noexcept : x(v), y(v), z(v) {}
    constexpr Vec3(double xValue, double yValue, double zValue) noexcept : x(xValue), y(yValue), z(zValue) {}
    constexpr Vec3(Vec2 v, double zValue) noexcept : x(v.x), y(v.y), z(zValue) {}

    constexpr void set(double xValue, double yValue, double zValue) noexcept { *this = Vec3(xValue, yValue, zValue); }
    constexpr void set(Vec2 v, double zValue) noexcept { *this = Vec3(v, zValue); }
    /// Sets component 0 or 1; any other index sets z.
    constexpr void set(int i, double v) noexcept { (i == 0 ? x : i == 1 ? y : z) = v; }
    /// Three doubles from and to array[offset]; the array is not tested for null, unlike that of Vec2::fromArray.
    constexpr void fromArray(const double* array, int offset) noexcept {
        set(array[offset], array[offset + 1], array[offset + 2]);
    }
    constexpr void toArray(double* array, int offset) noexcept {
        array[offset] = x;
        array[offset + 1] = y;
        array[offset + 2] = z;
    }
    constexpr Vec2 getVec2() const noexcept { return Vec2(x, y); }

private:
    // Before its users: Clang evaluates them in constant expressions only where it has seen the body.
    template <typename Step, typename... Others> constexpr void forEach(Step step, const Others&... others) noexcept {
        step(x, others.x...);
        step(y, others.y...);
        step(z, others.z...);
    }

public:
    using Self = Vec3;
#include "Plugins/Shared/Math/VectorMembers.inl"

    constexpr double dot(const Vec3& other) const noexcept { return x * other.x + y * other.y + z * other.z; }
    /// The vector product, right-handed: x cross y is z.
    constexpr Vec3 cross(const Vec3& other) const noexcept {
        return Vec3(y * other.z - z * other.y, z * other.x - x * other.z, x * other.y - y * other.x);
    }
    constexpr double distanceSquare(const Vec3& other) const noexcept { return (*this - other).lengthSquare(); }
    /// The angle between the directions, from 0 to pi, without sign. The cosine is not clamped, so that nearly parallel
    /// vectors may give NaN; a zero vector does.
    double angleBetween(const Vec3& other) const;
    constexpr void setNegate() noexcept { *this = negate(); }
    /// One over each component.
    constexpr Vec3 invert() const noexcept { return Vec3(1.0 / x, 1.0 / y, 1.0 / z); }
    constexpr void setInvert() noexcept { *this = invert(); }
    /// Becomes a unit vector at right angles to other: other cross the axis that precedes, cyclically, the largest
    /// component of this vector as it was. Where other is parallel to that axis, it becomes (1, 0, 0), which need not
    /// be at right angles.
    void ortho(const Vec3& other);
    /// The index, 0 to 2, of the component of largest absolute value; a tie goes to the later one.
    int largestAbsComponent() const;
    /// The plain difference component by component: angles don't wrap (see cyclicDifference).
    constexpr Vec3 rotationalDifference(const Vec3& other) const noexcept { return *this - other; }
    /// The straight line from a (t = 0) to b (t = 1); t is not clamped.
    static constexpr Vec3 lerp(Vec3 a, Vec3 b, double t) noexcept { return a * (1.0 - t) + b * t; }

    /// In place, the smaller of each component; on a tie or NaN this vector's own.
    constexpr void getMin(Vec3 other) noexcept {
        forEach([](double& own, double o) { own = std::min(own, o); }, other);
    }
    /// In place, the larger of each component; on a tie or NaN the other's.
    constexpr void getMax(Vec3 other) noexcept {
        forEach([](double& own, double o) { own = std::max(o, own); }, other);
    }
    /// In place, each component to its range; where low lies above high, a component below low becomes low.
    constexpr void clamp(Vec3 low, Vec3 high) noexcept {
        forEach([](double& own, double l, double h) { own = GaussianBlur::clamp(own, l, h); }, low, high);
    }
    /// A new vector of the components rounded down.
    Vec3 floor();

    /// Each component within 1e-12, the bound included.
    constexpr bool operator==(const Vec3& other) const noexcept { return equal(other, kTolerance); }
    constexpr bool operator!=(const Vec3& other) const noexcept { return !(*this == other); }
    /// Each component within the tolerance, the bound included.
    constexpr bool equal(const Vec3& other, double tolerance) const noexcept {
        return isNear(x, other.x, tolerance) && isNear(y, other.y, tolerance) && isNear(z, other.z, tolerance);
    }
    constexpr bool isZero() const noexcept { return x == 0.0 && y == 0.0 && z == 0.0; }

    /// The translation of a matrix, and the first three elements of its column i, 0 to 3.
    void setFromMatrixPosition(const Mat4& m);
    void setFromMatrixColumn(const Mat4& m, int i);
    /// The point mapped by the matrix: x, y, z of m * (v, 1), with the resulting w dropped.
    void applyMatrix4(const Mat4& m);
    /// The point mapped by the matrix and divided by the resulting w, which nothing guards against 0.
    void applyProjection(const Mat4& m);
    /// The vector rotated by a unit quaternion; one that isn't of unit length scales it by its squared length, too.
    void applyQuaternion(const Quaternion& q);
    /// The direction mapped by the upper left 3x3 block alone, then normalised.
    void transformDirection(const Mat4& m);
};

/// a - b on a circle of the given period: folded once by one period where it exceeds half of it, so that a difference
/// of more than one and a half periods stays outside. Exactly half a period stays as it is, with its sign.
double cyclicDifference(double a, double b, double period);

} // namespace Ombrique::GaussianBlur
