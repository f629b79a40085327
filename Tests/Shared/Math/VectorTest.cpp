// What Vec2, Vec3 and Vec4 share, and what Vec3 and Vec4 have of their own.

#include "Tests/Shared/Math/MathTesting.h"

#include <functional>

namespace Ombrique::GaussianBlur {

namespace {

template <typename Vector> class AnyVector : public testing::Test {};
using Vectors = testing::Types<Vec2, Vec3, Vec4>;
TYPED_TEST_SUITE(AnyVector, Vectors);

TYPED_TEST(AnyVector, ArithmeticIsComponentByComponentInAllThreeForms) {
    Random random;
    const auto a = random.value<TypeParam>(), b = random.value<TypeParam>(), all = TypeParam() + 0.7;
    const auto check = [&](const TypeParam& byVector, const TypeParam& byNumber, auto operation) {
        for (std::size_t i = 0; i < values(a).size(); ++i) {
            EXPECT_EQ(values(byVector)[i], operation(values(a)[i], values(b)[i]));
            EXPECT_EQ(values(byNumber)[i], operation(values(a)[i], values(all)[i]));
        }
    };
    check(a + b, a + 0.7, std::plus<>());
    check(a - b, a - 0.7, std::minus<>());
    check(a * b, a * 0.7, std::multiplies<>());
    check(a / b, a / 0.7, std::divides<>());

    TypeParam verbs = a, compounds = a;
    verbs.add(b), verbs.sub(0.7), verbs.mult(b), verbs.divide(0.3), verbs.divide(b), verbs.mult(0.2), verbs.sub(b);
    compounds += b, compounds -= 0.7, compounds *= b, compounds /= 0.3, compounds /= b, compounds *= 0.2,
        compounds -= b;
    verbs.add(0.4), compounds += 0.4;
    expectValues(verbs, values(((a + b - 0.7) * b / 0.3 / b) * 0.2 - b + 0.4));
    expectValues(compounds, values(verbs));
    verbs.divide(verbs);
    expectValues(verbs, values(TypeParam() + 1.0));
}

TYPED_TEST(AnyVector, LengthIsSetAlongTheDirectionOrAlongXForZero) {
    Random random;
    const auto a = random.value<TypeParam>();
    TypeParam scaled = a, zero, tiny;
    scaled.setLength(-2.5);
    EXPECT_NEAR(scaled.length(), 2.5, 1e-15);
    EXPECT_NEAR(scaled.distance(a), a.length() + 2.5, 1e-14) << "a negative length turns the vector round";
    zero.setLength(5.0);
    EXPECT_EQ(zero.x, 5.0);
    EXPECT_EQ(zero.length(), 5.0);
    tiny.x = 1e-200;
    tiny.normalize();
    EXPECT_EQ(tiny.x, kInfinity) << "only the exact zero is spared the division";
}

TEST(Vectors, CompareByComponentWithTheBoundOrByDistanceWithoutIt) {
    const double beyond = std::nextafter(1e-12, 1.0);
    EXPECT_TRUE(Vec2() == Vec2(1e-12, -1e-12) && Vec3() == Vec3(1e-12, 0.0, -1e-12));
    EXPECT_FALSE(Vec2() == Vec2(0.0, beyond) || Vec3() == Vec3(0.0, 0.0, -beyond) || Vec3(kNaN) == Vec3(kNaN));
    EXPECT_TRUE(Vec2(1.0, 2.0).equal(Vec2(1.0, 2.0), 0.0) && Vec3(2.0).equal(Vec3(2.5), 0.5));
    EXPECT_TRUE(Vec4() == Vec4(0.0, 0.0, 0.9e-12, 0.0));
    EXPECT_FALSE(Vec4() == Vec4(0.6e-12, 0.6e-12, 0.6e-12, 0.6e-12));
    EXPECT_FALSE(Vec4().equal(Vec4(), 0.0) || Vec4().equal(Vec4(0.0, 0.0, 3.0, 4.0), 5.0));
}

TEST(Vectors, ExtremesKeepTheSideThatTiesAndNaNCallFor) {
    Vec3 low(0.0, 1.0, 5.0), high(-1.0, kNaN, 5.0), clamped(-5.0, 5.0, 0.5);
    low.getMin(Vec3(-0.0, kNaN, 4.0));
    expectValues(low, {0.0, 1.0, 4.0});
    EXPECT_FALSE(std::signbit(low.x)) << "a tie keeps the own value in getMin";
    high.getMax(Vec3(1.0, 2.0, 4.0));
    expectValues(high, {1.0, 2.0, 5.0});
    clamped.clamp(Vec3(1.0, 0.0, 0.0), Vec3(-1.0, 2.0, 1.0));
    expectValues(clamped, {1.0, 2.0, 0.5});
}

TEST(Vec3, AnglesAreRadiansAndIndicesBeyondOneAreZ) {
    expectValues(Vec3(1, 2, 3).cross(Vec3(4, 5, 7)), {-1, 5, -3});
    EXPECT_NEAR(Vec3(1, 0, 0).angleBetween(Vec3(-1, 1, 0)), 0.75 * kPi, 1e-15);
    EXPECT_TRUE(std::isnan(Vec3().angleBetween(Vec3(1, 0, 0))));
    Vec3 v(-1.5, 1.5, 0.0);
    v.set(-1, 2.5);
    expectValues(v.floor(), {-2.0, 1.0, 2.0});
}

TEST(Vec3, LargestComponentTiesGoToTheLaterAxis) {
    for (const auto& [v, expected] : std::initializer_list<std::pair<Vec3, int>>{
             {Vec3(-3, 2, 3), 2}, {Vec3(1, 1, 0), 1}, {Vec3(1), 2}, {Vec3(-4, 2, 3), 0}, {Vec3(1, -5, 2), 1}})
        EXPECT_EQ(v.largestAbsComponent(), expected) << testing::PrintToString(values(v));
}

TEST(Vec3, OrthoTurnsAboutTheAxisBeforeItsLargest) {
    for (auto [own, other, expected] : {std::array{Vec3(1, 0, 0), Vec3(0, 1, 0), Vec3(1, 0, 0)},
                                        std::array{Vec3(0, 0, 0), Vec3(0, 0, 1), Vec3(-1, 0, 0)},
                                        std::array{Vec3(1, 0, 0), Vec3(0, 0, 1), Vec3(1, 0, 0)},
                                        std::array{Vec3(0, 9, 0), Vec3(0, 0, 2), Vec3(0, 1, 0)}}) {
        own.ortho(other);
        expectValues(own, values(expected));
    }
}

TEST(Vec3, CyclicDifferenceFoldsOnce) {
    const double rows[][3] = {{10, 350, 20},  {350, 10, -20}, {180, 0, 180},
                              {0, 180, -180}, {1000, 0, 640}, {-600, 0, -240}};
    for (const auto& [a, b, expected] : rows)
        EXPECT_EQ(cyclicDifference(a, b, 360.0), expected) << a << " - " << b;
}

TEST(Vec4, LerpWalksTheShorterArc) {
    const auto check = [](const Vec4& a, const Vec4& b, double t, const Vec4& expected, double tolerance) {
        SCOPED_TRACE(testing::PrintToString(values(a)) + testing::PrintToString(values(b)));
        expectNear(values(Vec4::lerp(a, b, t)), values(expected), tolerance);
    };
    const Vec4 x(1, 0, 0, 0), y(0, 1, 0, 0);
    check(x * 2, y * 2, 0.5, Vec4(std::sqrt(0.5), std::sqrt(0.5), 0, 0), 1e-7);
    check(x * 2, y * 3, 0.0, x * 2, 0.0);
    check(x * 2, y * -3, 1.0, y * -3, 0.0);
    check(x, Vec4(-1, 0.1, 0, 0), 0.5, Vec4(1, -0.05, 0, 0) / std::hypot(1, 0.05), 1e-15);
    check(x, x.negate(), 0.5, x, 0.0);
    check(x, y, 2.0, x.negate(), 1e-6);
    const double cosine = 1.0 - 0.0099999999, angle = std::acos(cosine); // the bound of the chord in single precision
    check(x, Vec4(cosine, std::sin(angle), 0, 0), 0.3, Vec4(std::cos(0.3 * angle), std::sin(0.3 * angle), 0, 0), 1e-7);
    // To the last bit, worked out step by step with the single-precision functions of the C library.
    check(Vec4(1, 2, 3, 4), Vec4(4, -1, 2, 0.5), 0.3,
          Vec4(0.43379959500798165, 0.230355235574424, 0.593349946755568, 0.6377226807159422), 0.0);
    check(x, Vec4(-1, 0.5, 0, 2), 0.7, Vec4(0.5797558138577976, -0.19761566922543525, 0.0, -0.790462676901741), 0.0);
    EXPECT_TRUE(std::isnan(Vec4::lerp(Vec4(), Vec4(1, 2, 3, 4), 0.5).w));
}

} // namespace

} // namespace Ombrique::GaussianBlur
