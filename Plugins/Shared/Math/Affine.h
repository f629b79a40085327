#pragma once

#include "Plugins/Shared/Math/Vec2.h"

namespace Ombrique::GaussianBlur {

/// An affine transform of the plane: x' = m[0] x + m[1] y + m[2], y' = m[3] x + m[4] y + m[5]. The storage runs row by
/// row, while the constructor and `set` take their six numbers column by column. Angles are degrees, converted with
/// kRadiansPerDegree.
///
/// `multiply` puts its argument on the left and `premultiply` on the right: the opposite of Quaternion's.
struct Affine {
    double m[6];

    /// The identity, or all zeros, which is singular.
    explicit constexpr Affine(bool identity) noexcept : Affine(identity, 0.0, 0.0, identity, 0.0, 0.0) {}
    /// Column by column: x' = a x + c y + e, y' = b x + d y + f.
    constexpr Affine(double a, double b, double c, double d, double e, double f) noexcept : m{a, c, e, b, d, f} {}

    /// Each element within 1e-12, the bound included; false for a NaN.
    constexpr bool operator==(const Affine& other) const noexcept {
        return std::equal(m, m + 6, other.m, [](double a, double b) { return isNear(a, b); });
    }

    // Setters replace the whole transform.

    /// Column by column, as the constructor.
    constexpr void set(double a, double b, double c, double d, double e, double f) noexcept {
        *this = Affine(a, b, c, d, e, f);
    }
    /// A layer's transform: moves the anchor to the origin, scales, rotates by degrees, and moves the anchor to
    /// position.
    void set(Vec2 anchor, Vec2 position, Vec2 scale, double rotation);
    constexpr void setTranslate(double tx, double ty) noexcept { set(1.0, 0.0, 0.0, 1.0, tx, ty); }
    constexpr void setScale(double sx, double sy) noexcept { set(sx, 0.0, 0.0, sy, 0.0, 0.0); }
    /// x' = x + y tan(angle), and y' = y + x tan(angle).
    void setSkewX(double degrees);
    void setSkewY(double degrees);
    /// Turns the positive x axis towards the positive y axis.
    void setRotate(double degrees);

    /// this = a * this: a acts after this transform. a may be this transform.
    constexpr void multiply(const Affine& a) noexcept { *this = product(a, *this); }
    /// this = this * a: a acts before this transform.
    constexpr void premultiply(const Affine& a) noexcept { *this = product(*this, a); }
    // Premultiply by the transform of the setter of that name: each works in the local coordinates, and acts on a point
    // before all that stood in the transform.
    constexpr void translate(double tx, double ty) noexcept { premultiplyWith(&Affine::setTranslate, tx, ty); }
    constexpr void scale(double sx, double sy) noexcept { premultiplyWith(&Affine::setScale, sx, sy); }
    void skewX(double degrees) { premultiplyWith(&Affine::setSkewX, degrees); }
    void skewY(double degrees) { premultiplyWith(&Affine::setSkewY, degrees); }
    void rotate(double degrees) { premultiplyWith(&Affine::setRotate, degrees); }

    /// The inverse in out, which may be this transform; false, with out left alone, for a determinant strictly between
    /// -1e-6 and 1e-6. That bound is absolute, so that a very small scale counts as singular.
    bool inverse(Affine& out) const;
    /// The inverse, or the identity for a singular transform.
    Affine getInverse() const;
    /// The mean of the lengths of the two rows' linear parts, rounded in single precision to four decimals.
    double averageScale() const;

    /// Map a point in place, as a new value, or into *ox and *oy, which may not be null.
    constexpr void transform(Vec2& point) const noexcept { point = getTransform(point); }
    constexpr Vec2 getTransform(const Vec2& point) const noexcept {
        return Vec2(m[0] * point.x + m[1] * point.y + m[2], m[3] * point.x + m[4] * point.y + m[5]);
    }
    constexpr void transform(double x, double y, double* ox, double* oy) const noexcept {
        const Vec2 mapped = getTransform(Vec2(x, y));
        *ox = mapped.x;
        *oy = mapped.y;
    }
    constexpr void transform(double& x, double& y) const noexcept { transform(x, y, &x, &y); }

private:
    static constexpr Affine product(const Affine& left, const Affine& right) noexcept {
        const double* const a = left.m;
        const double* const t = right.m;
        return Affine(a[0] * t[0] + a[1] * t[3], a[3] * t[0] + a[4] * t[3], //
                      a[0] * t[1] + a[1] * t[4], a[3] * t[1] + a[4] * t[4], //
                      a[0] * t[2] + a[1] * t[5] + a[2], a[3] * t[2] + a[4] * t[5] + a[5]);
    }

    template <typename... Arguments>
    constexpr void premultiplyWith(void (Affine::*setter)(Arguments...), Arguments... arguments) {
        Affine step(true);
        (step.*setter)(arguments...);
        premultiply(step);
    }
};

} // namespace Ombrique::GaussianBlur
