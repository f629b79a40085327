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
    Barycentric(double uValue, double vValue, double wValue) : u(uValue), v(vValue), w(wValue) {}
    /// The weights of a, b and c for the point p, or for its orthogonal projection on the triangle's plane; their sum
    /// is 1. Corners on one line give infinities or NaN.
    Barycentric(const Vec2& a, const Vec2& b, const Vec2& c, const Vec2& p);
    Barycentric(const Vec3& a, const Vec3& b, const Vec3& c, const Vec3& p);
    Barycentric(const Vec4& a, const Vec4& b, const Vec4& c, const Vec4& p);
    Barycentric(const Color& a, const Color& b, const Color& c, const Color& p);

    /// Whether the point lies in the triangle, edges and corners included; false for weights that aren't finite. The
    /// upper bound of w isn't tested: it follows where the sum is 1.
    bool isInside() const;

    /// The value at the point of what is a, b and c at the corners; outside the triangle it extrapolates.
    Vec2 interpolate(const Vec2& a, const Vec2& b, const Vec2& c) const { return weightedSum(a, b, c); }
    Vec3 interpolate(const Vec3& a, const Vec3& b, const Vec3& c) const { return weightedSum(a, b, c); }
    Vec4 interpolate(const Vec4& a, const Vec4& b, const Vec4& c) const { return weightedSum(a, b, c); }
    Color interpolate(const Color& a, const Color& b, const Color& c) const { return weightedSum(a, b, c); }

private:
    template <typename Value> Value weightedSum(const Value& a, const Value& b, const Value& c) const {
        return (a * u + b * v) + c * w;
    }
};

} // namespace Ombrique::GaussianBlur
