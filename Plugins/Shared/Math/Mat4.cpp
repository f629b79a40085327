#include "Plugins/Shared/Math/Mat4.h"

#include <functional>

namespace Ombrique::GaussianBlur {

namespace {

/// setLookAt's nudge of a view direction that is parallel to up: 0.0001 in single precision.
constexpr double kLookAtNudge = 0.0001F;

/// Two doubles that the processor works on side by side, for the inverse, whose pairs compilers don't find by
/// themselves. Each lane gives what a double would, to the last bit.
using Pair = double __attribute__((vector_size(16)));

Pair loadPair(const double* p) { return Pair{p[0], p[1]}; }

void storePair(double* p, Pair pair) {
    p[0] = pair[0];
    p[1] = pair[1];
}

Pair firsts(Pair a, Pair b) { return __builtin_shufflevector(a, b, 0, 2); }

Pair seconds(Pair a, Pair b) { return __builtin_shufflevector(a, b, 1, 3); }

/// The 2x2 determinants, named by their columns, of rows 0 and 1 in the first lane and of rows 2 and 3 in the second.
struct Minors {
    Pair m01, m02, m03, m12, m13, m23;

    explicit Minors(const double* m) {
        Pair upper[4], lower[4];
        for (int column = 0; column < 4; ++column) {
            const Pair rows01 = loadPair(m + 4 * column), rows23 = loadPair(m + 4 * column + 2);
            upper[column] = firsts(rows01, rows23);
            lower[column] = seconds(rows01, rows23);
        }
        const auto minor = [&](int left, int right) { return upper[left] * lower[right] - upper[right] * lower[left]; };
        m01 = minor(0, 1);
        m02 = minor(0, 2);
        m03 = minor(0, 3);
        m12 = minor(1, 2);
        m13 = minor(1, 3);
        m23 = minor(2, 3);
    }
};

/// The cofactors of two neighbouring rows, named by their columns: in the first lane those of the lower row, with their
/// signs turned, in the second those of the upper row.
struct RowPairCofactors {
    Pair c0, c1, c2, c3;

    /// `m` points at the upper row's first element, and `lane` is that of the other two rows in the minors.
    RowPairCofactors(const double* m, const Minors& minors, int lane) {
        const Pair r0 = loadPair(m), r1 = loadPair(m + 4), r2 = loadPair(m + 8), r3 = loadPair(m + 12);
        c0 = r1 * minors.m23[lane] - r2 * minors.m13[lane] + r3 * minors.m12[lane];
        c1 = r2 * minors.m03[lane] - r0 * minors.m23[lane] - r3 * minors.m02[lane];
        c2 = r0 * minors.m13[lane] - r1 * minors.m03[lane] + r3 * minors.m01[lane];
        c3 = r1 * minors.m02[lane] - r0 * minors.m12[lane] - r2 * minors.m01[lane];
    }

    /// Writes the cofactors times a factor as the inverse's columns, at `m` and the four doubles behind.
    void storeScaled(double* m, double factor) const {
        storePair(m, seconds(c0, c1) * factor);
        storePair(m + 2, seconds(c2, c3) * factor);
        storePair(m + 4, firsts(c0, c1) * -factor);
        storePair(m + 6, firsts(c2, c3) * -factor);
    }
};

} // namespace

Mat4::Mat4(double* values, bool columnMajor) {
    std::copy_n(values, 16, m);
    if (!columnMajor)
        setTranspose();
}

bool Mat4::operator==(Mat4 const& other) const {
    return std::equal(m, m + 16, other.m, [](double a, double b) { return isNear(a, b); });
}

void Mat4::setRow(int i, Vec4 const& v) {
    m[i] = v.x;
    m[i + 4] = v.y;
    m[i + 8] = v.z;
    m[i + 12] = v.w;
}

void Mat4::setColumn(int i, Vec4 const& v) {
    m[4 * i] = v.x;
    m[4 * i + 1] = v.y;
    m[4 * i + 2] = v.z;
    m[4 * i + 3] = v.w;
}

void Mat4::transpose(Mat4& out) {
    const Mat4 source = *this;
    for (int i = 0; i < 4; ++i)
        out.setRow(i, source.getColumn(i));
}

double Mat4::getMaxScaleOnAxis() const {
    const double columnX = getColumn(0).getVec3().lengthSquare();
    const double columnY = getColumn(1).getVec3().lengthSquare();
    const double columnZ = getColumn(2).getVec3().lengthSquare();
    return std::sqrt(std::max({columnX, columnY, columnZ}));
}

void Mat4::add(Mat4 const& a, Mat4 const& b, Mat4& out) { std::transform(a.m, a.m + 16, b.m, out.m, std::plus<>()); }

void Mat4::subtract(Mat4 const& a, Mat4 const& b, Mat4& out) {
    std::transform(a.m, a.m + 16, b.m, out.m, std::minus<>());
}

Mat4 Mat4::operator+(Mat4 const& other) {
    Mat4 sum = *this;
    sum.add(other);
    return sum;
}

Mat4 Mat4::operator-(Mat4 const& other) {
    Mat4 difference = *this;
    difference.subtract(other);
    return difference;
}

Mat4 Mat4::operator*(double v) {
    Mat4 product = *this;
    for (double& element : product.m)
        element *= v;
    return product;
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

void Mat4::setRotation(double a, Vec3 const& axis) {
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

void Mat4::setWithAffine(Affine const& a) {
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

void Mat4::rotate(double a, Vec3 const& axis) {
    Mat4 rotation(false);
    rotation.setRotation(a, axis);
    mult(rotation);
}

void Mat4::rotateX(double a) {
    Mat4 rotation(false);
    rotation.setXRotation(a);
    mult(rotation);
}

void Mat4::rotateY(double a) {
    Mat4 rotation(false);
    rotation.setYRotation(a);
    mult(rotation);
}

void Mat4::rotateZ(double a) {
    Mat4 rotation(false);
    rotation.setZRotation(a);
    mult(rotation);
}

bool Mat4::getInverse(Mat4& out) const {
    const Minors minors(m);
    const RowPairCofactors top(m, minors, 1);
    const RowPairCofactors bottom(m + 2, minors, 0);
    const double det = m[0] * top.c0[1] - m[1] * top.c0[0] + m[2] * bottom.c0[1] - m[3] * bottom.c0[0];
    if (det == 0.0) {
        out.setIdentity();
        return false;
    }
    const double inv = 1.0 / det;
    top.storeScaled(out.m, inv);
    bottom.storeScaled(out.m + 8, inv);
    return true;
}

Mat4 Mat4::getAEToGLConversionMatrix(double width, double height) {
    return Mat4(1.0, 0.0, 0.0, width * -0.5,  //
                0.0, -1.0, 0.0, height * 0.5, //
                0.0, 0.0, -1.0, 0.0,          //
                0.0, 0.0, 0.0, 1.0, false);
}

} // namespace Ombrique::GaussianBlur
