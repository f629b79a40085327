#include "Tests/Shared/Math/MathTesting.h"

#include <Eigen/Dense>
#include <glm/glm.hpp>
#include <glm/gtc/matrix_transform.hpp>
#include <glm/gtc/type_ptr.hpp>

#include <numeric>

namespace Ombrique::GaussianBlur {

namespace {

Eigen::Matrix4d eigen(const Mat4& m) { return Eigen::Map<const Eigen::Matrix4d>(m.m); }

std::vector<double> stored(const Eigen::Matrix4d& m) { return {m.data(), m.data() + 16}; }

std::vector<double> stored(const glm::dmat4& m) { return {glm::value_ptr(m), glm::value_ptr(m) + 16}; }

TEST(Mat4, FlagsSelectTheOrderOfTheArguments) {
    double numbers[16];
    std::iota(numbers, numbers + 16, 0.0);
    const auto vector = [&](int i) { return Vec4(numbers[i], numbers[i + 1], numbers[i + 2], numbers[i + 3]); };
    const std::vector<double> inOrder(numbers, numbers + 16);
    const std::vector<double> byRow = {0, 4, 8, 12, 1, 5, 9, 13, 2, 6, 10, 14, 3, 7, 11, 15};
    expectValues(Mat4(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, true), inOrder);
    expectValues(Mat4(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, false), byRow);
    expectValues(Mat4(numbers, true), inOrder);
    expectValues(Mat4(numbers, false), byRow);
    expectValues(Mat4(vector(0), vector(4), vector(8), vector(12), false), inOrder);
    expectValues(Mat4(vector(0), vector(4), vector(8), vector(12), true), byRow);
    Mat4 m(true);
    m.set(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15);
    expectValues(m, byRow);
    expectValues(m.getRow(1), {4, 5, 6, 7});
    expectValues(m.getColumn(1), {1, 5, 9, 13});
    m.setTranspose();
    expectValues(m, inOrder);
    m.setRow(2, Vec4(-1, -2, -3, -4));
    m.setColumn(3, Vec4(-5, -6, -7, -8));
    expectValues(m, {0, 1, -1, 3, 4, 5, -2, 7, 8, 9, -3, 11, -5, -6, -7, -8});
}

TEST(Mat4, ComparesEachElementWithTheBoundIncluded) {
    for (const auto& [element, expected] :
         {std::pair(-1e-12, true), std::pair(1.1e-12, false), std::pair(kNaN, false)}) {
        Mat4 m(false);
        m.m[7] = element;
        EXPECT_EQ(Mat4(false) == m, expected) << element;
    }
}

TEST(Mat4, ProductsAgreeAndMayOverwriteTheirOperands) {
    Random random;
    Mat4 a = random.value<Mat4>();
    const Mat4 b = random.value<Mat4>();
    const Vec4 v = random.value<Vec4>();
    const std::vector<double> expected = stored(eigen(a) * eigen(b));
    expectNear(values(a * b), expected, 1e-13);
    Mat4 left = a, right = b;
    Mat4::mult(left, b, left);
    Mat4::mult(a, right, right);
    expectValues(left, values(a * b));
    expectValues(right, values(a * b));
    const Eigen::Vector4d mapped = eigen(a) * Eigen::Vector4d(v.x, v.y, v.z, v.w);
    expectNear(values(a * v), {mapped[0], mapped[1], mapped[2], mapped[3]}, 1e-13);
    expectNear(values((a + b) - b), values(a), 1e-14);
    expectNear(values(a * 3.0), stored(eigen(a) * 3.0), 1e-14);
    Mat4 doubled = a;
    doubled.add(doubled);
    expectValues(doubled, values(a * 2.0));
    doubled.subtract(a);
    expectValues(doubled, values(a));
}

TEST(Mat4, ProductsAddFromTheFirstColumnToTheLast) {
    // ((1e16 + 1) - 1e16) + 1 is 1 in doubles; every other order gives 0 or 2.
    Mat4 m(Vec4(1e16, 1, -1e16, 1), Vec4(), Vec4(), Vec4(), true);
    const Mat4 ones(Vec4(1, 1, 1, 1), Vec4(1, 1, 1, 1), Vec4(1, 1, 1, 1), Vec4(1, 1, 1, 1), true);
    expectValues((m * ones).getRow(0), {1, 1, 1, 1});
    EXPECT_EQ((m * Vec4(1, 1, 1, 1)).x, 1.0);
    EXPECT_EQ((m * Vec3(1, 1, 1)).x, 1.0);
}

TEST(Mat4, PointsDirectionsAndProjections) {
    Mat4 m(1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 0, 0, 2, 4, false);
    const Vec3 v(1, -1, 2);
    expectValues(m * v, {9, 21, 33});
    expectValues(m.multWithoutTranslate(v), {5, 13, 21});
    expectValues(m.multAndProject(v), {9 * 0.125, 21 * 0.125, 33 * 0.125});
    Mat4 flat(false);
    flat.position(Vec3(1, -1, 1));
    expectValues(flat.multAndProject(v), {kInfinity, -kInfinity, kInfinity});
}

TEST(Mat4, InverseAndDeterminant) {
    Random random;
    for (int i = 0; i < 50; ++i) {
        Mat4 m = random.value<Mat4>();
        const double determinant = eigen(m).determinant();
        EXPECT_NEAR(m.determinant(), determinant, 1e-12);
        Mat4 inverse(false);
        EXPECT_TRUE(m.getInverse(inverse));
        const Eigen::Matrix4d expected = eigen(m).inverse();
        expectNear(values(inverse), stored(expected),
                   1e-13 * expected.squaredNorm() * std::max(1.0, std::fabs(determinant)));
        EXPECT_TRUE(m.getInverse(m));
        expectValues(m, values(inverse));
    }
    Mat4 singular = random.value<Mat4>();
    singular.setColumn(2, Vec4());
    Mat4 out = singular;
    EXPECT_FALSE(singular.getInverse(out));
    expectValues(out, values(Mat4(true)));
    singular.m[10] = kNaN;
    EXPECT_TRUE(singular.getInverse(out));
    EXPECT_TRUE(std::isnan(out.m[0]));

    Mat4 tiny(false);
    tiny.setScale(1e-100, 1e-100, 1e-100);
    EXPECT_TRUE(tiny.getInverse(out)) << "only a determinant of exactly 0 is singular";
}

TEST(Mat4, MakersAgreeWithOpenGLConventions) {
    Mat4 m(false);
    const glm::dmat4 identity(1.0);
    m.setPerspective(0.9, 1.5, 0.5, 20.0);
    expectNear(values(m), stored(glm::perspective(0.9, 1.5, 0.5, 20.0)), 1e-14);
    m.setFrustum(-1.0, 2.0, -0.5, 3.0, 0.5, 20.0);
    expectNear(values(m), stored(glm::frustum(-1.0, 2.0, -0.5, 3.0, 0.5, 20.0)), 1e-14);
    m.setOrtho(-1.0, 2.0, 3.0, -0.5, 0.5, 20.0);
    expectNear(values(m), stored(glm::ortho(-1.0, 2.0, -0.5, 3.0, 0.5, 20.0)), 1e-14);
    m.setRotation(0.8, 1.0, -2.0, 0.5);
    expectNear(values(m), stored(glm::rotate(identity, 0.8, glm::dvec3(1.0, -2.0, 0.5))), 1e-14);
    m.setTranslate(1.0, 2.0, 3.0);
    expectValues(m, stored(glm::translate(identity, glm::dvec3(1.0, 2.0, 3.0))));
    m.setScale(2.0, 3.0, 4.0);
    expectValues(m, stored(glm::scale(identity, glm::dvec3(2.0, 3.0, 4.0))));
    m.setXRotation(0.5 * kPi);
    expectNear(values(m * Vec3(1, 2, 3)), {1, -3, 2}, 1e-14);
    m.setYRotation(0.5 * kPi);
    expectNear(values(m * Vec3(1, 2, 3)), {3, 2, -1}, 1e-14);
    m.setZRotation(0.5 * kPi);
    expectNear(values(m * Vec3(1, 2, 3)), {-2, 1, 3}, 1e-14);
}

TEST(Mat4, VerbsMultiplyOnTheRight) {
    Random random;
    const Mat4 start = random.value<Mat4>();
    const Vec3 v = random.value<Vec3>();
    const auto check = [&](auto verb, auto maker) {
        Mat4 changed = start, transform(false);
        verb(changed);
        maker(transform);
        expectNear(values(changed), stored(eigen(start) * eigen(transform)), 1e-13);
    };
    check([&](Mat4& m) { m.translate(Vec4(v, 9)); }, [&](Mat4& m) { m.setTranslate(v); });
    check([&](Mat4& m) { m.scale(Vec4(v, 9)); }, [&](Mat4& m) { m.setScale(v); });
    check([&](Mat4& m) { m.rotate(0.7, Vec4(v, 9)); }, [&](Mat4& m) { m.setRotation(0.7, v); });
    check([](Mat4& m) { m.rotateX(0.7); }, [](Mat4& m) { m.setXRotation(0.7); });
    check([](Mat4& m) { m.rotateY(0.7); }, [](Mat4& m) { m.setYRotation(0.7); });
    check([](Mat4& m) { m.rotateZ(0.7); }, [](Mat4& m) { m.setZRotation(0.7); });
    check([](Mat4& m) { m.rotate(0.7, 0, 0, 0); }, [](Mat4& m) { m.setXRotation(0.7); }); // a zero axis is x
}

TEST(Mat4, LookAtWritesTheViewersAxesOnly) {
    const std::array<Vec3, 5> rows[] = {
        {Vec3(0, 0, 5), Vec3(1, 0, 0), Vec3(0, 1, 0), Vec3(0, 0, 1)},
        {Vec3(), Vec3(0, 0, -1), Vec3(0, 1, 0), Vec3(1, 0, 0)},         // eye = target
        {Vec3(0, 5, 0), Vec3(1, 0, 0), Vec3(0, 0, -1), Vec3(0, 1, 0)}}; // up along the view
    for (const auto& [eye, x, y, z, target] : rows) {
        Mat4 m(0, 0, 0, 21, 0, 0, 0, 22, 0, 0, 0, 23, 24, 25, 26, 27, true);
        m.setLookAt(eye, target, Vec3(0, 1, 0));
        expectValues(m, {x.x, x.y, x.z, 21, y.x, y.y, y.z, 22, z.x, z.y, z.z, 23, 24, 25, 26, 27});
    }
    // Normalising overflows to zero: z comes from the fallback, and the nudge can't mend a zero up.
    Mat4 m(false);
    m.setLookAt(Vec3(1e200, 0, 0), Vec3(), Vec3(0, 1e300, 0));
    expectValues(m.getColumn(2), {0, 0, 1.0 + 9.999999747378752e-05, 0});
}

TEST(Mat4, AffinesAndHostCoordinates) {
    Mat4 m(false);
    m.setWithAffine(Affine(1, 2, 3, 4, 5, 6));
    expectValues(m, {1, 2, 0, 0, 3, 4, 0, 0, 0, 0, 1, 0, 5, 6, 0, 1});
    m.m[2] = m.m[15] = 99.0;
    expectValues(m.getAffine(), {1, 3, 5, 2, 4, 6});
    EXPECT_EQ(m.getMaxScaleOnAxis(), std::hypot(1.0, 2.0, 99.0));
    m.m[3] = 1000.0;
    EXPECT_EQ(m.getMaxScaleOnAxis(), std::hypot(1.0, 2.0, 99.0)) << "the bottom row doesn't count";
    expectValues(Mat4::getAEToGLConversionMatrix(1920, 1080) * Vec3(10, 20, 30), {-950, 520, -30});
}

} // namespace

} // namespace Ombrique::GaussianBlur
