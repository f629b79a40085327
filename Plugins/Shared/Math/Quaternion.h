#pragma once

#include "Plugins/Shared/Math/Vec3.h"

namespace Ombrique::GaussianBlur {

struct Euler;

/// A rotation of space as a quaternion x i + y j + z k + w, with the Hamilton product. The identity is (0, 0, 0, 1).
///
/// Angles are radians, but for `getRotationAngle`, which gives degrees. Unit length is up to the caller: only
/// `normalize`, `setInverse`, `setWithDirection` and `set` with an axis force it, and nothing checks it. Nothing
/// reports an error: NaN and infinities pass through the arithmetic.
///
/// `multiply` puts its argument on the right and `premultiply` on the left: the opposite of Affine's.
struct Quaternion {
    double x = 0.0;
    double y = 0.0;
    double z = 0.0;
    double w = 1.0;

    Quaternion() = default;
    /// w is 1.
    constexpr Quaternion(double xValue, double yValue, double zValue) noexcept : x(xValue), y(yValue), z(zValue) {}
    constexpr Quaternion(double xValue, double yValue, double zValue, double wValue) noexcept
        : x(xValue), y(yValue), z(zValue), w(wValue) {}
    /// Axis and angle, with the axis as it is: one that isn't of unit length gives a quaternion that isn't either.
    Quaternion(const Vec3& axis, double angle);
    /// As setWithDirection.
    Quaternion(const Vec3& from, const Vec3& to) { setWithDirection(from, to); }

    /// Exact, without a tolerance. q and -q are the same rotation and compare unequal.
    constexpr bool operator==(const Quaternion& q) const noexcept {
        return x == q.x && y == q.y && z == q.z && w == q.w;
    }
    constexpr bool operator!=(const Quaternion& q) const noexcept { return !(*this == q); }

    /// w keeps its value, unlike in the constructor.
    constexpr void set(double xValue, double yValue, double zValue) noexcept { set(xValue, yValue, zValue, w); }
    constexpr void set(double xValue, double yValue, double zValue, double wValue) noexcept {
        *this = Quaternion(xValue, yValue, zValue, wValue);
    }
    /// Axis and angle, with the axis normalised, unlike in the constructor; a zero axis counts as x.
    void set(const Vec3& axis, double angle);
    /// The shortest rotation from one unit vector to another; neither is normalised. Opposite vectors turn about one of
    /// the axes at right angles to them.
    void setWithDirection(const Vec3& from, const Vec3& to);
    /// x, y, z, w from array[offset] on.
    void setWithArray(double* array, int offset);
    /// From the rotation in the upper left 3x3 block, from which scale isn't removed; the result isn't normalised.
    void setWithMat4(const Mat4& m);
    /// From three angles in their order, evaluated in single precision: good to about 1e-7. The order Unspecified gives
    /// (0, 0, 0, 0), and one that doesn't exist changes nothing.
    void setWithEuler(const Euler& euler);
    /// To unit length; the zero quaternion becomes the identity.
    void normalize();
    /// Conjugates, then normalises.
    void setInverse();
    /// Turns the signs of x, y and z.
    constexpr void conjugate() noexcept { set(-x, -y, -z); }
    /// this = this * q: q acts before this rotation. Here and below an argument may be this quaternion.
    constexpr void multiply(const Quaternion& q) noexcept { multiplyQuaternions(*this, q); }
    /// this = q * this: q acts after this rotation.
    constexpr void premultiply(const Quaternion& q) noexcept { multiplyQuaternions(q, *this); }
    /// this = a * b.
    constexpr void multiplyQuaternions(const Quaternion& a, const Quaternion& b) noexcept {
        set(a.x * b.w + a.w * b.x + a.y * b.z - a.z * b.y, //
            a.y * b.w + a.w * b.y + a.z * b.x - a.x * b.z, //
            a.z * b.w + a.w * b.z + a.x * b.y - a.y * b.x, //
            a.w * b.w - a.x * b.x - a.y * b.y - a.z * b.z);
    }
    /// Moves from this rotation towards q along the shorter arc; t is not clamped. At t = 1 exactly it becomes q
    /// itself, with q's sign. Rotations closer than 0.001 in sine become their plain mean, for every other t but 0. The
    /// result isn't normalised.
    void slerp(const Quaternion& q, double t);

    /// x, y, z, w to array[offset] on.
    void toArray(double* array, int offset) const;
    /// In degrees, 0 to 360: the sign of w isn't folded. w isn't clamped, so that one outside -1 to 1 gives NaN.
    double getRotationAngle();
    /// (0, 0, 1) where w is within about 1e-12 of 1 or -1.
    Vec3 getRotationAxis();
    constexpr double dot(const Quaternion& q) noexcept { return x * q.x + y * q.y + z * q.z + w * q.w; }
    constexpr double lengthSq() noexcept { return dot(*this); }
    double length() { return std::sqrt(lengthSq()); }

    /// v rotated by q, which is taken to be of unit length.
    static constexpr Vec3 quaternionMulVec3(const Quaternion& q, const Vec3& v) noexcept {
        const Vec3 u(q.x, q.y, q.z);
        // Doubled before the sum and not after it, as the formula has it: the same bits, as long as nothing overflows.
        const Vec3 t = u.cross(v) * 2.0;
        return t * q.w + u.cross(t) + v;
    }
    /// `slerp` from a to b as a new value: spherical, not linear. Equal quaternions give a for every t.
    static Quaternion lerp(const Quaternion& a, const Quaternion& b, double t);
};

inline void Quaternion::normalize() {
    const double len = length();
    if (len == 0.0) {
        *this = Quaternion();
        return;
    }
    const double inv = 1.0 / len;
    set(x * inv, y * inv, z * inv, w * inv);
}

} // namespace Ombrique::GaussianBlur
