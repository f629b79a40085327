#include "Plugins/Shared/Math/Affine.h"

#include "Tests/Shared/Math/MathTesting.h"

namespace Ombrique::GaussianBlur {

namespace {

TEST(Affine, ArgumentsRunByColumnAndStorageByRow) {
    const Affine a(1, 2, 3, 4, 5, 6);
    expectValues(a, {1, 3, 5, 2, 4, 6});
    expectValues(a.getTransform(Vec2(1, 0)), {6, 8});
    double x = 1, y = 1;
    a.transform(x, y);
    EXPECT_EQ(x, 9);
    EXPECT_EQ(y, 12);
    expectValues(Affine(false), {0, 0, 0, 0, 0, 0});
}

TEST(Affine, ProductsActOnTheirOwnSide) {
    Random random;
    const Affine t = random.value<Affine>(), a = random.value<Affine>();
    const Vec2 p = random.value<Vec2>();
    Affine after = t, before = t, squared = t;
    after.multiply(a);
    before.premultiply(a);
    squared.multiply(squared);
    expectNear(values(after.getTransform(p)), values(a.getTransform(t.getTransform(p))), 1e-13);
    expectNear(values(before.getTransform(p)), values(t.getTransform(a.getTransform(p))), 1e-13);
    expectNear(values(squared.getTransform(p)), values(t.getTransform(t.getTransform(p))), 1e-13);
}

TEST(Affine, VerbsActBeforeWhatStoodThere) {
    const double tangent = std::tan(30.0 * kRadiansPerDegree);
    // (2, 3) goes through the verb first, then to (-y, x + 10).
    const auto check = [](void (*verb)(Affine&), double x, double y) {
        Affine t(0, 1, -1, 0, 0, 10);
        verb(t);
        expectNear(values(t.getTransform(Vec2(2, 3))), {x, y}, 1e-12);
    };
    check([](Affine& t) { t.translate(1, 0); }, -3, 13);
    check([](Affine& t) { t.scale(2, 5); }, -15, 14);
    check([](Affine& t) { t.skewX(30); }, -3, 12 + 3 * tangent);
    check([](Affine& t) { t.skewY(30); }, -3 - 2 * tangent, 12);
    check([](Affine& t) { t.rotate(90); }, -2, 7);
    Affine quarter(true);
    quarter.setRotate(90.0);
    EXPECT_NEAR(quarter.m[0], 2.6e-14, 1e-15) << "the factor has fifteen decimals";
}

TEST(Affine, LayerTransformPutsTheAnchorOnThePosition) {
    Affine layer(false);
    layer.set(Vec2(10, 20), Vec2(7, -5), Vec2(2, 3), 90.0);
    expectNear(values(layer.getTransform(Vec2(10, 20))), {7, -5}, 1e-11);
    expectNear(values(layer.getTransform(Vec2(11, 22))), {1, -3}, 1e-11);
    layer.set(Vec2(10, 20), Vec2(10, 20), Vec2(1, 1), 0.0);
    expectValues(layer, values(Affine(true)));
}

TEST(Affine, InverseUndoesAndSingularIsLeftAlone) {
    Random random;
    Affine t = random.value<Affine>();
    const Vec2 p = random.value<Vec2>();
    expectNear(values(t.getInverse().getTransform(t.getTransform(p))), values(p), 1e-12);
    const Affine expected = t.getInverse();
    EXPECT_TRUE(t.inverse(t));
    expectValues(t, values(expected));

    Affine kept(1, 2, 3, 4, 5, 6);
    EXPECT_FALSE(Affine(1e-4, 0, 0, 1e-3, 0, 0).inverse(kept));
    expectValues(kept, {1, 3, 5, 2, 4, 6});
    EXPECT_TRUE(Affine(1e-6, 0, 0, -1, 0, 0).inverse(kept)) << "the bounds themselves aren't singular";
    EXPECT_TRUE(Affine(kNaN, 0, 0, 1, 0, 0).inverse(kept));
    expectValues(Affine(false).getInverse(), values(Affine(true)));
}

TEST(Affine, AverageScaleIsRoundedInSinglePrecision) {
    EXPECT_EQ(Affine(1.23456, 0, 0, 1.23456, 9, 9).averageScale(), 1.2345999479293823);
    EXPECT_EQ(Affine(3, 0, 4, 2, 9, 9).averageScale(), 3.5) << "over the rows, not the columns";
}

} // namespace

} // namespace Ombrique::GaussianBlur
