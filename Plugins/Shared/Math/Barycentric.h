#pragma once

#include "Plugins/Shared/Math/Color.h"
#include "Plugins/Shared/Math/Vec4.h"

namespace Ombrique::GaussianBlur {

/// The weights of a triangle's three corners that give a point of its plane. Corners and point may be Vec2, Vec3, Vec4
/// or Color; a Color counts as a vector of its four channels.
struct Barycentric {
    double u;
    double v;
    double w;

    /// The weights as they are, whether or not their sum is 1.
    constexpr Barycentric(double uValue, double vValue, double wValue) noexcept : u(uValue), v(vValue), w(wValue) {}
    /// The weights of a, b and c for the point p, or for its orthogonal projection on the triangle's plane; their sum
    /// is 1. Corners on one line give infinities or NaN.
    constexpr Barycentric(const Vec2& a, const Vec2& b, const Vec2& c, const Vec2& p) noexcept
        : Barycentric(weights(a, b, c, p)) {}
    constexpr Barycentric(const Vec3& a, const Vec3& b, const Vec3& c, const Vec3& p) noexcept
        : Barycentric(weights(a, b, c, p)) {}
    constexpr Barycentric(const Vec4& a, const Vec4& b, const Vec4& c, const Vec4& p) noexcept
        : Barycentric(weights(a, b, c, p)) {}
    constexpr Barycentric(const Color& a, const Color& b, const Color& c, const Color& p) noexcept
        : Barycentric(weights(a, b, c, p)) {}

    /// Whether the point lies in the triangle, edges and corners included; false for weights that aren't finite. The
    /// upper bound of w isn't tested: it follows where the sum is 1.
    constexpr bool isInside() const noexcept { return u >= 0.0 && u <= 1.0 && v >= 0.0 && v <= 1.0 && w >= 0.0; }

    /// The value at the point of what is a, b and c at the corners; outside the triangle it extrapolates.
    constexpr Vec2 interpolate(const Vec2& a, const Vec2& b, const Vec2& c) const noexcept {
        return weightedSum(a, b, c);
    }
    constexpr Vec3 interpolate(const Vec3& a, const Vec3& b, const Vec3& c) const noexcept {
        return weightedSum(a, b, c);
    }
    constexpr Vec4 interpolate(const Vec4& a, const Vec4& b, const Vec4& c) const noexcept {
        return weightedSum(a, b, c);
    }
    constexpr Color interpolate(const Color& a, const Color& b, const Color& c) const noexcept {
        return weightedSum(a, b, c);
    }

private:
    template <typename Value> static constexpr double dot(const Value& a, const Value& b) noexcept {
        if constexpr (std::is_same_v<Value, Color>)
            return a.r() * b.r() + a.g() * b.g() + a.b() * b.b() + a.a() * b.a();
        else
            return a.dot(b);
    }

    template <typename Value>
    static constexpr Barycentric weights(const Value& a, const Value& b, const Value& c, const Value& p) noexcept {
        const Value e0 = b - c, e1 = a - c, e2 = p - c;
        const double d00 = dot(e0, e0), d01 = dot(e0, e1), d11 = dot(e1, e1), d02 = dot(e0, e2), d12 = dot(e1, e2);
        const double den = d00 * d11 - d01 * d01;
        const double weightA = (d00 * d12 - d01 * d02) / den;
        const double weightB = (d11 * d02 - d01 * d12) / den;
        return Barycentric(weightA, weightB, 1.0 - weightA - weightB);
    }

    template <typename Value>
    constexpr Value weightedSum(const Value& a, const Value& b, const Value& c) const noexcept {
        return (a * u + b * v) + c * w;
    }
};

} // namespace Ombrique::GaussianBlur
