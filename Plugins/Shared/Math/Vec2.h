#pragma once

#include "Plugins/Shared/Math/Float.h"

#include <algorithm>
#include <cmath>

namespace Ombrique::GaussianBlur {

/// A point or vector of the plane.
///
/// Angles are degrees, counter-clockwise from the positive x axis where y points up; they are converted with
/// kRadiansPerDegree and kDegreesPerRadian, so that even a quarter turn isn't exact. Nothing reports an error: a zero
/// divisor gives infinities or NaN.
///
/// Three traps. Several queries are not const, although they change nothing. `getMin` and `getMax` work in place.
/// And the tests compare in three ways: per component with the bound included (`==`, `equal`), by distance with the
/// bound excluded (`equalWithTolerance`), and to within a quarter of a unit (`isDuplicate`).
struct Vec2 {
    double x = 0.0;
    double y = 0.0;

    Vec2() = default;
    constexpr Vec2(double xValue, double yValue) noexcept : x(xValue), y(yValue) {}

    constexpr void set(double xValue, double yValue) noexcept { *this = Vec2(xValue, yValue); }
    constexpr void set(Vec2& v) noexcept { *this = v; }
    /// Reads array[offset] and array[offset + 1]; a null array leaves the vector as it is.
    void fromArray(double* array, int offset);

private:
    // Before its users: Clang evaluates them in constant expressions only where it has seen the body.
    template <typename Step, typename... Others> constexpr void forEach(Step step, const Others&... others) noexcept {
        step(x, others.x...);
        step(y, others.y...);
    }

public:
    using Self = Vec2;
#include "Plugins/Shared/Math/VectorMembers.inl"

    /// The remainder of each component as std::fmod gives it, with the sign of the dividend.
    Vec2 modulo(const Vec2& other) const { return Vec2(std::fmod(x, other.x), std::fmod(y, other.y)); }
    Vec2 operator%(const Vec2& other) const { return modulo(other); }
    /// The vector of the products, as operator*; the scalar product is `dot`.
    constexpr Vec2 dotProduction(const Vec2& other) const noexcept { return *this * other; }

    /// In place, the smaller of each component; on a tie or NaN this vector's own.
    constexpr void getMin(const Vec2& other) noexcept {
        forEach([](double& own, double o) { own = std::min(own, o); }, other);
    }
    /// In place, the larger of each component; on a tie or NaN the other's.
    constexpr void getMax(const Vec2& other) noexcept {
        forEach([](double& own, double o) { own = std::max(o, own); }, other);
    }
    /// In place, each component to its range; where low lies above high, a component below low becomes low.
    constexpr void clamp(const Vec2& low, const Vec2& high) noexcept {
        forEach([](double& own, double l, double h) { own = GaussianBlur::clamp(own, l, h); }, low, high);
    }
    /// Negates each component that is positive where the other's isn't, or the reverse. Zero counts as not positive.
    constexpr void followSigns(const Vec2& other) noexcept {
        forEach([](double& own, double o) { own = (own > 0.0) != (o > 0.0) ? -own : own; }, other);
    }

    constexpr double dot(const Vec2& other) const noexcept { return x * other.x + y * other.y; }
    /// The z component of the product in space: positive where other lies counter-clockwise of this vector.
    constexpr double cross(const Vec2& other) const noexcept { return cross(x, y, other.x, other.y); }
    static constexpr double cross(double x1, double y1, double x2, double y2) noexcept { return x1 * y2 - y1 * x2; }
    static constexpr double distanceSquared(const Vec2& a, const Vec2& b) noexcept { return (a - b).lengthSquare(); }
    /// Scales two numbers to unit length in place. Unlike the member of that name it leaves a vector no longer than
    /// 1e-12 as it is. Neither pointer may be null.
    static void normalize(double* x, double* y);

    /// The projection on the line through the origin and other; (0, 0) for an other of exactly zero.
    Vec2 project(const Vec2& other) const;
    /// The distance of this point from the infinite line through a and b; NaN where a = b.
    double distanceToLine(const Vec2& a, const Vec2& b);
    /// The distance, without sign, from a to the foot of this point's perpendicular on the infinite line through a and
    /// b; NaN where a = b.
    double lineProjectionLength(const Vec2& a, const Vec2& b);

    /// The direction, from -180 to 180; 0 for the exact zero vector.
    double getAngle() const;
    /// Turns to the angle and keeps the length.
    void setAngle(double degrees);
    /// The signed turn from this direction to other's, from -180 to 180.
    double angleBetween(const Vec2& other) const;
    /// 1 to 4, counter-clockwise from x, y >= 0. Zero counts as positive.
    int getQuadrant() const;
    constexpr double slope() const noexcept { return y / x; }
    /// Turns the vector about the origin. Here and below an angle of exactly 0 changes no bit.
    void rotate(double degrees);
    /// The point turned about the centre, as a new value or in place.
    Vec2 rotateRound(double degrees, const Vec2& center) const;
    void rotateAround(double degrees, const Vec2& center) { *this = rotateRound(degrees, center); }
    /// A quarter turn counter-clockwise, exact.
    constexpr Vec2 normal() const noexcept { return Vec2(-y, x); }
    constexpr Vec2 perpindicularLeft() const noexcept { return normal(); }
    /// A quarter turn clockwise, exact.
    constexpr Vec2 perpindicularRight() const noexcept { return Vec2(y, -x); }
    /// A quarter turn counter-clockwise in place, exact.
    constexpr void prepen() noexcept { *this = normal(); }
    /// The straight line from a (t = 0) to b (t = 1); t is not clamped.
    static constexpr Vec2 lerp(Vec2 a, Vec2 b, double t) noexcept { return a * (1.0 - t) + b * t; }

    /// Each component within 1e-12, the bound included.
    constexpr bool operator==(const Vec2& other) const noexcept { return equal(other, kTolerance); }
    constexpr bool operator!=(const Vec2& other) noexcept { return !(*this == other); }
    /// Each component within the tolerance, the bound included.
    constexpr bool equal(const Vec2& other, double tolerance) const noexcept {
        return isNear(x, other.x, tolerance) && isNear(y, other.y, tolerance);
    }
    /// A Euclidean distance below the tolerance, the bound excluded: a tolerance of 0 is false for identical points.
    static constexpr bool equalWithTolerance(double x1, double y1, double x2, double y2, double tolerance) noexcept {
        return equalWithTolerance(Vec2(x1, y1), Vec2(x2, y2), tolerance);
    }
    static constexpr bool equalWithTolerance(Vec2 a, Vec2 b, double tolerance) noexcept {
        return tolerance * tolerance > distanceSquared(a, b);
    }
    constexpr bool isZero() const noexcept { return x == 0.0 && y == 0.0; }
    /// Whether a number, or each component, lies inside (-1e-12, 1e-12), the bounds excluded.
    static constexpr bool negligible(double v) noexcept { return -kTolerance < v && v < kTolerance; }
    constexpr bool negligible() const noexcept { return negligible(x) && negligible(y); }
    constexpr bool nonNegligible() const noexcept { return !negligible(); }
    /// Whether the directions are parallel or opposite, or at right angles, to within 1e-12 of the product of the
    /// lengths, the bound included. A zero vector is both to every other.
    bool isCollinear(const Vec2& other) const;
    bool isOrthogonal(const Vec2& other) const;
    /// Whether two points are closer than a quarter of a unit on both axes.
    static bool isDuplicate(const Vec2& a, const Vec2& b);

    /// From a plane with its origin in the centre and y up to one with its origin at the top left and y down, for an
    /// area of the given size. Despite the names, `topLeftToCenterPoint` is the way back.
    static constexpr Vec2 centerToTopLefetPoint(const Vec2& p, const Vec2& size) noexcept {
        return Vec2(p.x + size.x * 0.5, size.y * 0.5 - p.y);
    }
    static constexpr Vec2 topLeftToCenterPoint(const Vec2& p, const Vec2& size) noexcept {
        return Vec2(p.x - size.x * 0.5, size.y * 0.5 - p.y);
    }
    /// Twice the area of the triangle, positive where a, b, c run counter-clockwise.
    static double signedArea(const Vec2& a, const Vec2& b, const Vec2& c);
    /// Whether c and d lie on different sides of the infinite line from a to b; a point on the line counts as on the
    /// right. Only this line is tested, so that the segments themselves need not meet: see `intersect`.
    static bool intersecting(const Vec2& a, const Vec2& b, const Vec2& c, const Vec2& d);
    /// Whether two directions lie in opposite quadrants, a zero component counting as a sign of its own.
    static bool oppositeQuadrant(const Vec2& a, const Vec2& b);
    /// Whether d points from b towards a: has a positive component along a - b. Changes nothing.
    static bool anchorOutwardD(Vec2& d, const Vec2& a, const Vec2& b);
    /// Turns d round where it doesn't point from b towards a, or, with `inward`, where it does; gives whether it was
    /// turned. A d at right angles is turned by the outward form and left by the inward one.
    static bool anchorOutward(Vec2& d, const Vec2& a, const Vec2& b, bool inward = false);
    static bool anchorInward(Vec2& d, const Vec2& a, const Vec2& b) { return anchorOutward(d, a, b, true); }
    /// Where the lines through the segments a to b and c to d meet, and whether that is on the segments; an end belongs
    /// to its segment. The result is
    ///   0  parallel: out = (0, 0);               2  one line: out = the midpoint of a and b;
    ///   1  they meet on both segments;           3  outside a to b, on c to d;
    ///   4  on a to b, outside c to d;            5  outside both.
    /// For 1, 3, 4 and 5, out is the meeting point, and *ua and *ub tell where it lies on each segment, from 0 at a and
    /// c to 1 at b and d. For 0 and 2 the two keep what they held. Either pointer may be null.
    static int intersect(const Vec2& a, const Vec2& b, const Vec2& c, const Vec2& d, Vec2& out, double* ua, double* ub);
};

} // namespace Ombrique::GaussianBlur
