#include "Tests/Shared/Math/MathTesting.h"

#include <Eigen/Geometry>

namespace Ombrique::GaussianBlur {

namespace {

TEST(Vec2, TurnsCounterClockwiseInDegrees) {
    Vec2 v(2.0, 0.0), still(0.1, -0.0);
    v.rotate(90.0);
    EXPECT_EQ(v.x, 2.0 * std::cos(90.0 * 0.017453292519943)) << "the factor has fifteen decimals";
    expectNear(values(v), {0.0, 2.0}, 1e-12);
    expectNear(values(Vec2(3.0, 1.0).rotateRound(-90.0, Vec2(1.0, 1.0))), {1.0, -1.0}, 1e-12);
    v.setAngle(-30.0);
    expectNear(values(v), {std::sqrt(3.0), -1.0}, 1e-12);
    EXPECT_NEAR(Vec2(1, 1).angleBetween(Vec2(1, -1)), -90.0, 1e-12);
    expectValues(Vec2(1, 2).perpindicularLeft(), {-2, 1});
    expectValues(Vec2(1, 2).perpindicularRight(), {2, -1});
    still.rotateAround(0.0, Vec2(1e30, 7.0));
    EXPECT_TRUE(still.x == 0.1 && std::signbit(still.y)) << "no angle, no rounding";
}

TEST(Vec2, AnglesAndQuadrantsOfTheAxes) {
    for (const auto& [x, y, degrees, quadrant] : std::initializer_list<std::tuple<double, double, double, int>>{
             {0, 0, 0, 1}, {0, 2, 90, 1}, {-1, 0, 180, 2}, {0, -1, -90, 4}, {-1, -1, -135, 3}, {1, -1, -45, 4}}) {
        EXPECT_EQ(Vec2(x, y).getAngle(), degrees);
        EXPECT_EQ(Vec2(x, y).getQuadrant(), quadrant);
    }
}

TEST(Vec2, ZerosSignsAndRemainders) {
    double x = 1e-12, y = 0.0;
    Vec2::normalize(&x, &y);
    EXPECT_EQ(x, 1e-12) << "the static form leaves what is nearly zero";
    x = 3.0, y = -4.0;
    Vec2::normalize(&x, &y);
    EXPECT_EQ(y, -4.0 * (1.0 / 5.0));
    Vec2 v(3.0, -4.0);
    v.followSigns(Vec2(0.0, 1.0));
    expectValues(v, {-3.0, 4.0});
    v.fromArray(nullptr, 3);
    expectValues(v % Vec2(-2.0, 2.5), {-1.0, 1.5});
}

TEST(Vec2, MeasuresAgainstTheInfiniteLine) {
    Random random;
    for (int i = 0; i < 50; ++i) {
        Vec2 p = random.value<Vec2>();
        const Vec2 a = random.value<Vec2>(), b = random.value<Vec2>();
        const Eigen::Vector2d ea(a.x, a.y), ep(p.x, p.y);
        const auto line = Eigen::ParametrizedLine<double, 2>::Through(ea, {b.x, b.y});
        EXPECT_NEAR(p.distanceToLine(a, b), line.distance(ep), 1e-9);
        EXPECT_NEAR(p.lineProjectionLength(a, b), (line.projection(ep) - ea).norm(), 1e-9);
        EXPECT_NEAR((p - p.project(a)).dot(a), 0.0, 1e-13);
    }
    EXPECT_TRUE(std::isnan(Vec2(1, 2).distanceToLine(Vec2(3, 3), Vec2(3, 3))));
    expectValues(Vec2(1, 2).project(Vec2()), {0, 0});
}

TEST(Vec2, TolerancesOfTheOtherTests) {
    EXPECT_TRUE(Vec2::equalWithTolerance(0, 0, 0.3, 0.3, 0.5));
    EXPECT_FALSE(Vec2::equalWithTolerance(Vec2(), Vec2(3, 4), 5.0)) << "by distance, the bound excluded";
    EXPECT_TRUE(Vec2::isDuplicate(Vec2(), Vec2(-0.24, 0.24)) && !Vec2::isDuplicate(Vec2(), Vec2(0.25, 0)));
    EXPECT_TRUE(Vec2(0.9e-12, -0.9e-12).negligible() && Vec2(0.0, -1e-12).nonNegligible());
    EXPECT_TRUE(Vec2(1, 2).isCollinear(Vec2(-2, -4)) && !Vec2(1, 2).isCollinear(Vec2(2, 4 + 1e-10)));
    EXPECT_TRUE(Vec2(1, 1).isOrthogonal(Vec2(1, -1)) && !Vec2(1, 1).isOrthogonal(Vec2(1, 1)));
    EXPECT_TRUE(Vec2(1, 1).isOrthogonal(Vec2()) && Vec2(1, 1).isCollinear(Vec2()));
}

TEST(Vec2, SidesAndQuadrants) {
    const Vec2 a(0, 0), b(2, 0);
    EXPECT_EQ(Vec2::signedArea(a, b, Vec2(0, 3)), 6.0);
    EXPECT_TRUE(Vec2::intersecting(a, b, Vec2(5, 0), Vec2(5, 1))) << "on the line counts as not positive";
    EXPECT_FALSE(Vec2::intersecting(a, b, Vec2(5, 0), Vec2(5, -1)));
    for (const Vec2& opposite : {Vec2(-1, -1), Vec2(0, 0), Vec2(0, -1), Vec2(-1, 0)})
        EXPECT_TRUE(Vec2::oppositeQuadrant(Vec2(1, 1), opposite)) << testing::PrintToString(values(opposite));
    for (const Vec2& other : {Vec2(-1, 1), Vec2(1, 1), Vec2(1, -1), Vec2(0, 1), Vec2(1, 0)})
        EXPECT_FALSE(Vec2::oppositeQuadrant(Vec2(1, 1), other)) << testing::PrintToString(values(other));
    EXPECT_TRUE(Vec2::oppositeQuadrant(Vec2(1, 0), Vec2(-1, 0)) && Vec2::oppositeQuadrant(Vec2(0, 1), Vec2(0, -1)));
}

TEST(Vec2, AnchoringTurnsOnlyWhatPointsTheOtherWay) {
    const Vec2 a(0, 0), b(1, 0);
    Vec2 d(1, 2), across(0, 3);
    EXPECT_FALSE(Vec2::anchorInward(d, a, b));
    EXPECT_TRUE(Vec2::anchorOutward(d, a, b, false));
    expectValues(d, {-1, -2});
    EXPECT_FALSE(Vec2::anchorOutward(d, a, b, false));
    EXPECT_TRUE(Vec2::anchorInward(d, a, b));
    expectValues(d, {1, 2});
    EXPECT_FALSE(Vec2::anchorInward(across, a, b));
    EXPECT_TRUE(Vec2::anchorOutward(across, a, b, false)) << "at right angles counts as not outward";
}

TEST(Vec2, IntersectClassifiesTheMeeting) {
    constexpr double kUntouched = 77.0;
    // The first segment runs from (0, 0) to b.
    const auto check = [](Vec2 b, Vec2 c, Vec2 d, int code, Vec2 expected, double expectedU, double expectedV) {
        SCOPED_TRACE(code);
        Vec2 out(9, 9);
        double u = kUntouched, v = kUntouched;
        EXPECT_EQ(Vec2::intersect(Vec2(), b, c, d, out, &u, &v), code);
        EXPECT_EQ(Vec2::intersect(Vec2(), b, c, d, out, nullptr, nullptr), code);
        expectValues(out, values(expected));
        EXPECT_EQ(u, expectedU);
        EXPECT_EQ(v, expectedV);
    };
    check(Vec2(2, 2), Vec2(0, 2), Vec2(2, 0), 1, Vec2(1, 1), 0.5, 0.5);
    check(Vec2(2, 0), Vec2(2, -4), Vec2(2, 0), 1, Vec2(2, 0), 1.0, 1.0); // the ends belong to the segments
    check(Vec2(2, 0), Vec2(4, -1), Vec2(4, 3), 3, Vec2(4, 0), 2.0, 0.25);
    check(Vec2(4, 0), Vec2(1, 1), Vec2(1, 2), 4, Vec2(1, 0), 0.25, -1.0);
    check(Vec2(1, 0), Vec2(-1, 1), Vec2(-1, 2), 5, Vec2(-1, 0), -1.0, -1.0);
    check(Vec2(2, 2), Vec2(0, 1), Vec2(2, 3), 0, Vec2(0, 0), kUntouched, kUntouched);
    check(Vec2(2, 4), Vec2(5, 10), Vec2(6, 12), 2, Vec2(1, 2), kUntouched, kUntouched);
}

TEST(Vec2, OriginsMoveBetweenCentreAndTopLeft) {
    expectValues(Vec2::centerToTopLefetPoint(Vec2(10, 20), Vec2(100, 60)), {60, 10});
    expectValues(Vec2::topLeftToCenterPoint(Vec2(60, 10), Vec2(100, 60)), {10, 20});
}

} // namespace

} // namespace Ombrique::GaussianBlur
