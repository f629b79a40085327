// Mat4 and Affine.

#include "Tests/Shared/Math/MathTesting.h"

#include <Eigen/LU>

namespace Ombrique::GaussianBlur {

namespace {

TEST(Mat4, FlagsSelectTheOrderOfTheArguments) {
    const Vec4 a(0, 1, 2, 3), b(4, 5, 6, 7), c(8, 9, 10, 11), d(12, 13, 14, 15);
    const Numbers inOrder = {a, b, c, d};
    Mat4 byColumn(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, true), array = byColumn;
    Mat4 byRow(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, false);
    expect("numbers", {byColumn, byRow}, {inOrder, {0, 4, 8, 12, 1, 5, 9, 13, 2, 6, 10, 14, 3, 7, 11, 15}});
    expect("arrays", {Mat4(array.m, true), Mat4(array.m, false)}, {byColumn, byRow});
    expect("vectors", {Mat4(a, b, c, d, false), Mat4(a, b, c, d, true)}, {byColumn, byRow});
    expect("rows and columns", {byRow.getRow(1), byRow.getColumn(1)}, {4, 5, 6, 7, 1, 5, 9, 13});
    expect("setTranspose", after(byRow, &Mat4::setTranspose), byColumn);
    byColumn.setRow(2, c), byColumn.setColumn(3, a);
    expect("setRow and setColumn", byColumn, {0, 1, 8, 3, 4, 5, 9, 7, 8, 9, 10, 11, 0, 1, 2, 3});
}

TEST(Mat4, ComputesAsEigenDoes) {
    Random random;
    for (int i = 0; i < 50; ++i) {
        Mat4 a = random.value<Mat4>(), out(false);
        const Mat4 b = random.value<Mat4>();
        const Vec4 v = random.value<Vec4>();
        const Vec3 p = v.getVec3();
        const Eigen::Matrix4d ea = eigen(a), eb = eigen(b), inverse = ea.inverse();
        const Eigen::Vector4d point = ea * eigen(Vec4(p, 1));
        expect("product", a * b, ea * eb, 1e-13);
        expect("product over its left", after(a, [&](Mat4& m) { m.mult(b); }), a * b);
        expect("product over its right", after(b, [&](Mat4& m) { Mat4::mult(a, m, m); }), a * b);
        expect("with a vector", {a * v, a * p}, {ea * eigen(v), point.head<3>()}, 1e-13);
        expect("multWithoutTranslate", a.multWithoutTranslate(p), (point - ea.col(3)).head<3>(), 1e-13);
        expect("multAndProject", a.multAndProject(p), point.hnormalized(), 1e-13 / (point[3] * point[3]));
        expect("sums", {a + b, a - b, a * 3.0}, {ea + eb, ea - eb, ea * 3.0});
        expect("sum in place", after(a, [](Mat4& m) { m.add(m), m.subtract(m); }), Mat4(false));
        expect("determinant", a.determinant(), ea.determinant(), 1e-12);
        EXPECT_TRUE(a.getInverse(out));
        expect("inverse", out, inverse, 1e-13 * inverse.squaredNorm() * std::max(1.0, std::fabs(ea.determinant())));
        expect("inverse over its own", after(a, [](Mat4& m) { m.getInverse(m); }), out);
        expect("longest axis", a.getMaxScaleOnAxis(), ea.topLeftCorner<3, 3>().colwise().norm().maxCoeff(), 1e-14);
    }
}

TEST(Mat4, SingularIsADeterminantOfExactlyZero) {
    Mat4 m = Random().value<Mat4>(), out = m;
    m.setColumn(2, Vec4());
    EXPECT_FALSE(m.getInverse(out));
    expect("no inverse", out, Eigen::Matrix4d::Identity());
    m.m[10] = kNaN;
    EXPECT_TRUE(m.getInverse(out) && std::isnan(out.m[0]));
    m.setScale(1e-100, 1e-100, 1e-100);
    EXPECT_TRUE(m.getInverse(out)) << "a determinant of 1e-300";
}

TEST(Mat4, ProductsAddFromTheFirstColumnToTheLast) {
    // ((1e16 + 1) - 1e16) + 1 is 1 in doubles; every other order gives 0 or 2.
    const Vec4 ones = Vec4() + 1.0;
    Mat4 m(Vec4(1e16, 1, -1e16, 1), Vec4(), Vec4(), Vec4(), true);
    expect("matrix", (m * Mat4(ones, ones, ones, ones, true)).getRow(0), ones);
    expect("vector and point", {m * ones, m * Vec3(1)}, {1, 0, 0, 0, 1, 0, 0});
}

TEST(Mat4, MakersAndVerbs) {
    Random random;
    const Mat4 start = random.value<Mat4>();
    const Vec3 v = random.value<Vec3>(), x(1, 0, 0), y(0, 1, 0), z(0, 0, 1);
    const Eigen::Affine3d translation(Eigen::Translation3d(eigen(v))), scale(Eigen::Scaling(eigen(v)));
    const auto turn = [](const Vec3& axis) {
        return Eigen::Affine3d(Eigen::AngleAxisd(0.7, eigen(axis).normalized()));
    };
    const auto check = [&](const char* name, const Mat4& made, const Mat4& changed, const Eigen::Affine3d& transform) {
        expect(name, made, transform.matrix(), 1e-15);
        expect(name, changed, eigen(start) * transform.matrix(), 1e-13);
    };
    check("x", after(start, &Mat4::setXRotation, 0.7), after(start, &Mat4::rotateX, 0.7), turn(x));
    check("y", after(start, &Mat4::setYRotation, 0.7), after(start, &Mat4::rotateY, 0.7), turn(y));
    check("z", after(start, &Mat4::setZRotation, 0.7), after(start, &Mat4::rotateZ, 0.7), turn(z));
    Mat4 made = start, changed = start, byVec4 = start, aboutZero = start;
    made.setTranslate(v), changed.translate(v), byVec4.translate(Vec4(v, 9));
    check("translate", made, changed, translation);
    made.setScale(v), changed = start, changed.scale(v), byVec4.scale(Vec4(v, 9));
    check("scale", made, changed, scale);
    made.setRotation(0.7, v), changed = start, changed.rotate(0.7, v), byVec4.rotate(0.7, Vec4(v, 9));
    check("rotate", made, changed, turn(v));
    expect("of a Vec4", byVec4, eigen(start) * (translation * scale * turn(v)).matrix(), 1e-13);
    aboutZero.rotate(0.7, 0, 0, 0);
    expect("a zero axis is x", aboutZero, after(start, &Mat4::rotateX, 0.7));
    expect("position", after(start, &Mat4::position, x), {eigen(start).leftCols<3>(), x, start.m[15]});
}

TEST(Mat4, ProjectionsMapTheirSpaceOntoTheClipCube) {
    const double left = -1, right = 2, bottom = -0.5, top = 3, near = 0.5, far = 20, half = std::tan(0.45);
    Mat4 perspective = Random().value<Mat4>(), frustum = perspective, ortho = perspective;
    perspective.setPerspective(0.9, 1.5, near, far);
    frustum.setFrustum(left, right, bottom, top, near, far);
    ortho.setOrtho(left, right, top, bottom, near, far);
    for (int i = 0; i < 8; ++i) {
        const Vec4 corner(i & 1 ? 1 : -1, i & 2 ? 1 : -1, i & 4 ? 1 : -1, 1);
        const double x = i & 1 ? right : left, y = i & 2 ? top : bottom, depth = i & 4 ? far : near,
                     scale = depth / near;
        const Vec4 seen(corner.x * 1.5 * half * depth, corner.y * half * depth, -depth, 1);
        expect("setPerspective", perspective * seen, corner * depth, 1e-13);
        expect("setFrustum", frustum * Vec4(x * scale, y * scale, -depth, 1), corner * depth, 1e-13);
        expect("setOrtho", ortho * Vec4(x, y, -depth, 1), corner, 1e-14);
    }
}

TEST(Mat4, LookAtWritesTheViewersAxesOnly) {
    const auto check = [](const char* name, Vec3 eye, Vec3 target, Vec3 up, Vec3 x, Vec3 y, Vec3 z) {
        Mat4 m(0, 0, 0, 21, 0, 0, 0, 22, 0, 0, 0, 23, 24, 25, 26, 27, true);
        m.setLookAt(eye.x, eye.y, eye.z, target.x, target.y, target.z, up.x, up.y, up.z);
        expect(name, m, {x, 21, y, 22, z, 23, 24, 25, 26, 27}, 1e-15);
    };
    check("askew", {3, 0, 5}, {0, 0, 1}, {0, 1, 0}, {0.8, 0, -0.6}, {0, 1, 0}, {0.6, 0, 0.8});
    check("eye = target", {1, 2, 3}, {1, 2, 3}, {0, 1, 0}, {0, 0, -1}, {0, 1, 0}, {1, 0, 0});
    check("up along the view", {0, 5, 0}, {0, 0, 0}, {0, 1, 0}, {1, 0, 0}, {0, 0, -1}, {0, 1, 0});
    // Normalising overflows to zero: z comes from the fallback, and the nudge can't mend a zero up.
    check("overflow", {1e200, 0, 0}, {0, 0, 0}, {0, 1e300, 0}, Vec3(), Vec3(), {0, 0, 1.0 + 9.999999747378752e-05});
}

TEST(Mat4, AffinesAndHostCoordinates) {
    const Mat4 m = after(Random().value<Mat4>(), &Mat4::setWithAffine, Affine(1, 2, 3, 4, 5, 6));
    expect("setWithAffine", m, {1, 2, 0, 0, 3, 4, 0, 0, 0, 0, 1, 0, 5, 6, 0, 1});
    expect("getAffine", m.getAffine(), {1, 3, 5, 2, 4, 6});
    expect("host to OpenGL", Mat4::getAEToGLConversionMatrix(1920, 1080) * Vec4(10, 20, 30, 1), {-950, 520, -30, 1});
}

using Transform = Eigen::Transform<double, 2, Eigen::AffineCompact>;

Transform eigen(const Affine& a) {
    return Transform(Eigen::Map<const Eigen::Matrix<double, 2, 3, Eigen::RowMajor>>(a.m));
}

TEST(Affine, ComputesAsEigenDoes) {
    Random random;
    for (int i = 0; i < 20; ++i) {
        const Affine a = random.value<Affine>(), b = random.value<Affine>();
        const Vec2 p = random.value<Vec2>();
        const Transform ea = eigen(a), eb = eigen(b);
        const Eigen::Vector2d mapped = ea * eigen(p);
        Vec2 inPlace = p, numbers = p;
        a.transform(inPlace), a.transform(numbers.x, numbers.y);
        expect("multiply", eigen(after(a, &Affine::multiply, b)).matrix(), (eb * ea).matrix(), 1e-14);
        expect("premultiply", eigen(after(a, &Affine::premultiply, b)).matrix(), (ea * eb).matrix(), 1e-14);
        expect("square", after(a, [](Affine& r) { r.multiply(r); }), after(a, &Affine::multiply, Affine(a)));
        expect("getInverse", eigen(a.getInverse()).matrix(), ea.inverse().matrix(), 1e-10);
        expect("inverse over its own", after(a, [](Affine& r) { r.inverse(r); }), a.getInverse());
        expect("points", {a.getTransform(p), inPlace, numbers}, {mapped, mapped, mapped}, 1e-14);
    }
}

TEST(Affine, MakersAndVerbs) {
    const Affine start = Random().value<Affine>();
    const double angle = 30.0 * kPi / 180.0, s = std::sin(angle), c = std::cos(angle);
    const auto check = [&](const char* name, const Affine& transform, auto maker, auto verb, auto... arguments) {
        expect(name, after(start, maker, arguments...), transform, 1e-13);
        expect(name, after(start, verb, arguments...), after(start, &Affine::premultiply, transform), 1e-13);
    };
    check("translate", {1, 0, 0, 1, 3, -4}, &Affine::setTranslate, &Affine::translate, 3, -4);
    check("scale", {3, 0, 0, -4, 0, 0}, &Affine::setScale, &Affine::scale, 3, -4);
    check("skewX", {1, 0, s / c, 1, 0, 0}, &Affine::setSkewX, &Affine::skewX, 30);
    check("skewY", {1, s / c, 0, 1, 0, 0}, &Affine::setSkewY, &Affine::skewY, 30);
    check("rotate", {c, s, -s, c, 0, 0}, &Affine::setRotate, &Affine::rotate, 30);
    expect("a factor of fifteen decimals", after(start, &Affine::setRotate, 90).m[0], 2.6e-14, 1e-15);
    expect("constructors", {Affine(1, 2, 3, 4, 5, 6), Affine(true)}, {1, 3, 5, 2, 4, 6, 1, 0, 0, 0, 1, 0});

    Affine layer(false);
    layer.set({10, 20}, {7, -5}, {2, 3}, 30.0);
    const Transform expected = Eigen::Translation2d(7, -5) * Eigen::Rotation2Dd(angle) * Eigen::Scaling(2.0, 3.0) *
                               Eigen::Translation2d(-10, -20);
    expect("a layer's transform", eigen(layer).matrix(), expected.matrix(), 1e-12);
}

TEST(Affine, SingularIsADeterminantWithinFixedBounds) {
    Affine out(1, 2, 3, 4, 5, 6);
    const auto invert = [&out](double determinant) { return Affine(determinant, 0, 0, 1, 0, 0).inverse(out); };
    expect("singular", {invert(0.9999999e-6), invert(-0.9999999e-6), out}, {0, 0, 1, 3, 5, 2, 4, 6});
    expect("not singular", {invert(1e-6), invert(-1e-6), invert(kNaN)}, {1, 1, 1});
    expect("the identity instead", Affine(false).getInverse(), {1, 0, 0, 0, 1, 0});
}

TEST(Affine, AverageScaleIsRoundedInSinglePrecision) {
    expect("four decimals", Affine(1.23456, 0, 0, 1.23456, 9, 9).averageScale(), 1.2345999479293823);
    expect("over the rows, not the columns", Affine(3, 0, 4, 2, 9, 9).averageScale(), 3.5);
    expect("halves go away from zero", Affine(0.00025, 0, 0, 0.00025, 0, 0).averageScale(), 3.0f / 10000.0f);
}

} // namespace

} // namespace Ombrique::GaussianBlur
