// Color, and Barycentric, which takes it for a vector.

#include "Plugins/Shared/Math/Barycentric.h"
#include "Tests/Shared/Math/MathTesting.h"

namespace Ombrique::GaussianBlur {

namespace {

TEST(Color, ReadsHexadecimalText) {
    const double half = 0.501960813999176; // 128 / 255 in single precision
    const std::pair<const char*, Color> rows[] = {
        {"#F00", {1, 0, 0, 1}},
        {"#8F00", {1, 0, 0, 0.5333333611488342}},
        {"#ff8001", {1, half, 1.0f / 255.0f, 1}},
        {"#80FF0001", {1, 0, 1.0f / 255.0f, half}},
        {"#12G", {0, 1.0f / 15.0f, 2.0f / 15.0f, 1}},
        {"#0xF", {0, 0, 1, 1}},
    };
    for (const auto& [text, expected] : rows)
        expect(text, Color(text), expected);
    for (const char* text : {"FF0000", " #FF0000", "#1", "#12345", "#1234567", "#123456789", ""})
        expect(text, Color(text), {1, 1, 1, 1});
    for (const char* text : {"#", "#XYZ", "#nonsense"})
        EXPECT_THROW(Color{text}, std::invalid_argument) << text;
    EXPECT_THROW(Color("#12345678123456781"), std::out_of_range);
    expect("packed", {Color(0x80FF0001U), Color(0U)}, {1, 0, 1.0f / 255.0f, half, 0, 0, 0, 0});
}

TEST(Color, WritesHexadecimalText) {
    std::pair<Color, const char*> rows[] = {{Color(), "#FFFFFF"},
                                            {{0, 0, 0, 1}, "#000"},
                                            {{1, 0, 0, 0.5}, "#7FFF00"},
                                            {{0, 0.5, 1, 1}, "#07FFF"},
                                            {{0.999, 16.0 / 255.0, 15.9 / 255.0, 1}, "#FE10F"},
                                            {{4, -1, kNaN, 1e300}, "#FFFFFFFF3FC00"}};
    for (auto& [color, expected] : rows)
        EXPECT_EQ(color.toHexString(), expected);
    EXPECT_TRUE(Color(Color(0x7F336699U).toHexString()) == Color(0x7F336699U));
}

TEST(Color, NilColoursAreEqualToOneAnother) {
    const Color nil = after(Color(), &Color::setNil);
    EXPECT_FALSE(Color().isNil() || nil == Color());
    for (const std::size_t i : {0, 1, 2, 3}) {
        EXPECT_TRUE(single<Color>(i, -0.0001).isNil() && nil == single<Color>(i, -2)) << i;
        EXPECT_FALSE(single<Color>(i, 0).isNil() || single<Color>(i, kNaN).isNil()) << i;
    }
}

TEST(Color, ArithmeticCountsAlphaToo) {
    const Color from(0, 1, 2, 0.5), to(1, 3, -2, 1);
    expect("sums", {from - to, from + to}, {-1, -2, 4, -0.5, 1, 4, 0, 1.5});
    expect("products", {from * to, to * 0.5}, {0, 3, -4, 0.5, 0.5, 1.5, -1, 0.5});
    expect("lerp", Color::lerp(from, to, 0.25), {0.25, 1.5, 1, 0.625});
    expect("lerp beyond the ends", {Color::lerp(from, to, 2.0), Color::lerp(from, to, -1.0)}, {to, from});
    expect("the complement alone is rounded", Color::lerp(Color(), Color(), 0.1).red, 0.9999999761581421);
}

TEST(Barycentric, CornersAndEdgesAreInside) {
    const Vec2 a(1, 1), b(5, 1), c(1, 4);
    for (const Vec2& p : {a, b, c, Vec2(3, 1), Vec2(1, 2), Vec2(3, 2.5), Vec2(2, 2)})
        EXPECT_TRUE(Barycentric(a, b, c, p).isInside()) << p.x;
    for (const Vec2& p : {Vec2(0.9, 2), Vec2(3, 0.9), Vec2(4, 3)})
        EXPECT_FALSE(Barycentric(a, b, c, p).isInside()) << p.x;
    EXPECT_FALSE(Barycentric(a, b, Vec2(9, 1), a).isInside()) << "corners on one line";
    EXPECT_FALSE(Barycentric(2, 0, 0).isInside() || Barycentric(0, 2, 0).isInside());
    EXPECT_TRUE(Barycentric(0.5, 0.5, 7).isInside()) << "w has no upper bound";
}

TEST(Barycentric, WeightsGiveThePointBackInEveryType) {
    // A point of the triangle's plane, and one away from the plane by a vector at right angles to it.
    const auto check = [](const auto& a, const auto& b, const auto& c, const auto& away) {
        const auto p = a * 0.5 + b * -0.75 + c * 1.25;
        expect("weights", Barycentric(a, b, c, p), {0.5, -0.75, 1.25}, 1e-12);
        expect("interpolate", Barycentric(a, b, c, p).interpolate(a, b, c), p, 1e-12);
        expect("projection", Barycentric(a, b, c, p + away), {0.5, -0.75, 1.25}, 1e-12);
    };
    Random random;
    const Vec3 a = random.value<Vec3>(), b = random.value<Vec3>(), c = random.value<Vec3>();
    const Vec3 normal = (b - a).cross(c - a);
    const auto color = [](const Vec3& v, double alpha) { return Color(v.x, v.y, v.z, alpha); };
    check(a.getVec2(), b.getVec2(), c.getVec2(), Vec2());
    check(a, b, c, normal);
    check(Vec4(a, 2), Vec4(b, 2), Vec4(c, 2), Vec4(normal, -5));
    check(color(a, 2), color(b, 2), color(c, 2), color(normal, -5));
    const Color opaque(0, 0, 0, 1), clear(0, 0, 0, 0), red(1, 0, 0, 0);
    expect("alpha counts", Barycentric(opaque, clear, red, opaque), {1, 0, 0});
}

} // namespace

} // namespace Ombrique::GaussianBlur
