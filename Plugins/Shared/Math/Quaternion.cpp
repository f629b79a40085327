#include "Plugins/Shared/Math/Quaternion.h"

namespace Ombrique::GaussianBlur {

Quaternion::Quaternion(const Vec3& axis, double angle) {
    const double half = angle * 0.5;
    const double s = std::sin(half);
    set(axis.x * s, axis.y * s, axis.z * s, std::cos(half));
}

void Quaternion::set(const Vec3& axis, double angle) {
    Vec3 unit = axis;
    unit.normalize();
    *this = Quaternion(unit, angle);
}

void Quaternion::setWithDirection(const Vec3& from, const Vec3& to) {
    const double r = from.dot(to) + 1.0;
    if (r < kTolerance) {
        if (std::fabs(from.x) > std::fabs(from.z))
            set(-from.y, from.x, 0.0, 0.0);
        else
            set(0.0, -from.z, from.y, 0.0);
    } else {
        const Vec3 v = from.cross(to);
        set(v.x, v.y, v.z, r);
    }
    normalize();
}

void Quaternion::setWithArray(double* array, int offset) {
    set(array[offset], array[offset + 1], array[offset + 2], array[offset + 3]);
}

void Quaternion::setInverse() {
    conjugate();
    normalize();
}

void Quaternion::slerp(const Quaternion& q, double t) {
    constexpr double kSmallSine = 0.001;
    if (t == 1.0)
        *this = q;
    if (t == 1.0 || t == 0.0)
        return;

    double d = dot(q);
    Quaternion end = q;
    if (d < 0.0) {
        end = Quaternion(-q.x, -q.y, -q.z, -q.w);
        d = -d;
    }
    if (d >= 1.0)
        return;

    const double s = std::sqrt(1.0 - d * d);
    if (std::fabs(s) < kSmallSine) {
        set((x + end.x) * 0.5, (y + end.y) * 0.5, (z + end.z) * 0.5, (w + end.w) * 0.5);
        return;
    }
    const double half = std::atan2(s, d);
    const double ra = std::sin((1.0 - t) * half) / s;
    const double rb = std::sin(half * t) / s;
    set(x * ra + end.x * rb, y * ra + end.y * rb, z * ra + end.z * rb, w * ra + end.w * rb);
}

void Quaternion::toArray(double* array, int offset) const {
    array[offset] = x;
    array[offset + 1] = y;
    array[offset + 2] = z;
    array[offset + 3] = w;
}

double Quaternion::getRotationAngle() { return 2.0 * std::acos(w) * kDegreesPerRadian; }

Vec3 Quaternion::getRotationAxis() {
    const double s = 1.0 - w * w;
    if (s < kTolerance)
        return Vec3(0.0, 0.0, 1.0);
    return Vec3(x, y, z) * (1.0 / std::sqrt(s));
}

Quaternion Quaternion::lerp(const Quaternion& a, const Quaternion& b, double t) {
    Quaternion result = a;
    if (a != b)
        result.slerp(b, t);
    return result;
}

} // namespace Ombrique::GaussianBlur
