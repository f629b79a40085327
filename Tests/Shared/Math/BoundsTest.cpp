// Box3, Rect and Range.

#include "Plugins/Shared/Math/Box3.h"
#include "Plugins/Shared/Math/Range.h"
#include "Plugins/Shared/Math/Rect.h"
#include "Tests/Shared/Math/MathTesting.h"

namespace Ombrique::GaussianBlur {

namespace {

const Box3 kUnit(Vec3(0), Vec3(1));

TEST(Box3, HoldsJustThePointsThatExpandedIt) {
    Vec3 points[] = {Vec3(-1, -2, -6), Vec3(-4, -5, -3)};
    float numbers[] = {-1, -2, -6, -4, -5, -3};
    const std::vector<double> expected = {-4, -5, -6, -1, -2, -3};
    Box3 box = kUnit;
    box.setFromPoints(points, 2);
    expectValues(box, expected);
    box = kUnit;
    box.setFromArray(numbers, 6);
    expectValues(box, expected);
    box.setFromPoints(points, -5);
    expectValues(box, {-1, -2, -6, -1, -2, -6});
    box.setFromPoints(nullptr, 2);
    EXPECT_TRUE(box == Box3() && box.isEmpty());
    box.expandByPoint(Vec3(1, 2, 3));
    expectValues(box, {1, 2, 3, 1, 2, 3});
    box.setFromPoints(points, 0);
    EXPECT_TRUE(box == Box3());
    box = kUnit;
    box.setFromArray(numbers, 0);
    EXPECT_TRUE(box == Box3());
}

TEST(Box3, EmptyIsInsideOutOrTheOrigin) {
    EXPECT_TRUE(Box3(Vec3(0), Vec3(0)).isEmpty());
    EXPECT_FALSE(Box3(Vec3(2), Vec3(2)).isEmpty());
    EXPECT_TRUE(Box3(Vec3(0, 0, 1), Vec3(1, 1, 0)).isEmpty());
}

TEST(Box3, FacesMoveOutward) {
    Box3 box = kUnit;
    box.expandByScalar(0.1F);
    const double step = 0.10000000149011612;
    expectValues(box, {-step, -step, -step, 1 + step, 1 + step, 1 + step});
    box.setFromCenterAndSize(Vec3(1, 2, 3), Vec3(2, 4, 6));
    box.expandByVector(Vec3(1, 0, -4));
    expectValues(box, {-1, 0, 4, 3, 4, 2});
    EXPECT_TRUE(box.isEmpty());
}

TEST(Box3, FacesBelongToTheBoxAndNaNIsNotOutside) {
    EXPECT_TRUE(kUnit.containsPoint(Vec3(0, 1, 0.5)));
    EXPECT_FALSE(kUnit.containsPoint(Vec3(0, 1, 1.1)));
    EXPECT_TRUE(kUnit.containsPoint(Vec3(kNaN)));
    EXPECT_TRUE(kUnit.containsBox(kUnit));
    EXPECT_FALSE(kUnit.containsBox(Box3(Vec3(0), Vec3(1, 1, 2))));
    EXPECT_FALSE(kUnit.containsBox(Box3(Vec3(0), Vec3(1, 1, kNaN))));
    EXPECT_TRUE(kUnit.intersectsBox(Box3(Vec3(1, 0, 0), Vec3(2, 1, 1))));
    EXPECT_FALSE(kUnit.intersectsBox(Box3(Vec3(0, 0, 1.1), Vec3(1, 1, 2))));
    EXPECT_TRUE(kUnit.intersectsBox(Box3(Vec3(kNaN), Vec3(kNaN))));
}

TEST(Box3, MeasuresPoints) {
    Box3 box(Vec3(0), Vec3(2, 4, 8));
    expectValues(box.getParameter(Vec3(1, 1, 10)), {0.5, 0.25, 1.25});
    expectValues(box.clampPoint(Vec3(-1, 2, 9)), {0, 2, 8});
    EXPECT_EQ(box.distanceToPoint(Vec3(5, 8, 4)), 5.0);
    EXPECT_EQ(box.distanceToPoint(Vec3(1)), 0.0);
}

TEST(Box3, IntersectionAndUnion) {
    Box3 touching = kUnit, disjoint = kUnit, origin(Vec3(-1), Vec3(0)), united = kUnit;
    touching.intersects(Box3(Vec3(1, 0, 0), Vec3(2, 1, 1)));
    expectValues(touching, {1, 0, 0, 1, 1, 1});
    disjoint.intersects(Box3(Vec3(2, 0, 0), Vec3(3, 1, 1)));
    origin.intersects(kUnit);
    EXPECT_TRUE(disjoint == Box3() && origin == Box3());
    united.unionBox(Box3());
    expectValues(united, values(kUnit));
    united.unionBox(Box3(Vec3(-1, 0.5, 0), Vec3(0, 0.5, 3)));
    expectValues(united, {-1, 0, 0, 1, 1, 3});
    united.translate(Vec3(1, 2, 3));
    expectValues(united, {0, 2, 3, 2, 3, 6});
}

TEST(Rect, SettersMoveOrResize) {
    const auto check = [](void (*change)(Rect&), const Rect& expected) {
        Rect rect(Vec2(5, 6), Vec2(10, 20));
        change(rect);
        expectValues(rect, values(expected));
    };
    check([](Rect& r) { r.setLeft(0), r.setTop(1); }, Rect(0, 1, 10, 20));
    check([](Rect& r) { r.setRight(20); }, Rect(5, 6, 15, 20));
    check([](Rect& r) { r.setBottom(6.1F); }, Rect(5, 6, 10, 6.0999999046325684 - 6));
    check([](Rect& r) { r.setPoint(Vec2(1, 2)); }, Rect(1, 2, 10, 20));
    check([](Rect& r) { r.setSize(Vec2(1, 2)); }, Rect(5, 6, 1, 2));
    check([](Rect& r) { r.setCenterX(0), r.setCenterY(0); }, Rect(-5, -10, 10, 20));
    check([](Rect& r) { r.setCenter(Vec2(1, 2)); }, Rect(-4, -8, 10, 20));
    check([](Rect& r) { r.include(Vec2(50, -1)), r.include(Vec2(6, 7)); }, Rect(5, -1, 45, 27));
    const Rect rect(5, 6, 10, 20);
    EXPECT_EQ(std::tuple(rect.getRight(), rect.getBottom(), rect.getCenterX(), rect.getCenterY()),
              std::tuple(15, 26, 10, 16));
}

TEST(Rect, EdgesCountForContainingAndTouchingButNotForIntersecting) {
    const Rect unit(0, 0, 1, 1);
    EXPECT_TRUE(unit.containsPoint(Vec2(1, 1)) && unit.containsPoint(Vec2(0, 0)));
    EXPECT_FALSE(unit.containsPoint(Vec2(1.1, 1)) || unit.containsPoint(Vec2(0.5, kNaN)));
    EXPECT_TRUE(unit.containsRect(unit));
    EXPECT_FALSE(unit.containsRect(Rect(0.5, 0, 0.6, 1)));
    for (const Rect& neighbour : {Rect(1, 0, 1, 1), Rect(1, 1, 1, 1), Rect(0, -1, 1, 1)}) {
        EXPECT_FALSE(unit.intersects(neighbour));
        EXPECT_TRUE(unit.touches(neighbour));
    }
    EXPECT_TRUE(unit.intersects(Rect(0.9, 0.9, 1, 1)));
    EXPECT_FALSE(unit.touches(Rect(1.1, 0, 1, 1)));
    EXPECT_TRUE(Rect().isEmpty());
    EXPECT_FALSE(Rect(0, 0, 0, 5).isEmpty() || Rect(0, 0, 5, 0).isEmpty());
    EXPECT_TRUE(unit == Rect(0, 0, 1, 1 + 1e-13) && unit != Rect(0, 0, 1, 1 + 1e-11));
}

TEST(Rect, NewRectangles) {
    Rect unit(0, 0, 1, 1), wide(0, 0, 2, 4);
    expectValues(unit.intersect(Rect(2, 0, 1, 1)), {2, 0, -1, 1});
    expectValues(unit.unite(Rect(2, 2, 1, 1)), {0, 0, 3, 3});
    expectValues(wide.expand(Vec2(1, -3)), {-1, 3, 4, -2});
    expectValues(unit.expand(0.1F), {-0.10000000149011612, -0.10000000149011612, 1 + 2 * 0.10000000149011612,
                                     1 + 2 * 0.10000000149011612});
    expectValues(wide.scale(2.0F, 0.5F), {-2, 2, 6, 0});
}

TEST(Range, ConstructorsTellFlagsFromNumbers) {
    EXPECT_EQ(Range(true).second, 2147483647);
    EXPECT_EQ(Range(false).second, 0);
    EXPECT_EQ(Range(7).first, 7);
    EXPECT_EQ(Range(7).second, 0);
}

} // namespace

} // namespace Ombrique::GaussianBlur
