#include "Tests/Shared/Math/MathTesting.h"

#include <Eigen/Geometry>

namespace Ombrique::GaussianBlur {
namespace {

TEST(Vec2, TurnsCounterClockwiseInDegrees) {
    Vec2 v(2.0, 0.0);
    v.rotate(90.0);
    expectNear(values(v), {0.0, 2.0}, 1e-12);
    EXPECT_EQ(v.x, 2.0 * std::cos(90.0 * 0.017453292519943)) << "the factor has fifteen decimals";
    expectNear(values(Vec2(3.0, 1.0).rotateRound(-90.0, Vec2(1.0, 1.0))), {1.0, -1.0}, 1e-12);
    v.setAngle(-30.0);
    expectNear(values(v), {std::sqrt(3.0), -1.0}, 1e-12);
    EXPECT_NEAR(Vec2(1, 1).angleBetween(Vec2(1, -1)), -90.0, 1e-12);

    Vec2 still(0.1, -0.0);
    still.rotateAround(0.0, Vec2(1e30, 7.0));
    EXPECT_EQ(still.x, 0.1);
    EXPECT_TRUE(std::signbit(still.y));
}

TEST(Vec2, AnglesAndQuadrantsOfTheAxes) {
    struct Row {
        Vec2 v;
        double degrees;
        int quadrant;
    };
    const Row rows[] = {{Vec2(), 0, 1},        {Vec2(3, 0), 0, 1},    {Vec2(0, 2), 90, 1},     {Vec2(-1, 0), 180, 2},
                        {Vec2(0, -1), -90, 4}, {Vec2(-1, 1), 135, 2}, {Vec2(-1, -1), -135, 3}, {Vec2(1, -1), -45, 4}};
    for (const auto& [v, degrees, quadrant] : rows) {
        EXPECT_EQ(v.getAngle(), degrees);
        EXPECT_EQ(v.getQuadrant(), quadrant);
    }
    expectValues(Vec2(1, 2).perpindicularLeft(), {-2, 1});
    expectValues(Vec2(1, 2).perpindicularRight(), {2, -1});
}

TEST(Vec2, StaticNormalizeLeavesTheNearlyZero) {
    double x = 1e-12, y = 0.0;
    Vec2::normalize(&x, &y);
    EXPECT_EQ(x, 1e-12);
    x = 3.0, y = -4.0;
    Vec2::normalize(&x, &y);
    EXPECT_EQ(x, 3.0 * (1.0 / 5.0));
    EXPECT_EQ(y, -4.0 * (1.0 / 5.0));
}

TEST(Vec2, SignsAndRemainders) {
    Vec2 v(3.0, -4.0);
    v.followSigns(Vec2(0.0, 1.0));
    expectValues(v, {-3.0, 4.0});
    expectValues(Vec2(-7.0, 7.5) % Vec2(4.0, -2.0), {-3.0, 1.5});
}

TEST(Vec2, MeasuresAgainstTheInfiniteLine) {
    Random random;
    for (int i = 0; i < 50; ++i) {
        Vec2 p = random.vec2();
        const Vec2 a = random.vec2(), b = random.vec2();
        const Eigen::Vector2d ea(a.x, a.y), eb(b.x, b.y), ep(p.x, p.y);
        const auto line = Eigen::ParametrizedLine<double, 2>::Through(ea, eb);
        EXPECT_NEAR(p.distanceToLine(a, b), line.distance(ep), 1e-9);
        EXPECT_NEAR(p.lineProjectionLength(a, b), (line.projection(ep) - ea).norm(), 1e-9);
        EXPECT_NEAR((p - p.project(a)).dot(a), 0.0, 1e-13);
    }
    EXPECT_TRUE(std::isnan(Vec2(1, 2).distanceToLine(Vec2(3, 3), Vec2(3, 3))));
    expectValues(Vec2(1, 2).project(Vec2()), {0, 0});
}

TEST(Vec2, ThreeKindsOfTolerance) {
    EXPECT_TRUE(Vec2::equalWithTolerance(0, 0, 0.3, 0.3, 0.5));
    EXPECT_FALSE(Vec2::equalWithTolerance(Vec2(), Vec2(3, 4), 5.0)) << "by distance, the bound excluded";
    EXPECT_FALSE(Vec2::isDuplicate(Vec2(), Vec2(0.25, 0)));
    EXPECT_TRUE(Vec2::isDuplicate(Vec2(), Vec2(-0.24, 0.24)));
    EXPECT_TRUE(Vec2(0.9e-12, -0.9e-12).negligible());
    EXPECT_TRUE(Vec2(0.0, -1e-12).nonNegligible());

    EXPECT_TRUE(Vec2(1, 2).isCollinear(Vec2(-2, -4)));
    EXPECT_FALSE(Vec2(1, 2).isCollinear(Vec2(2, 4 + 1e-10)));
    EXPECT_TRUE(Vec2(1, 1).isOrthogonal(Vec2(1, -1)));
    EXPECT_FALSE(Vec2(1, 1).isOrthogonal(Vec2(1, 1)));
    EXPECT_TRUE(Vec2(1, 1).isOrthogonal(Vec2()) && Vec2(1, 1).isCollinear(Vec2()));
}

TEST(Vec2, SidesAndQuadrants) {
    const Vec2 a(0, 0), b(2, 0);
    EXPECT_GT(Vec2::signedArea(a, b, Vec2(0, 1)), 0.0);
    EXPECT_TRUE(Vec2::intersecting(a, b, Vec2(5, 0), Vec2(5, 1))) << "on the line counts as not positive";
    EXPECT_FALSE(Vec2::intersecting(a, b, Vec2(5, 0), Vec2(5, -1)));

    struct Row {
        Vec2 a, b;
        bool expected;
    };
    const Row rows[] = {{Vec2(1, 1), Vec2(-1, -1), true}, {Vec2(1, 1), Vec2(-1, 1), false},
                        {Vec2(), Vec2(), false},          {Vec2(), Vec2(1, 1), true},
                        {Vec2(1, 0), Vec2(-1, 0), true},  {Vec2(0, 1), Vec2(0, -1), true},
                        {Vec2(1, 1), Vec2(1, -1), false}, {Vec2(0, 1), Vec2(1, 1), false}};
    for (const Row& row : rows)
        EXPECT_EQ(Vec2::oppositeQuadrant(row.a, row.b), row.expected)
            << testing::PrintToString(values(row.a)) << testing::PrintToString(values(row.b));
}

TEST(Vec2, AnchoringTurnsOnlyWhatPointsTheOtherWay) {
    const Vec2 a(0, 0), b(1, 0);
    Vec2 d(1, 2), across(0, 3);
    EXPECT_FALSE(Vec2::anchorInward(d, a, b));
    EXPECT_TRUE(Vec2::anchorOutward(d, a, b, false));
    expectValues(d, {-1, -2});
    EXPECT_FALSE(Vec2::anchorOutward(d, a, b, false));
    EXPECT_TRUE(Vec2::anchorOutwardD(d, a, b));
    EXPECT_TRUE(Vec2::anchorInward(d, a, b));
    expectValues(d, {1, 2});
    EXPECT_FALSE(Vec2::anchorInward(across, a, b));
    EXPECT_TRUE(Vec2::anchorOutward(across, a, b, false)) << "at right angles counts as not outward";
}

TEST(Vec2, IntersectClassifiesTheMeeting) {
    struct Row {
        const char* name;
        Vec2 a, b, c, d;
        int code;
        std::vector<double> out;
        double u, v;
    };
    const double kUntouched = 77.0;
    const Row rows[] = {
        {"cross", Vec2(0, 0), Vec2(2, 2), Vec2(0, 2), Vec2(2, 0), 1, {1, 1}, 0.5, 0.5},
        {"meet at an end", Vec2(0, 0), Vec2(2, 0), Vec2(2, -1), Vec2(2, 3), 1, {2, 0}, 1.0, 0.25},
        {"outside the first", Vec2(0, 0), Vec2(2, 0), Vec2(4, -1), Vec2(4, 3), 3, {4, 0}, 2.0, 0.25},
        {"outside the second", Vec2(0, 0), Vec2(4, 0), Vec2(1, 1), Vec2(1, 2), 4, {1, 0}, 0.25, -1.0},
        {"outside both", Vec2(0, 0), Vec2(1, 0), Vec2(-1, 1), Vec2(-1, 2), 5, {-1, 0}, -1.0, -1.0},
        {"parallel", Vec2(0, 0), Vec2(2, 2), Vec2(0, 1), Vec2(2, 3), 0, {0, 0}, kUntouched, kUntouched},
        {"one line", Vec2(0, 0), Vec2(2, 4), Vec2(5, 10), Vec2(6, 12), 2, {1, 2}, kUntouched, kUntouched},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        Vec2 out(9, 9);
        double u = kUntouched, v = kUntouched;
        EXPECT_EQ(Vec2::intersect(row.a, row.b, row.c, row.d, out, &u, &v), row.code);
        expectValues(out, row.out);
        EXPECT_EQ(u, row.u);
        EXPECT_EQ(v, row.v);
        EXPECT_EQ(Vec2::intersect(row.a, row.b, row.c, row.d, out, nullptr, nullptr), row.code);
    }
}

TEST(Vec2, OriginsMoveBetweenCentreAndTopLeft) {
    const Vec2 size(100, 60);
    expectValues(Vec2::centerToTopLefetPoint(Vec2(10, 20), size), {60, 10});
    expectValues(Vec2::topLeftToCenterPoint(Vec2(60, 10), size), {10, 20});
    Vec2 kept(1, 2);
    kept.fromArray(nullptr, 3);
    expectValues(kept, {1, 2});
}

} // namespace
} // namespace Ombrique::GaussianBlur
