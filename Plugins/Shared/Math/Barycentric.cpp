#include "Plugins/Shared/Math/Barycentric.h"

namespace Ombrique::GaussianBlur {

namespace {

template <typename Vector> double scalarProduct(const Vector& a, const Vector& b) { return a.dot(b); }

double scalarProduct(const Color& a, const Color& b) {
    return a.r() * b.r() + a.g() * b.g() + a.b() * b.b() + a.a() * b.a();
}

template <typename Vector> Barycentric weights(const Vector& a, const Vector& b, const Vector& c, const Vector& p) {
    const Vector e0 = b - c;
    const Vector e1 = a - c;
    const Vector e2 = p - c;
    const double d00 = scalarProduct(e0, e0);
    const double d01 = scalarProduct(e0, e1);
    const double d11 = scalarProduct(e1, e1);
    const double d02 = scalarProduct(e0, e2);
    const double d12 = scalarProduct(e1, e2);
    const double den = d00 * d11 - d01 * d01;
    const double u = (d00 * d12 - d01 * d02) / den;
    const double v = (d11 * d02 - d01 * d12) / den;
    return Barycentric(u, v, 1.0 - u - v);
}

} // namespace

Barycentric::Barycentric(const Vec2& a, const Vec2& b, const Vec2& c, const Vec2& p)
    : Barycentric(weights(a, b, c, p)) {}

Barycentric::Barycentric(const Vec3& a, const Vec3& b, const Vec3& c, const Vec3& p)
    : Barycentric(weights(a, b, c, p)) {}

Barycentric::Barycentric(const Vec4& a, const Vec4& b, const Vec4& c, const Vec4& p)
    : Barycentric(weights(a, b, c, p)) {}

Barycentric::Barycentric(const Color& a, const Color& b, const Color& c, const Color& p)
    : Barycentric(weights(a, b, c, p)) {}

bool Barycentric::isInside() const { return u >= 0.0 && u <= 1.0 && v >= 0.0 && v <= 1.0 && w >= 0.0; }

} // namespace Ombrique::GaussianBlur
