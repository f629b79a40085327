#include "Plugins/Shared/Math/Barycentric.h"

#include "Tests/Shared/Math/MathTesting.h"

namespace Ombrique::GaussianBlur {

namespace {

TEST(Barycentric, CornersAndEdgesAreInside) {
    const Vec2 a(1, 1), b(5, 1), c(1, 4);
    expectValues(Barycentric(a, b, c, a), {1, 0, 0});
    expectValues(Barycentric(a, b, c, b), {0, 1, 0});
    expectValues(Barycentric(a, b, c, c), {0, 0, 1});
    for (const Vec2& p : {a, b, c, Vec2(3, 1)})
        EXPECT_TRUE(Barycentric(a, b, c, p).isInside());
    for (const Vec2& p : {Vec2(0.9, 2), Vec2(3, 0.9), Vec2(4, 3)})
        EXPECT_FALSE(Barycentric(a, b, c, p).isInside());
    EXPECT_FALSE(Barycentric(a, b, Vec2(9, 1), a).isInside()) << "corners on one line";
    EXPECT_FALSE(Barycentric(2, 0, 0).isInside());
    EXPECT_TRUE(Barycentric(0.5, 0.5, 7).isInside()) << "w has no upper bound";
}

TEST(Barycentric, WeightsGiveThePointBackInEveryType) {
    Random random;
    const Vec2 a2 = random.value<Vec2>(), b2 = random.value<Vec2>(), c2 = random.value<Vec2>(),
               p2 = random.value<Vec2>();
    expectNear(values(Barycentric(a2, b2, c2, p2).interpolate(a2, b2, c2)), values(p2), 1e-12);

    const auto checkProjection = [&](const auto& a, const auto& b, const auto& c, const auto& away) {
        const auto p = a * 0.5 + b * -0.75 + c * 1.25;
        expectNear(values(Barycentric(a, b, c, p)), {0.5, -0.75, 1.25}, 1e-12);
        expectNear(values(Barycentric(a, b, c, p).interpolate(a, b, c)), values(p), 1e-12);
        expectNear(values(Barycentric(a, b, c, p + away)), {0.5, -0.75, 1.25}, 1e-12);
    };
    const Vec3 a = random.value<Vec3>(), b = random.value<Vec3>(), c = random.value<Vec3>();
    const Vec3 normal = (b - a).cross(c - a);
    checkProjection(a, b, c, normal);
    checkProjection(Vec4(a, 2), Vec4(b, 2), Vec4(c, 2), Vec4(normal, -5));
    const auto color = [](const Vec3& v, double alpha) { return Color(v.x, v.y, v.z, alpha); };
    checkProjection(color(a, 2), color(b, 2), color(c, 2), color(normal, -5));
    const Color opaque(0, 0, 0, 1), clear(0, 0, 0, 0), red(1, 0, 0, 0);
    expectValues(Barycentric(opaque, clear, red, opaque), {1, 0, 0});
}

} // namespace

} // namespace Ombrique::GaussianBlur
