#include "Plugins/Shared/Math/Mat4.h"

namespace Ombrique::GaussianBlur {

namespace {

/// setLookAt's nudge of a view direction that is parallel to up: 0.0001 in single precision.
constexpr double kLookAtNudge = 0.0001f;

Pair firsts(Pair a, Pair b) { return __builtin_shufflevector(a, b, 0, 2); }

Pair seconds(Pair a, Pair b) { return __builtin_shufflevector(a, b, 1, 3); }

Pair swapped(Pair a) { return __builtin_shufflevector(a, a, 1, 0); }

/// The elements of two rows side by side, by column: the first row's in the first lanes.
struct RowPair {
    Pair c0, c1, c2, c3;
};

/// The 2x2 determinants, named by their columns, of rows 2 and 3 in the first lane and of rows 0 and 1 in the second.
struct Minors {
    Pair m01, m02, m03, m12, m13, m23;

    /// `even` holds rows 0 and 2, `odd` rows 1 and 3.
    Minors(const RowPair& even, const RowPair& odd)
        : m01(minor(even.c0, even.c1, odd.c0, odd.c1)), m02(minor(even.c0, even.c2, odd.c0, odd.c2)),
          m03(minor(even.c0, even.c3, odd.c0, odd.c3)), m12(minor(even.c1, even.c2, odd.c1, odd.c2)),
          m13(minor(even.c1, even.c3, odd.c1, odd.c3)), m23(minor(even.c2, even.c3, odd.c2, odd.c3)) {}

private:
    static Pair minor(Pair upperLeft, Pair upperRight, Pair lowerLeft, Pair lowerRight) {
        return swapped(upperLeft * lowerRight - upperRight * lowerLeft);
    }
};

/// Of rows 1 and 3 the cofactors of rows 0 and 2; of rows 0 and 2 those of rows 1 and 3, with their signs turned.
RowPair cofactors(const RowPair& r, const Minors& m) {
    return {r.c1 * m.m23 - r.c2 * m.m13 + r.c3 * m.m12, r.c2 * m.m03 - r.c0 * m.m23 - r.c3 * m.m02,
            r.c0 * m.m13 - r.c1 * m.m03 + r.c3 * m.m01, r.c1 * m.m02 - r.c0 * m.m12 - r.c2 * m.m01};
}

/// Writes the cofactors of two rows, times a factor, as columns of the inverse: one at m, the other two columns behind.
void storeScaled(const RowPair& r, double factor, double* m) {
    storePair(m, firsts(r.c0, r.c1) * factor);
    storePair(m + 2, firsts(r.c2, r.c3) * factor);
    storePair(m + 8, seconds(r.c0, r.c1) * factor);
    storePair(m + 10, seconds(r.c2, r.c3) * factor);
}

} // namespace

double Mat4::getMaxScaleOnAxis() const {
    const double columnX = getColumn(0).getVec3().lengthSquare();
    const double columnY = getColumn(1).getVec3().lengthSquare();
    const double columnZ = getColumn(2).getVec3().lengthSquare();
    return std::sqrt(std::max({columnX, columnY, columnZ}));
}

void Mat4::setTranslate(double x, double y, double z) {
    setIdentity();
    position(Vec3(x, y, z));
}

void Mat4::setScale(double x, double y, double z) {
    setZero();
    m[0] = x;
    m[5] = y;
    m[10] = z;
    m[15] = 1.0;
}

void Mat4::setXRotation(double a) {
    setIdentity();
    m[5] = m[10] = std::cos(a);
    m[6] = std::sin(a);
    m[9] = -m[6];
}

void Mat4::setYRotation(double a) {
    setIdentity();
    m[0] = m[10] = std::cos(a);
    m[8] = std::sin(a);
    m[2] = -m[8];
}

void Mat4::setZRotation(double a) {
    setIdentity();
    m[0] = m[5] = std::cos(a);
    m[1] = std::sin(a);
    m[4] = -m[1];
}

void Mat4::setRotation(double a, const Vec3& axis) {
    Vec3 unit = axis;
    unit.normalize();
    const double x = unit.x, y = unit.y, z = unit.z;
    const double s = std::sin(a);
    const double c = std::cos(a);
    const double t = 1.0 - c;
    set(c + t * x * x, t * x * y - s * z, t * x * z + s * y, 0.0, //
        t * x * y + s * z, c + t * y * y, t * y * z - s * x, 0.0, //
        t * x * z - s * y, t * y * z + s * x, c + t * z * z, 0.0, //
        0.0, 0.0, 0.0, 1.0);
}

void Mat4::setWithAffine(const Affine& a) {
    set(a.m[0], a.m[1], 0.0, a.m[2], //
        a.m[3], a.m[4], 0.0, a.m[5], //
        0.0, 0.0, 1.0, 0.0,          //
        0.0, 0.0, 0.0, 1.0);
}

void Mat4::setPerspective(double fovy, double aspect, double near, double far) {
    const double f = 1.0 / std::tan(fovy * 0.5);
    setZero();
    m[0] = f / aspect;
    m[5] = f;
    m[10] = (near + far) / (near - far);
    m[11] = -1.0;
    m[14] = (2.0 * far * near) / (near - far);
}

void Mat4::setFrustum(double left, double right, double bottom, double top, double near, double far) {
    setZero();
    m[0] = 2.0 * near / (right - left);
    m[5] = 2.0 * near / (top - bottom);
    m[8] = (left + right) / (right - left);
    m[9] = (bottom + top) / (top - bottom);
    m[10] = -(near + far) / (far - near);
    m[11] = -1.0;
    m[14] = -2.0 * far * near / (far - near);
}

void Mat4::setOrtho(double left, double right, double top, double bottom, double near, double far) {
    setScale(2.0 / (right - left), 2.0 / (top - bottom), -2.0 / (far - near));
    position(Vec3(-(left + right) / (right - left), -(bottom + top) / (top - bottom), -(near + far) / (far - near)));
}

void Mat4::setLookAt(Vec3 eye, Vec3 target, Vec3 up) {
    // Normalising gives a zero vector only where the squared length overflowed.
    Vec3 z = eye - target;
    z.normalize();
    if (z.lengthSquare() == 0.0)
        z.z = 1.0;
    Vec3 x = up.cross(z);
    x.normalize();
    if (x.lengthSquare() == 0.0) {
        z.z += kLookAtNudge;
        x = up.cross(z);
        x.normalize();
    }
    Vec3 y = z.cross(x);
    x.toArray(m, 0);
    y.toArray(m, 4);
    z.toArray(m, 8);
}

bool Mat4::getInverse(Mat4& out) const {
    const Pair upper0 = loadPair(m), upper1 = loadPair(m + 4), upper2 = loadPair(m + 8), upper3 = loadPair(m + 12);
    const Pair lower0 = loadPair(m + 2), lower1 = loadPair(m + 6), lower2 = loadPair(m + 10), lower3 = loadPair(m + 14);
    const RowPair even{firsts(upper0, lower0), firsts(upper1, lower1), firsts(upper2, lower2), firsts(upper3, lower3)};
    const RowPair odd{seconds(upper0, lower0), seconds(upper1, lower1), seconds(upper2, lower2),
                      seconds(upper3, lower3)};
    const Minors minors(even, odd);
    const RowPair ofEven = cofactors(odd, minors), ofOddTurned = cofactors(even, minors);
    const Pair plus = even.c0 * ofEven.c0, minus = odd.c0 * ofOddTurned.c0;
    const double det = plus[0] - minus[0] + plus[1] - minus[1];
    if (det == 0.0) {
        out.setIdentity();
        return false;
    }
    const double inv = 1.0 / det;
    storeScaled(ofEven, inv, out.m);
    storeScaled(ofOddTurned, -inv, out.m + 4);
    return true;
}

Mat4 Mat4::getAEToGLConversionMatrix(double width, double height) {
    return Mat4(1.0, 0.0, 0.0, width * -0.5,  //
                0.0, -1.0, 0.0, height * 0.5, //
                0.0, 0.0, -1.0, 0.0,          //
                0.0, 0.0, 0.0, 1.0, false);
}

} // namespace Ombrique::GaussianBlur
