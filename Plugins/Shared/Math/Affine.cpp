#include "Plugins/Shared/Math/Affine.h"

namespace Ombrique::GaussianBlur {

void Affine::set(Vec2 anchor, Vec2 position, Vec2 scale, double rotation) {
    const double r = rotation * kRadiansPerDegree;
    const double s = std::sin(r);
    const double c = std::cos(r);
    set(scale.x * c, scale.x * s, -(scale.y * s), scale.y * c, position.x, position.y);
    translate(-anchor.x, -anchor.y);
}

void Affine::setSkewX(double degrees) { set(1.0, 0.0, std::tan(degrees * kRadiansPerDegree), 1.0, 0.0, 0.0); }

void Affine::setSkewY(double degrees) { set(1.0, std::tan(degrees * kRadiansPerDegree), 0.0, 1.0, 0.0, 0.0); }

void Affine::setRotate(double degrees) {
    const double r = degrees * kRadiansPerDegree;
    const double s = std::sin(r);
    const double c = std::cos(r);
    set(c, s, -s, c, 0.0, 0.0);
}

bool Affine::inverse(Affine& out) const {
    const double det = m[0] * m[4] - m[1] * m[3];
    if (-1e-6 < det && det < 1e-6)
        return false;
    const double inv = 1.0 / det;
    out.set(m[4] * inv, -(m[3] * inv), -(m[1] * inv), m[0] * inv, //
            (m[1] * m[5] - m[4] * m[2]) * inv, (m[3] * m[2] - m[0] * m[5]) * inv);
    return true;
}

Affine Affine::getInverse() const {
    Affine result(true);
    inverse(result);
    return result;
}

double Affine::averageScale() const {
    const double mean = (Vec2(m[0], m[1]).length() + Vec2(m[3], m[4]).length()) * 0.5;
    return std::round(static_cast<float>(mean * 10000.0)) / 10000.0f;
}

} // namespace Ombrique::GaussianBlur
