#pragma once

#include "Plugins/Shared/Math/Affine.h"
#include "Plugins/Shared/Math/Pair.h"
#include "Plugins/Shared/Math/Quaternion.h"
#include "Plugins/Shared/Math/Vec4.h"

#include <array>
#include <bit>
#include <functional>
#include <type_traits>

namespace Ombrique::GaussianBlur {

/// A homogeneous transform of space.
///
/// Stored column by column: element (row r, column c) is m[c * 4 + r], and the translation stands in m[12], m[13],
/// m[14]. Vectors are column vectors, products multiply on the right, angles are radians, and rotations are
/// counter-clockwise seen from the tip of the axis. Indices of rows and columns are 0 to 3; nothing guards them, nor
/// anything else but a determinant of 0 in `getInverse`.
///
/// Three traps. Most members are not const, also those that change nothing. The flag of the constructor from vectors
/// has the opposite sense of the flag of those from numbers. And `setOrtho` takes top before bottom, `setFrustum`
/// after.
struct Mat4 {
    double m[16];

    /// The identity, or all zeros.
    explicit constexpr Mat4(bool identity) noexcept
        : Mat4(identity, 0.0, 0.0, 0.0, 0.0, identity, 0.0, 0.0, 0.0, 0.0, identity, 0.0, 0.0, 0.0, 0.0, identity,
               true) {}
    /// In storage order with columnMajor, else row by row.
    constexpr Mat4(double a0, double a1, double a2, double a3, double a4, double a5, double a6, double a7, double a8,
                   double a9, double a10, double a11, double a12, double a13, double a14, double a15,
                   bool columnMajor) noexcept
        : m{a0,  columnMajor ? a1 : a4,   columnMajor ? a2 : a8,  columnMajor ? a3 : a12, columnMajor ? a4 : a1,
            a5,  columnMajor ? a6 : a9,   columnMajor ? a7 : a13, columnMajor ? a8 : a2,  columnMajor ? a9 : a6,
            a10, columnMajor ? a11 : a14, columnMajor ? a12 : a3, columnMajor ? a13 : a7, columnMajor ? a14 : a11,
            a15} {}
    /// 16 doubles in storage order with columnMajor, else row by row.
    constexpr Mat4(double* values, bool columnMajor) noexcept
        : Mat4(values[0], values[1], values[2], values[3], values[4], values[5], values[6], values[7], values[8],
               values[9], values[10], values[11], values[12], values[13], values[14], values[15], columnMajor) {}
    /// a, b, c, d are the rows from the top with rows, else the columns.
    constexpr Mat4(const Vec4& a, const Vec4& b, const Vec4& c, const Vec4& d, bool rows) noexcept
        : Mat4(a.x, a.y, a.z, a.w, b.x, b.y, b.z, b.w, c.x, c.y, c.z, c.w, d.x, d.y, d.z, d.w, !rows) {}

    /// Row by row.
    constexpr void set(double a0, double a1, double a2, double a3, double a4, double a5, double a6, double a7,
                       double a8, double a9, double a10, double a11, double a12, double a13, double a14,
                       double a15) noexcept {
        *this = Mat4(a0, a1, a2, a3, a4, a5, a6, a7, a8, a9, a10, a11, a12, a13, a14, a15, false);
    }
    constexpr void setZero() noexcept { *this = Mat4(false); }
    constexpr void setIdentity() noexcept { *this = Mat4(true); }
    static constexpr Mat4 identity() noexcept { return Mat4(true); }

    /// Each element within 1e-12, the bound included; false for a NaN.
    constexpr bool operator==(const Mat4& other) const noexcept {
        return std::equal(m, m + 16, other.m, [](double a, double b) { return isNear(a, b); });
    }
    constexpr void setRow(int i, const Vec4& v) noexcept {
        m[i] = v.x;
        m[i + 4] = v.y;
        m[i + 8] = v.z;
        m[i + 12] = v.w;
    }
    constexpr void setColumn(int i, const Vec4& v) noexcept {
        m[4 * i] = v.x;
        m[4 * i + 1] = v.y;
        m[4 * i + 2] = v.z;
        m[4 * i + 3] = v.w;
    }
    constexpr Vec4 getRow(int i) const noexcept { return Vec4(m[i], m[i + 4], m[i + 8], m[i + 12]); }
    constexpr Vec4 getColumn(int i) const noexcept { return Vec4(m[4 * i], m[4 * i + 1], m[4 * i + 2], m[4 * i + 3]); }
    constexpr void setTranspose() noexcept { transpose(*this); }
    /// Writes the transpose to out, which may be this matrix.
    constexpr void transpose(Mat4& out) noexcept { out = Mat4(m, false); }
    /// The length of the longest of columns 0 to 2, rows 0 to 2.
    double getMaxScaleOnAxis() const;

    // All 16 elements take part, the bottom row too. An out may be an operand.
    constexpr void add(const Mat4& other) noexcept { add(*this, other, *this); }
    constexpr void subtract(const Mat4& other) noexcept { subtract(*this, other, *this); }
    static constexpr void add(const Mat4& a, const Mat4& b, Mat4& out) noexcept {
        std::transform(a.m, a.m + 16, b.m, out.m, std::plus<>());
    }
    static constexpr void subtract(const Mat4& a, const Mat4& b, Mat4& out) noexcept {
        std::transform(a.m, a.m + 16, b.m, out.m, std::minus<>());
    }
    constexpr Mat4 operator+(const Mat4& other) noexcept {
        Mat4 sum;
        add(*this, other, sum);
        return sum;
    }
    constexpr Mat4 operator-(const Mat4& other) noexcept {
        Mat4 difference;
        subtract(*this, other, difference);
        return difference;
    }
    constexpr Mat4 operator*(double v) noexcept {
        Mat4 product = *this;
        for (double& element : product.m)
            element *= v;
        return product;
    }
    /// out = a * b, this = this * other, and this * other. The out may be a or b.
    static constexpr void mult(const Mat4& a, const Mat4& b, Mat4& out) noexcept;
    constexpr void mult(const Mat4& other) noexcept { mult(*this, other, *this); }
    constexpr Mat4 operator*(const Mat4& other) noexcept {
        Mat4 product;
        mult(*this, other, product);
        return product;
    }
    /// this * v.
    constexpr Vec4 mult(const Vec4& v) noexcept;
    constexpr Vec4 operator*(const Vec4& v) noexcept { return mult(v); }
    /// The point v mapped: x, y, z of this * (v, 1), with the resulting w dropped and not divided by.
    constexpr Vec3 mult(const Vec3& v) noexcept { return mult(Vec4(v, 1.0)).getVec3(); }
    constexpr Vec3 operator*(const Vec3& v) noexcept { return mult(v); }
    /// The direction v mapped: x, y, z of this * (v, 0).
    constexpr Vec3 multWithoutTranslate(const Vec3& v) noexcept { return mult(Vec4(v, 0.0)).getVec3(); }
    /// The point v mapped and divided by the resulting w, which nothing guards against 0.
    constexpr Vec3 multAndProject(const Vec3& v) noexcept {
        const Vec4 mapped = mult(Vec4(v, 1.0));
        return mapped.getVec3() * (1.0 / mapped.w);
    }

    // Makers: each replaces the whole matrix, but for setLookAt.
    void setTranslate(const Vec3& v) { setTranslate(v.x, v.y, v.z); }
    void setTranslate(double x, double y, double z);
    void setScale(const Vec3& v) { setScale(v.x, v.y, v.z); }
    void setScale(double x, double y, double z);
    void setXRotation(double a);
    void setYRotation(double a);
    void setZRotation(double a);
    /// By a about the axis, of any length; a zero axis counts as x.
    void setRotation(double a, const Vec3& axis);
    void setRotation(double a, double x, double y, double z) { setRotation(a, Vec3(x, y, z)); }
    /// The transform of the plane as one of space that leaves z alone.
    void setWithAffine(const Affine& a);
    /// OpenGL's projections: from eye space, looking along -z, to clip space. fovy is the whole vertical angle; near
    /// and far are distances in front of the eye.
    void setPerspective(double fovy, double aspect, double near, double far);
    void setFrustum(double left, double right, double bottom, double top, double near, double far);
    void setOrtho(double left, double right, double top, double bottom, double near, double far);
    /// Writes the axes of a viewer at eye (z points from target to eye, y as near to up as can be) as columns 0 to 2 of
    /// the upper left 3x3 block, and leaves the other seven elements: the orientation of the viewer, not the view
    /// transform. Where eye = target z is (1, 0, 0), and where up is parallel to z x is (1, 0, 0).
    void setLookAt(Vec3 eye, Vec3 target, Vec3 up);
    void setLookAt(double eyeX, double eyeY, double eyeZ, double targetX, double targetY, double targetZ, double upX,
                   double upY, double upZ) {
        setLookAt(Vec3(eyeX, eyeY, eyeZ), Vec3(targetX, targetY, targetZ), Vec3(upX, upY, upZ));
    }
    /// The rotation of a quaternion, which isn't normalised first.
    constexpr void setWithQuaternion(const Quaternion& q) noexcept;

    // this = this * (the transform of the maker): each acts on a point before all that stood in the matrix. Of a Vec4
    // only x, y and z count.
    constexpr void translate(double x, double y, double z) noexcept {
        for (int row = 0; row < 4; ++row)
            m[row + 12] += m[row] * x + m[row + 4] * y + m[row + 8] * z;
    }
    constexpr void translate(const Vec3& v) noexcept { translate(v.x, v.y, v.z); }
    constexpr void translate(const Vec4& v) noexcept { translate(v.x, v.y, v.z); }
    constexpr void scale(double x, double y, double z) noexcept {
        for (int row = 0; row < 4; ++row) {
            m[row] *= x;
            m[row + 4] *= y;
            m[row + 8] *= z;
        }
    }
    constexpr void scale(const Vec3& v) noexcept { scale(v.x, v.y, v.z); }
    constexpr void scale(const Vec4& v) noexcept { scale(v.x, v.y, v.z); }
    void rotate(double a, double x, double y, double z) { rotate(a, Vec3(x, y, z)); }
    void rotate(double a, const Vec3& axis) { multWith<double, const Vec3&>(&Mat4::setRotation, a, axis); }
    void rotate(double a, const Vec4& axis) { rotate(a, axis.getVec3()); }
    void rotateX(double a) { multWith(&Mat4::setXRotation, a); }
    void rotateY(double a) { multWith(&Mat4::setYRotation, a); }
    void rotateZ(double a) { multWith(&Mat4::setZRotation, a); }
    /// Replaces the translation; no product.
    constexpr void position(const Vec3& p) noexcept {
        m[12] = p.x;
        m[13] = p.y;
        m[14] = p.z;
    }

    constexpr double determinant() noexcept;
    /// The inverse in out, which may be this matrix. False, with the identity in out, for a determinant of exactly 0; a
    /// nearly singular matrix is inverted like any other, with very large elements. The determinant used here may
    /// differ from `determinant` in its last bits.
    bool getInverse(Mat4& out) const;
    /// m[0], m[4], m[12] and m[1], m[5], m[13] as rows, whatever the other elements hold.
    constexpr Affine getAffine() const noexcept { return Affine(m[0], m[1], m[4], m[5], m[12], m[13]); }
    /// From the host's pixels in an area of the given size (origin top left, y down, z into the screen) to a centred
    /// space with y up and z out of the screen: (x - width / 2, height / 2 - y, -z).
    static Mat4 getAEToGLConversionMatrix(double width, double height);

    /// Without anchor T(position) R S(scale), with it T(position) R S(scale) T(-anchor): a point p lands at
    /// position + R(scale * (p - anchor)), so that the anchor lands at the position.
    constexpr void compose(const Vec3& position, const Quaternion& rotation, const Vec3& scale) noexcept;
    void compose(const Vec3& anchor, const Vec3& position, const Quaternion& rotation, const Vec3& scale);
    /// The inverse of the compose of the same form, for a matrix without shear. A mirror lands on the x scale, and a
    /// scale of exactly 0 comes out as 1e-06.
    void decompose(Vec3& position, Quaternion& rotation, Vec3& scale);
    void decompose(const Vec3& anchor, Vec3& position, Quaternion& rotation, Vec3& scale);

private:
    /// Leaves the elements uninitialised; the caller writes all of them.
    constexpr Mat4() noexcept {}

    /// The first rows of columns times v, added from the first to the last: one row of numbers or two of Pairs.
    template <typename Rows>
    static constexpr Rows combined(Rows c0, Rows c1, Rows c2, Rows c3, double x, double y, double z,
                                   double w) noexcept {
        return c0 * x + c1 * y + c2 * z + c3 * w;
    }

    template <typename... Arguments>
    void multWith(void (Mat4::*maker)(Arguments...), std::type_identity_t<Arguments>... arguments) {
        Mat4 step;
        (step.*maker)(arguments...);
        mult(step);
    }
};

inline constexpr void Mat4::mult(const Mat4& a, const Mat4& b, Mat4& out) noexcept {
    if (std::is_constant_evaluated()) {
        Mat4 left = a;
        const Mat4 right = b;
        for (int column = 0; column < 4; ++column)
            out.setColumn(column, left.mult(right.getColumn(column)));
        return;
    }
    // All of the left matrix is read before the first element is written.
    const Pair u0 = loadPair(a.m), u1 = loadPair(a.m + 4), u2 = loadPair(a.m + 8), u3 = loadPair(a.m + 12);
    const Pair l0 = loadPair(a.m + 2), l1 = loadPair(a.m + 6), l2 = loadPair(a.m + 10), l3 = loadPair(a.m + 14);
    for (int column = 0; column < 16; column += 4) {
        const double x = b.m[column], y = b.m[column + 1], z = b.m[column + 2], w = b.m[column + 3];
        storePair(out.m + column, combined(u0, u1, u2, u3, x, y, z, w));
        storePair(out.m + column + 2, combined(l0, l1, l2, l3, x, y, z, w));
    }
}

inline constexpr Vec4 Mat4::mult(const Vec4& v) noexcept {
    const auto rows = [&]<typename Rows>(Rows c0, Rows c1, Rows c2, Rows c3) {
        return combined(c0, c1, c2, c3, v.x, v.y, v.z, v.w);
    };
    if (std::is_constant_evaluated())
        return Vec4(rows(m[0], m[4], m[8], m[12]), rows(m[1], m[5], m[9], m[13]), rows(m[2], m[6], m[10], m[14]),
                    rows(m[3], m[7], m[11], m[15]));
    return std::bit_cast<Vec4>(std::array{rows(loadPair(m), loadPair(m + 4), loadPair(m + 8), loadPair(m + 12)),
                                          rows(loadPair(m + 2), loadPair(m + 6), loadPair(m + 10), loadPair(m + 14))});
}

constexpr double Mat4::determinant() noexcept {
    const auto minor = [this](int left, int right) {
        return m[4 * left] * m[4 * right + 1] - m[4 * right] * m[4 * left + 1];
    };
    const double m01 = minor(0, 1), m02 = minor(0, 2), m03 = minor(0, 3);
    const double m12 = minor(1, 2), m13 = minor(1, 3), m23 = minor(2, 3);
    return m[3] * (m[10] * m13 - m[6] * m23 - m[14] * m12) + m[7] * (m[2] * m23 - m[10] * m03 + m[14] * m02) +
           m[11] * (m[6] * m03 - m[2] * m13 - m[14] * m01) + m[15] * (m[2] * m12 - m[6] * m02 + m[10] * m01);
}

/// The images of the axes under the rotation of a quaternion: columns 0 to 2 of its matrix.
struct RotatedAxes {
    Vec4 x, y, z;

    explicit constexpr RotatedAxes(const Quaternion& q) noexcept {
        // Doubled before the products and not after the sums, as the formula has it: the same bits, as long as nothing
        // overflows or underflows.
        const double x2 = 2.0 * q.x, y2 = 2.0 * q.y, z2 = 2.0 * q.z;
        const double xx = x2 * q.x, xy = x2 * q.y, xz = x2 * q.z, xw = x2 * q.w;
        const double yy = y2 * q.y, yz = y2 * q.z, yw = y2 * q.w, zz = z2 * q.z, zw = z2 * q.w;
        x = Vec4(1.0 - (yy + zz), xy + zw, xz - yw, 0.0);
        y = Vec4(xy - zw, 1.0 - (zz + xx), yz + xw, 0.0);
        z = Vec4(xz + yw, yz - xw, 1.0 - (yy + xx), 0.0);
    }
};

constexpr void Mat4::setWithQuaternion(const Quaternion& q) noexcept {
    const RotatedAxes axes(q);
    *this = Mat4(axes.x, axes.y, axes.z, Vec4(0.0, 0.0, 0.0, 1.0), false);
}

constexpr void Mat4::compose(const Vec3& position, const Quaternion& rotation, const Vec3& scale) noexcept {
    const RotatedAxes axes(rotation);
    *this = Mat4(axes.x * scale.x, axes.y * scale.y, axes.z * scale.z, Vec4(position, 1.0), false);
}

} // namespace Ombrique::GaussianBlur
