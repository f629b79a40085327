// The members of Mat4, Quaternion, Euler and Vec3 that need more than one another of these types. They stand together
// here, so that no two of the types' own sources include each other.

#include "Plugins/Shared/Math/Euler.h"
#include "Plugins/Shared/Math/Mat4.h"
#include "Plugins/Shared/Math/Quaternion.h"

namespace Ombrique::GaussianBlur {

// Mat4

namespace {

/// The reverse: the rotation whose matrix has these columns. It starts from the component that is the largest, as near
/// as the diagonal tells, so that no divisor is small.
Quaternion rotationOntoAxes(const Vec3& x, const Vec3& y, const Vec3& z) {
    const double trace = x.x + y.y + z.z;
    if (trace > 0.0) {
        const double s = 0.5 / std::sqrt(trace + 1.0);
        return Quaternion((y.z - z.y) * s, (z.x - x.z) * s, (x.y - y.x) * s, 0.25 / s);
    }
    if (x.x > y.y && x.x > z.z) {
        const double s = 2.0 * std::sqrt(x.x + 1.0 - y.y - z.z);
        return Quaternion(0.25 * s, (y.x + x.y) / s, (x.z + z.x) / s, (y.z - z.y) / s);
    }
    if (y.y > z.z) {
        const double s = 2.0 * std::sqrt(y.y + 1.0 - x.x - z.z);
        return Quaternion((y.x + x.y) / s, 0.25 * s, (z.y + y.z) / s, (z.x - x.z) / s);
    }
    const double s = 2.0 * std::sqrt(z.z + 1.0 - x.x - y.y);
    return Quaternion((z.x + x.z) / s, (z.y + y.z) / s, 0.25 * s, (x.y - y.x) / s);
}

} // namespace

void Mat4::compose(const Vec3& anchor, const Vec3& position, const Quaternion& rotation, const Vec3& scale) {
    const Vec3 scaledAnchor = anchor * scale;
    Mat4 translation(false);
    translation.setTranslate(position);
    setWithQuaternion(rotation);
    mult(translation, *this, *this);
    translate(scaledAnchor.negate());

    const double factors[3] = {scale.x, scale.y, scale.z};
    for (int column = 0; column < 3; ++column)
        if (factors[column] != 1.0)
            for (int row = 0; row < 3; ++row)
                m[4 * column + row] *= factors[column];
}

void Mat4::decompose(Vec3& position, Quaternion& rotation, Vec3& scale) {
    const auto orTiny = [](double length) { return length == 0.0 ? 1e-06 : length; };
    Vec3 x, y, z;
    x.setFromMatrixColumn(*this, 0);
    y.setFromMatrixColumn(*this, 1);
    z.setFromMatrixColumn(*this, 2);
    const double signX = determinant() < 0.0 ? -1.0 : 1.0;
    const Vec3 lengths(orTiny(signX * x.length()), orTiny(y.length()), orTiny(z.length()));
    position.setFromMatrixPosition(*this);

    rotation = rotationOntoAxes(x * (1.0 / lengths.x), y * (1.0 / lengths.y), z * (1.0 / lengths.z));
    scale = lengths;
}

void Mat4::decompose(const Vec3& anchor, Vec3& position, Quaternion& rotation, Vec3& scale) {
    const Vec3 anchorOffset = multWithoutTranslate(anchor);
    decompose(position, rotation, scale);
    position += anchorOffset;
}

// Quaternion

void Quaternion::setWithMat4(const Mat4& matrix) {
    Vec3 axes[3];
    for (int i = 0; i < 3; ++i)
        axes[i].setFromMatrixColumn(matrix, i);
    *this = rotationOntoAxes(axes[0], axes[1], axes[2]);
}

namespace {

/// The signs with which the second product enters each component of the quaternion of three angles.
struct ProductSigns {
    float x, y, z, w;
};

constexpr ProductSigns kProductSigns[] = {
    {+1, -1, +1, -1}, // XYZ
    {+1, +1, -1, -1}, // YZX
    {-1, +1, +1, -1}, // ZXY
    {-1, -1, +1, +1}, // XZY
    {+1, -1, -1, +1}, // YXZ
    {-1, +1, -1, +1}, // ZYX
};

bool namesAnOrder(Euler::RotationOrder order) { return order >= Euler::XYZ && order <= Euler::ZYX; }

} // namespace

void Quaternion::setWithEuler(const Euler& euler) {
    if (euler.order == Euler::Unspecified)
        set(0.0, 0.0, 0.0, 0.0);
    if (!namesAnOrder(euler.order))
        return;
    const float s1 = static_cast<float>(std::sin(euler.x * 0.5)), c1 = static_cast<float>(std::cos(euler.x * 0.5));
    const float s2 = static_cast<float>(std::sin(euler.y * 0.5)), c2 = static_cast<float>(std::cos(euler.y * 0.5));
    const float s3 = static_cast<float>(std::sin(euler.z * 0.5)), c3 = static_cast<float>(std::cos(euler.z * 0.5));
    const ProductSigns& sign = kProductSigns[euler.order - Euler::XYZ];
    set(s1 * c2 * c3 + sign.x * (c1 * s2 * s3), //
        c1 * s2 * c3 + sign.y * (s1 * c2 * s3), //
        c1 * c2 * s3 + sign.z * (s1 * s2 * c3), //
        c1 * c2 * c3 + sign.w * (s1 * s2 * s3));
}

// Euler

namespace {

/// Beyond this absolute value the sine of the middle angle counts as gimbal lock: 0.999999 in single precision.
constexpr double kGimbalLock = 0.999999f;

/// How one order's angles are read off the elements of a matrix.
struct AngleExtraction {
    /// The element that is the sine of the middle angle times `sign`.
    int key;
    double sign;
    /// The axes, 0 to 2 for x to z.
    int middleAxis;
    /// An outer angle is the arc tangent of element `sine` over element `cosine`: in general of both outer axes, with
    /// the sine times -sign; in gimbal lock of one alone, with the sine times sign, and the other angle is 0.
    struct OuterAngle {
        int axis, sine, cosine;
    } general[2], locked;
};

constexpr AngleExtraction kAngleExtractions[] = {
    {8, +1.0, 1, {{0, 9, 10}, {2, 4, 0}}, {0, 6, 5}}, // XYZ
    {1, +1.0, 2, {{0, 9, 5}, {1, 2, 0}}, {1, 8, 10}}, // YZX
    {6, +1.0, 0, {{1, 2, 10}, {2, 4, 5}}, {2, 1, 0}}, // ZXY
    {4, -1.0, 2, {{0, 6, 5}, {1, 8, 0}}, {0, 9, 10}}, // XZY
    {9, -1.0, 0, {{1, 8, 10}, {2, 1, 5}}, {1, 2, 0}}, // YXZ
    {2, -1.0, 1, {{0, 6, 10}, {2, 1, 0}}, {2, 4, 5}}, // ZYX
};

} // namespace

void Euler::setWithMat4(const Mat4& matrix, RotationOrder newOrder) {
    if (newOrder != Unspecified)
        order = newOrder;
    if (!namesAnOrder(order))
        return;
    const double* const m = matrix.m;
    const AngleExtraction& extraction = kAngleExtractions[order - XYZ];
    const double key = m[extraction.key];

    double angles[3] = {};
    const auto setOuter = [&](const AngleExtraction::OuterAngle& outer, double sign) {
        angles[outer.axis] = std::atan2(sign * m[outer.sine], m[outer.cosine]);
    };
    angles[extraction.middleAxis] = std::asin(extraction.sign * clamp(key, -1.0, 1.0));
    if (kGimbalLock > std::fabs(key))
        for (const auto& outer : extraction.general)
            setOuter(outer, -extraction.sign);
    else
        setOuter(extraction.locked, extraction.sign);
    set(angles[0], angles[1], angles[2], order);
}

void Euler::setWithQuaternion(const Quaternion& q, RotationOrder newOrder) {
    Mat4 rotation(true);
    rotation.setWithQuaternion(q);
    setWithMat4(rotation, newOrder);
}

// Vec3

void Vec3::setFromMatrixPosition(const Mat4& m) { setFromMatrixColumn(m, 3); }

void Vec3::setFromMatrixColumn(const Mat4& m, int i) { fromArray(m.m, 4 * i); }

void Vec3::applyMatrix4(const Mat4& m) {
    const double* const e = m.m;
    set(e[0] * x + e[4] * y + e[8] * z + e[12], e[1] * x + e[5] * y + e[9] * z + e[13],
        e[2] * x + e[6] * y + e[10] * z + e[14]);
}

void Vec3::applyProjection(const Mat4& m) {
    const double d = 1.0 / (m.m[3] * x + m.m[7] * y + m.m[11] * z + m.m[15]);
    applyMatrix4(m);
    mult(d);
}

void Vec3::applyQuaternion(const Quaternion& q) {
    const double ix = q.w * x + q.y * z - q.z * y;
    const double iy = q.w * y + q.z * x - q.x * z;
    const double iz = q.w * z + q.x * y - q.y * x;
    const double iw = -q.x * x - q.y * y - q.z * z;
    set(ix * q.w - iw * q.x - iy * q.z + iz * q.y, //
        iy * q.w - iw * q.y - iz * q.x + ix * q.z, //
        iz * q.w - iw * q.z - ix * q.y + iy * q.x);
}

void Vec3::transformDirection(const Mat4& m) {
    const double* const e = m.m;
    set(e[0] * x + e[4] * y + e[8] * z, e[1] * x + e[5] * y + e[9] * z, e[2] * x + e[6] * y + e[10] * z);
    setLength(1.0);
}

} // namespace Ombrique::GaussianBlur
