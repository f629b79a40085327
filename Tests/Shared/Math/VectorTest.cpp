// What Vec2, Vec3 and Vec4 share, and what Vec3 and Vec4 have of their own.

#include "Tests/Shared/Math/MathTesting.h"

#include <glm/glm.hpp>

#include <functional>

namespace Ombrique::GaussianBlur {
namespace {

template <typename Vector> Vector sample(Random& random) {
    if constexpr (std::is_same_v<Vector, Vec2>)
        return random.vec2();
    else if constexpr (std::is_same_v<Vector, Vec3>)
        return random.vec3();
    else
        return random.vec4();
}

template <typename Vector> class AnyVector : public testing::Test {};
using Vectors = testing::Types<Vec2, Vec3, Vec4>;
TYPED_TEST_SUITE(AnyVector, Vectors);

TYPED_TEST(AnyVector, ArithmeticIsComponentByComponentInAllThreeForms) {
    Random random;
    const auto a = sample<TypeParam>(random);
    const auto b = sample<TypeParam>(random);
    const double s = random.number();
    const auto check = [&](auto operation, auto verb, auto compound, auto operate, const auto& argument) {
        std::vector<double> expected = values(a);
        for (std::size_t i = 0; i < expected.size(); ++i)
            if constexpr (std::is_same_v<std::decay_t<decltype(argument)>, double>)
                expected[i] = operation(expected[i], argument);
            else
                expected[i] = operation(expected[i], values(argument)[i]);
        TypeParam byVerb = a;
        verb(byVerb, argument);
        expectValues(byVerb, expected);
        TypeParam byCompound = a;
        compound(byCompound, argument);
        expectValues(byCompound, expected);
        expectValues(operate(a, argument), expected);
    };
    const auto checkBoth = [&](auto... parts) {
        check(parts..., b);
        check(parts..., s);
    };
    checkBoth(
        std::plus<>(), [](auto& v, auto& o) { v.add(o); }, [](auto& v, auto& o) { v += o; }, std::plus<>());
    checkBoth(
        std::minus<>(), [](auto& v, auto& o) { v.sub(o); }, [](auto& v, auto& o) { v -= o; }, std::minus<>());
    checkBoth(
        std::multiplies<>(), [](auto& v, auto& o) { v.mult(o); }, [](auto& v, auto& o) { v *= o; },
        std::multiplies<>());
    checkBoth(
        std::divides<>(), [](auto& v, auto& o) { v.divide(o); }, [](auto& v, auto& o) { v /= o; }, std::divides<>());

    TypeParam self = a;
    self.divide(self);
    expectValues(self, std::vector<double>(values(a).size(), 1.0));
}

TYPED_TEST(AnyVector, LengthIsSetAlongTheDirectionOrAlongXForZero) {
    Random random;
    const auto a = sample<TypeParam>(random);
    TypeParam scaled = a;
    scaled.setLength(-2.5);
    expectNear(values(scaled), values(a * (-2.5 / std::hypot(a.length(), 0.0))), 1e-15);
    EXPECT_NEAR(scaled.length(), 2.5, 1e-15);
    EXPECT_NEAR(scaled.distance(a), a.length() + 2.5, 1e-14);

    for (const double n : {5.0, 1.0}) {
        TypeParam zero;
        n == 1.0 ? zero.normalize() : zero.setLength(n);
        TypeParam alongX;
        alongX.x = n;
        expectValues(zero, values(alongX));
    }
    TypeParam tiny;
    tiny.x = 1e-200;
    tiny.normalize();
    EXPECT_EQ(tiny.x, kInfinity) << "a vector that isn't exactly zero is divided by its length";
}

TEST(Vec2AndVec3, CompareEachComponentWithTheBoundIncluded) {
    const double beyond = std::nextafter(1e-12, 1.0);
    for (const double sign : {1.0, -1.0}) {
        EXPECT_TRUE(Vec2() == Vec2(0.0, sign * 1e-12) && Vec3() == Vec3(sign * 1e-12, 0.0, sign * 1e-12));
        EXPECT_FALSE(Vec2() == Vec2(0.0, sign * beyond));
        EXPECT_TRUE(Vec3() != Vec3(0.0, 0.0, sign * beyond));
    }
    EXPECT_FALSE(Vec3(1.0, kNaN, 1.0) == Vec3(1.0, kNaN, 1.0));
    EXPECT_TRUE(Vec2(1.0, 2.0).equal(Vec2(1.0, 2.0), 0.0) && Vec3(2.0).equal(Vec3(2.5), 0.5));
}

TEST(Vec4, ComparesByDistanceWithTheBoundExcluded) {
    EXPECT_TRUE(Vec4() == Vec4(0.0, 0.0, 0.9e-12, 0.0));
    EXPECT_TRUE(Vec4() != Vec4(0.0, 0.0, 1.1e-12, 0.0));
    EXPECT_TRUE(Vec4() != Vec4(0.6e-12, 0.6e-12, 0.6e-12, 0.6e-12));
    EXPECT_FALSE(Vec4().equal(Vec4(), 0.0));
    EXPECT_FALSE(Vec4().equal(Vec4(0.0, 0.0, 3.0, 4.0), 5.0));
}

TEST(Vec2AndVec3, ExtremesKeepTheSideThatTiesAndNaNCallFor) {
    Vec3 low(kNaN, 1.0, 5.0), high = low;
    low.getMin(Vec3(1.0, kNaN, 4.0));
    high.getMax(Vec3(1.0, kNaN, 6.0));
    EXPECT_TRUE(std::isnan(low.x));
    EXPECT_EQ(low.y, 1.0);
    EXPECT_EQ(low.z, 4.0);
    EXPECT_EQ(high.x, 1.0);
    EXPECT_TRUE(std::isnan(high.y));
    EXPECT_EQ(high.z, 6.0);

    Vec2 zeros(0.0, 0.0);
    zeros.getMin(Vec2(-0.0, -0.0));
    EXPECT_FALSE(std::signbit(zeros.x));
    zeros.getMax(Vec2(-0.0, 0.0));
    EXPECT_TRUE(std::signbit(zeros.x));

    Vec3 clamped(-5.0, 5.0, 0.5);
    clamped.clamp(Vec3(1.0, 0.0, 0.0), Vec3(-1.0, 2.0, 1.0));
    expectValues(clamped, {1.0, 2.0, 0.5});
}

TEST(Vec3, IndicesBeyondOneSetZ) {
    for (const int i : {2, 3, -1}) {
        Vec3 v;
        v.set(i, 7.0);
        expectValues(v, {0.0, 0.0, 7.0});
    }
}

TEST(Vec3, CrossIsRightHandedAndAnglesAreRadians) {
    Random random;
    const Vec3 a = random.vec3(), b = random.vec3();
    const glm::dvec3 oracle = glm::cross(glm::dvec3(a.x, a.y, a.z), glm::dvec3(b.x, b.y, b.z));
    expectNear(values(a.cross(b)), {oracle.x, oracle.y, oracle.z}, 1e-14);
    EXPECT_NEAR(Vec3(1, 0, 0).angleBetween(Vec3(-1, 1, 0)), 0.75 * kPi, 1e-15);
    EXPECT_TRUE(std::isnan(Vec3().angleBetween(Vec3(1, 0, 0))));
    expectValues(Vec3(1.5, -1.5, 2.0).floor(), {1.0, -2.0, 2.0});
}

TEST(Vec3, LargestComponentTiesGoToTheLaterAxis) {
    const std::pair<Vec3, int> rows[] = {{Vec3(-3, 2, 3), 2}, {Vec3(1, 1, 0), 1},  {Vec3(1), 2},
                                         {Vec3(), 2},         {Vec3(-4, 2, 3), 0}, {Vec3(1, -5, 2), 1}};
    for (const auto& [v, expected] : rows)
        EXPECT_EQ(v.largestAbsComponent(), expected) << testing::PrintToString(values(v));
}

TEST(Vec3, OrthoTurnsAboutTheAxisBeforeItsLargest) {
    const std::array<Vec3, 3> rows[] = {{Vec3(1, 0, 0), Vec3(0, 1, 0), Vec3(1, 0, 0)},
                                        {Vec3(), Vec3(0, 0, 1), Vec3(-1, 0, 0)},
                                        {Vec3(1, 0, 0), Vec3(0, 0, 1), Vec3(1, 0, 0)},
                                        {Vec3(0, 9, 0), Vec3(0, 0, 2), Vec3(0, 1, 0)}};
    for (auto [own, other, expected] : rows) {
        own.ortho(other);
        expectValues(own, values(expected));
    }
}

TEST(Vec3, CyclicDifferenceFoldsOnce) {
    const double rows[][3] = {{10, 350, 20},  {350, 10, -20}, {170, -170, -20}, {180, 0, 180},
                              {0, 180, -180}, {1000, 0, 640}, {-600, 0, -240}};
    for (const auto& [a, b, expected] : rows)
        EXPECT_EQ(cyclicDifference(a, b, 360.0), expected) << a << " - " << b;
}

TEST(Vec4, LerpWalksTheShorterArc) {
    struct Row {
        const char* name;
        Vec4 a, b;
        double t;
        std::vector<double> expected;
        double tolerance;
    };
    // The two rows to the last bit were worked out step by step with the single-precision functions of the C library.
    const Row rows[] = {
        {"equal lengths don't count",
         Vec4(2, 0, 0, 0),
         Vec4(0, 2, 0, 0),
         0.5,
         {std::sqrt(0.5), std::sqrt(0.5), 0, 0},
         1e-7},
        {"start as it is", Vec4(2, 0, 0, 0), Vec4(0, 3, 0, 0), 0.0, {2, 0, 0, 0}, 0.0},
        {"end as it is", Vec4(2, 0, 0, 0), Vec4(0, -3, 0, 0), 1.0, {0, -3, 0, 0}, 0.0},
        {"through -b",
         Vec4(1, 0, 0, 0),
         Vec4(-1, 0.1, 0, 0),
         0.5,
         {1 / std::hypot(1, 0.05), -0.05 / std::hypot(1, 0.05), 0, 0},
         1e-15},
        {"opposite", Vec4(1, 0, 0, 0), Vec4(-1, 0, 0, 0), 0.5, {1, 0, 0, 0}, 0.0},
        {"chord",
         Vec4(1, 0, 0, 0),
         Vec4(1, 0.01, 0, 0),
         0.5,
         {1 / std::hypot(1, 0.005), 0.005 / std::hypot(1, 0.005), 0, 0},
         1e-15},
        {"beyond the end", Vec4(1, 0, 0, 0), Vec4(0, 1, 0, 0), 2.0, {-1, 0, 0, 0}, 1e-6},
        {"to the last bit",
         Vec4(1, 2, 3, 4),
         Vec4(4, -1, 2, 0.5),
         0.3,
         {0.43379959500798165, 0.230355235574424, 0.593349946755568, 0.6377226807159422},
         0.0},
        {"to the last bit, the other way",
         Vec4(1, 0, 0, 0),
         Vec4(-1, 0.5, 0, 2),
         0.7,
         {0.5797558138577976, -0.19761566922543525, 0.0, -0.790462676901741},
         0.0},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        expectNear(values(Vec4::lerp(row.a, row.b, row.t)), row.expected, row.tolerance);
    }
    for (const double component : values(Vec4::lerp(Vec4(), Vec4(1, 2, 3, 4), 0.5)))
        EXPECT_TRUE(std::isnan(component));
}

} // namespace
} // namespace Ombrique::GaussianBlur
