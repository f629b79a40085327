#pragma once

#include "Plugins/Shared/Math/Affine.h"
#include "Plugins/Shared/Math/Vec4.h"

namespace Ombrique::GaussianBlur {

struct Quaternion;

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
    explicit Mat4(bool identity)
        : Mat4(identity, 0.0, 0.0, 0.0, 0.0, identity, 0.0, 0.0, 0.0, 0.0, identity, 0.0, 0.0, 0.0, 0.0, identity,
               true) {}
    /// In storage order with columnMajor, else row by row.
    Mat4(double a0, double a1, double a2, double a3, double a4, double a5, double a6, double a7, double a8, double a9,
         double a10, double a11, double a12, double a13, double a14, double a15, bool columnMajor)
        : m{a0,  columnMajor ? a1 : a4,   columnMajor ? a2 : a8,  columnMajor ? a3 : a12, columnMajor ? a4 : a1,
            a5,  columnMajor ? a6 : a9,   columnMajor ? a7 : a13, columnMajor ? a8 : a2,  columnMajor ? a9 : a6,
            a10, columnMajor ? a11 : a14, columnMajor ? a12 : a3, columnMajor ? a13 : a7, columnMajor ? a14 : a11,
            a15} {}
    /// 16 doubles in storage order with columnMajor, else row by row.
    Mat4(double* values, bool columnMajor);
    /// a, b, c, d are the rows from the top with rows, else the columns.
    Mat4(Vec4 const& a, Vec4 const& b, Vec4 const& c, Vec4 const& d, bool rows)
        : Mat4(a.x, a.y, a.z, a.w, b.x, b.y, b.z, b.w, c.x, c.y, c.z, c.w, d.x, d.y, d.z, d.w, !rows) {}

    /// Row by row.
    void set(double a0, double a1, double a2, double a3, double a4, double a5, double a6, double a7, double a8,
             double a9, double a10, double a11, double a12, double a13, double a14, double a15) {
        *this = Mat4(a0, a1, a2, a3, a4, a5, a6, a7, a8, a9, a10, a11, a12, a13, a14, a15, false);
    }
    void setZero() { *this = Mat4(false); }
    void setIdentity() { *this = Mat4(true); }
    static Mat4 identity() { return Mat4(true); }

    /// Each element within 1e-12, the bound included; false for a NaN.
    bool operator==(Mat4 const& other) const;
    void setRow(int i, Vec4 const& v);
    void setColumn(int i, Vec4 const& v);
    Vec4 getRow(int i) const { return Vec4(m[i], m[i + 4], m[i + 8], m[i + 12]); }
    Vec4 getColumn(int i) const { return Vec4(m[4 * i], m[4 * i + 1], m[4 * i + 2], m[4 * i + 3]); }
    void setTranspose() { transpose(*this); }
    /// Writes the transpose to out, which may be this matrix.
    void transpose(Mat4& out);
    /// The length of the longest of columns 0 to 2, rows 0 to 2.
    double getMaxScaleOnAxis() const;

    // All 16 elements take part, the bottom row too. An out may be an operand.
    void add(Mat4 const& other) { add(*this, other, *this); }
    void subtract(Mat4 const& other) { subtract(*this, other, *this); }
    static void add(Mat4 const& a, Mat4 const& b, Mat4& out);
    static void subtract(Mat4 const& a, Mat4 const& b, Mat4& out);
    Mat4 operator+(Mat4 const& other);
    Mat4 operator-(Mat4 const& other);
    Mat4 operator*(double v);
    /// out = a * b, this = this * other, and this * other. The out may be a or b.
    static void mult(Mat4 const& a, Mat4 const& b, Mat4& out) { out = product(a, b); }
    void mult(Mat4 const& other) { mult(*this, other, *this); }
    Mat4 operator*(Mat4 const& other) { return product(*this, other); }
    /// this * v.
    Vec4 mult(Vec4 const& v);
    Vec4 operator*(Vec4 const& v) { return mult(v); }
    /// The point v mapped: x, y, z of this * (v, 1), with the resulting w dropped and not divided by.
    Vec3 mult(Vec3 const& v) { return mult(Vec4(v, 1.0)).getVec3(); }
    Vec3 operator*(Vec3 const& v) { return mult(v); }
    /// The direction v mapped: x, y, z of this * (v, 0).
    Vec3 multWithoutTranslate(Vec3 const& v) { return mult(Vec4(v, 0.0)).getVec3(); }
    /// The point v mapped and divided by the resulting w, which nothing guards against 0.
    Vec3 multAndProject(Vec3 const& v);

    // Makers: each replaces the whole matrix, but for setLookAt.
    void setTranslate(Vec3 const& v) { setTranslate(v.x, v.y, v.z); }
    void setTranslate(double x, double y, double z);
    void setScale(Vec3 const& v) { setScale(v.x, v.y, v.z); }
    void setScale(double x, double y, double z);
    void setXRotation(double a);
    void setYRotation(double a);
    void setZRotation(double a);
    /// By a about the axis, of any length; a zero axis counts as x.
    void setRotation(double a, Vec3 const& axis);
    void setRotation(double a, double x, double y, double z) { setRotation(a, Vec3(x, y, z)); }
    /// The transform of the plane as one of space that leaves z alone.
    void setWithAffine(Affine const& a);
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
    void setWithQuaternion(Quaternion const& q);

    // this = this * (the transform of the maker): each acts on a point before all that stood in the matrix. Of a Vec4
    // only x, y and z count.
    void translate(double x, double y, double z);
    void translate(Vec3 const& v) { translate(v.x, v.y, v.z); }
    void translate(Vec4 const& v) { translate(v.x, v.y, v.z); }
    void scale(double x, double y, double z);
    void scale(Vec3 const& v) { scale(v.x, v.y, v.z); }
    void scale(Vec4 const& v) { scale(v.x, v.y, v.z); }
    void rotate(double a, double x, double y, double z) { rotate(a, Vec3(x, y, z)); }
    void rotate(double a, Vec3 const& axis);
    void rotate(double a, Vec4 const& axis) { rotate(a, axis.getVec3()); }
    void rotateX(double a);
    void rotateY(double a);
    void rotateZ(double a);
    /// Replaces the translation; no product.
    void position(Vec3 const& p);

    double determinant();
    /// The inverse in out, which may be this matrix. False, with the identity in out, for a determinant of exactly 0; a
    /// nearly singular matrix is inverted like any other, with very large elements. The determinant used here may
    /// differ from `determinant` in its last bits.
    bool getInverse(Mat4& out) const;
    /// m[0], m[4], m[12] and m[1], m[5], m[13] as rows, whatever the other elements hold.
    Affine getAffine() const { return Affine(m[0], m[1], m[4], m[5], m[12], m[13]); }
    /// From the host's pixels in an area of the given size (origin top left, y down, z into the screen) to a centred
    /// space with y up and z out of the screen: (x - width / 2, height / 2 - y, -z).
    static Mat4 getAEToGLConversionMatrix(double width, double height);

    /// Without anchor T(position) R S(scale), with it T(position) R S(scale) T(-anchor): a point p lands at
    /// position + R(scale * (p - anchor)), so that the anchor lands at the position.
    void compose(Vec3 const& position, Quaternion const& rotation, Vec3 const& scale);
    void compose(Vec3 const& anchor, Vec3 const& position, Quaternion const& rotation, Vec3 const& scale);
    /// The inverse of the compose of the same form, for a matrix without shear. A mirror lands on the x scale, and a
    /// scale of exactly 0 comes out as 1e-06.
    void decompose(Vec3& position, Quaternion& rotation, Vec3& scale);
    void decompose(Vec3 const& anchor, Vec3& position, Quaternion& rotation, Vec3& scale);

private:
    /// Undefined elements, for who writes all of them.
    Mat4() {}

    static Mat4 product(Mat4 const& a, Mat4 const& b);
};

inline Mat4 Mat4::product(Mat4 const& a, Mat4 const& b) {
    Mat4 result;
    for (int column = 0; column < 16; column += 4)
        for (int row = 0; row < 4; ++row)
            result.m[column + row] = a.m[row] * b.m[column] + a.m[row + 4] * b.m[column + 1] +
                                     a.m[row + 8] * b.m[column + 2] + a.m[row + 12] * b.m[column + 3];
    return result;
}

inline Vec4 Mat4::mult(Vec4 const& v) {
    return Vec4(m[0] * v.x + m[4] * v.y + m[8] * v.z + m[12] * v.w, m[1] * v.x + m[5] * v.y + m[9] * v.z + m[13] * v.w,
                m[2] * v.x + m[6] * v.y + m[10] * v.z + m[14] * v.w,
                m[3] * v.x + m[7] * v.y + m[11] * v.z + m[15] * v.w);
}

inline Vec3 Mat4::multAndProject(Vec3 const& v) {
    const Vec4 mapped = mult(Vec4(v, 1.0));
    return mapped.getVec3() * (1.0 / mapped.w);
}

inline void Mat4::translate(double x, double y, double z) {
    for (int row = 0; row < 4; ++row)
        m[row + 12] += m[row] * x + m[row + 4] * y + m[row + 8] * z;
}

inline void Mat4::scale(double x, double y, double z) {
    for (int row = 0; row < 4; ++row) {
        m[row] *= x;
        m[row + 4] *= y;
        m[row + 8] *= z;
    }
}

inline void Mat4::position(Vec3 const& p) {
    m[12] = p.x;
    m[13] = p.y;
    m[14] = p.z;
}

inline double Mat4::determinant() {
    const auto minor = [this](int left, int right) {
        return m[4 * left] * m[4 * right + 1] - m[4 * right] * m[4 * left + 1];
    };
    const double m01 = minor(0, 1), m02 = minor(0, 2), m03 = minor(0, 3);
    const double m12 = minor(1, 2), m13 = minor(1, 3), m23 = minor(2, 3);
    return m[3] * (m[10] * m13 - m[6] * m23 - m[14] * m12) + m[7] * (m[2] * m23 - m[10] * m03 + m[14] * m02) +
           m[11] * (m[6] * m03 - m[2] * m13 - m[14] * m01) + m[15] * (m[2] * m12 - m[6] * m02 + m[10] * m01);
}

} // namespace Ombrique::GaussianBlur
