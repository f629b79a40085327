#include "Plugins/Shared/Math/Vec2.h"

namespace Ombrique::GaussianBlur {

namespace {

/// The foot of the perpendicular from p on the infinite line through a and b.
Vec2 footOnLine(const Vec2& p, const Vec2& a, const Vec2& b) {
    const Vec2 e = b - a;
    const double t = (p - a).dot(e) / e.dot(e);
    return a + e * t;
}

int sign(double v) { return (v > 0.0) - (v < 0.0); }

} // namespace

void Vec2::fromArray(double* array, int offset) {
    if (array)
        set(array[offset], array[offset + 1]);
}

void Vec2::normalize(double* x, double* y) {
    const double length = Vec2(*x, *y).length();
    if (length > kTolerance) {
        const double factor = 1.0 / length;
        *x *= factor;
        *y *= factor;
    }
}

Vec2 Vec2::project(const Vec2& other) const {
    if (other.isZero())
        return Vec2();
    return other * (dot(other) / other.lengthSquare());
}

double Vec2::distanceToLine(const Vec2& a, const Vec2& b) { return distance(footOnLine(*this, a, b)); }

double Vec2::lineProjectionLength(const Vec2& a, const Vec2& b) { return a.distance(footOnLine(*this, a, b)); }

double Vec2::getAngle() const { return isZero() ? 0.0 : std::atan2(y, x) * kDegreesPerRadian; }

void Vec2::setAngle(double degrees) {
    const double a = degrees * kRadiansPerDegree;
    const double n = length();
    set(n * std::cos(a), n * std::sin(a));
}

double Vec2::angleBetween(const Vec2& other) const { return std::atan2(cross(other), dot(other)) * kDegreesPerRadian; }

int Vec2::getQuadrant() const {
    if (y >= 0.0)
        return x >= 0.0 ? 1 : 2;
    return x < 0.0 ? 3 : 4;
}

void Vec2::rotate(double degrees) {
    if (degrees == 0.0)
        return;
    const double a = degrees * kRadiansPerDegree;
    const double s = std::sin(a);
    const double c = std::cos(a);
    set(c * x - s * y, c * y + s * x);
}

Vec2 Vec2::rotateRound(double degrees, const Vec2& center) const {
    if (degrees == 0.0)
        return *this;
    Vec2 arm = *this - center;
    arm.rotate(degrees);
    return arm + center;
}

bool Vec2::isCollinear(const Vec2& other) const {
    return std::fabs(cross(other)) <= kTolerance * std::sqrt(lengthSquare() * other.lengthSquare());
}

bool Vec2::isOrthogonal(const Vec2& other) const {
    return std::fabs(dot(other)) <= kTolerance * std::sqrt(lengthSquare() * other.lengthSquare());
}

bool Vec2::isDuplicate(const Vec2& a, const Vec2& b) {
    return std::fabs(a.x - b.x) < 0.25 && std::fabs(a.y - b.y) < 0.25;
}

double Vec2::signedArea(const Vec2& a, const Vec2& b, const Vec2& c) {
    return (c.y - a.y) * (b.x - a.x) - (b.y - a.y) * (c.x - a.x);
}

bool Vec2::intersecting(const Vec2& a, const Vec2& b, const Vec2& c, const Vec2& d) {
    const Vec2 e = b - a;
    return (e.cross(c - a) > 0.0) != (e.cross(d - a) > 0.0);
}

bool Vec2::oppositeQuadrant(const Vec2& a, const Vec2& b) {
    const bool sameX = sign(a.x) == sign(b.x);
    const bool sameY = sign(a.y) == sign(b.y);
    if (!sameX && (!sameY || sign(a.y) == 0))
        return true;
    if (sameY)
        return false;
    return sign(a.x) == 0 || sign(b.x) == 0;
}

bool Vec2::anchorOutwardD(Vec2& d, const Vec2& a, const Vec2& b) {
    return (a.x * d.x - b.x * d.x + a.y * d.y - b.y * d.y) > 0.0;
}

bool Vec2::anchorOutward(Vec2& d, const Vec2& a, const Vec2& b, bool inward) {
    if (anchorOutwardD(d, a, b) != inward)
        return false;
    d = d.negate();
    return true;
}

int Vec2::intersect(const Vec2& a, const Vec2& b, const Vec2& c, const Vec2& d, Vec2& out, double* ua, double* ub) {
    const double den = (b.x - a.x) * (d.y - c.y) - (b.y - a.y) * (d.x - c.x);
    const double na = (a.y - c.y) * (d.x - c.x) - (a.x - c.x) * (d.y - c.y);
    const double nb = (a.y - c.y) * (b.x - a.x) - (a.x - c.x) * (b.y - a.y);
    if (negligible(na) && negligible(nb) && negligible(den)) {
        out = Vec2((a.x + b.x) * 0.5, (a.y + b.y) * 0.5);
        return 2;
    }
    if (negligible(den)) {
        out = Vec2();
        return 0;
    }
    const double u = na / den;
    const double v = nb / den;
    if (ua)
        *ua = u;
    if (ub)
        *ub = v;
    out = Vec2(a.x + (b.x - a.x) * u, a.y + (b.y - a.y) * u);

    const bool outsideAB = u < 0.0 || u > 1.0;
    const bool outsideCD = v < 0.0 || v > 1.0;
    if (outsideAB)
        return outsideCD ? 5 : 3;
    return outsideCD ? 4 : 1;
}

} // namespace Ombrique::GaussianBlur
