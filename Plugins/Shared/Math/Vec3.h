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
    explicit Vec3(double v) : x(v), y(v), z(v) {}
    Vec3(double xValue, double yValue, double zValue) : x(xValue), y(yValue), z(zValue) {}
    Vec3(Vec2 v, double zValue) : x(v.x), y(v.y), z(zValue) {}

    void set(double xValue, double yValue, double zValue) { *this = Vec3(xValue, yValue, zValue); }
    void set(Vec2 v, double zValue) { *this = Vec3(v, zValue); }
    /// Sets component 0 or 1; any other index sets z.
    void set(int i, double v) { (i == 0 ? x : i == 1 ? y : z) = v; }
    /// Three doubles from and to array[offset]; the array is not tested for null, unlike that of Vec2::fromArray.
    void fromArray(double const* array, int offset) { set(array[offset], array[offset + 1], array[offset + 2]); }
    void toArray(double* array, int offset) {
        array[offset] = x;
        array[offset + 1] = y;
        array[offset + 2] = z;
    }
    Vec2 getVec2() const { return Vec2(x, y); }

    using Self = Vec3;
#include "Plugins/Shared/Math/VectorMembers.inl"

    double dot(const Vec3& other) const { return x * other.x + y * other.y + z * other.z; }
    /// The vector product, right-handed: x cross y is z.
    Vec3 cross(const Vec3& other) const {
        return Vec3(y * other.z - z * other.y, z * other.x - x * other.z, x * other.y - y * other.x);
    }
    double distanceSquare(const Vec3& other) const { return (*this - other).lengthSquare(); }
    /// The angle between the directions, from 0 to pi, without sign. The cosine is not clamped, so that nearly parallel
    /// vectors may give NaN; a zero vector does.
    double angleBetween(const Vec3& other) const;
    void setNegate() { *this = negate(); }
    /// One over each component.
    Vec3 invert() const { return Vec3(1.0 / x, 1.0 / y, 1.0 / z); }
    void setInvert() { *this = invert(); }
    /// Becomes a unit vector at right angles to other: other cross the axis that precedes, cyclically, the largest
    /// component of this vector as it was. Where other is parallel to that axis, it becomes (1, 0, 0), which need not
    /// be at right angles.
    void ortho(const Vec3& other);
    /// The index, 0 to 2, of the component of largest absolute value; a tie goes to the later one.
    int largestAbsComponent() const;
    /// The plain difference component by component: angles don't wrap (see cyclicDifference).
    Vec3 rotationalDifference(const Vec3& other) const { return *this - other; }
    /// The straight line from a (t = 0) to b (t = 1); t is not clamped.
    static Vec3 lerp(Vec3 a, Vec3 b, double t) { return a * (1.0 - t) + b * t; }

    /// In place, the smaller of each component; on a tie or NaN this vector's own.
    void getMin(Vec3 other) {
        forEach([](double& own, double o) { own = std::min(own, o); }, other);
    }
    /// In place, the larger of each component; on a tie or NaN the other's.
    void getMax(Vec3 other) {
        forEach([](double& own, double o) { own = std::max(o, own); }, other);
    }
    /// In place, each component to its range; where low lies above high, a component below low becomes low.
    void clamp(Vec3 low, Vec3 high) {
        forEach([](double& own, double l, double h) { own = GaussianBlur::clamp(own, l, h); }, low, high);
    }
    /// A new vector of the components rounded down.
    Vec3 floor();

    /// Each component within 1e-12, the bound included.
    bool operator==(const Vec3& other) const { return equal(other, kTolerance); }
    bool operator!=(const Vec3& other) const { return !(*this == other); }
    /// Each component within the tolerance, the bound included.
    bool equal(const Vec3& other, double tolerance) const {
        return isNear(x, other.x, tolerance) && isNear(y, other.y, tolerance) && isNear(z, other.z, tolerance);
    }
    bool isZero() const { return x == 0.0 && y == 0.0 && z == 0.0; }

    /// The translation of a matrix, and the first three elements of its column i, 0 to 3.
    void setFromMatrixPosition(Mat4 const& m);
    void setFromMatrixColumn(Mat4 const& m, int i);
    /// The point mapped by the matrix: x, y, z of m * (v, 1), with the resulting w dropped.
    void applyMatrix4(Mat4 const& m);
    /// The point mapped by the matrix and divided by the resulting w, which nothing guards against 0.
    void applyProjection(Mat4 const& m);
    /// The vector rotated by a unit quaternion; one that isn't of unit length scales it by its squared length, too.
    void applyQuaternion(Quaternion const& q);
    /// The direction mapped by the upper left 3x3 block alone, then normalised.
    void transformDirection(Mat4 const& m);

private:
    template <typename Step, typename... Others> void forEach(Step step, const Others&... others) {
        step(x, others.x...);
        step(y, others.y...);
        step(z, others.z...);
    }
};

/// a - b on a circle of the given period: folded once by one period where it exceeds half of it, so that a difference
/// of more than one and a half periods stays outside. Exactly half a period stays as it is, with its sign.
double cyclicDifference(double a, double b, double period);

} // namespace Ombrique::GaussianBlur
