// Box3, Rect and Range.

#include "Plugins/Shared/Math/Box3.h"
#include "Plugins/Shared/Math/Range.h"
#include "Plugins/Shared/Math/Rect.h"
#include "Tests/Shared/Math/MathTesting.h"

namespace Ombrique::GaussianBlur {

namespace {

const Box3 kUnit(Vec3(0), Vec3(1)), kSlab(Vec3(1, 20, 300), Vec3(2, 22, 303));

TEST(Box3, HoldsJustThePointsThatExpandedIt) {
    Vec3 points[] = {Vec3(-1, -2, -6), Vec3(-4, -5, -3), Vec3(-2, -6, -4)};
    float numbers[] = {-1, -2, -6, -4, -5, -3, -2, -6, -4};
    const Box3 bounds(Vec3(-4, -6, -6), Vec3(-1, -2, -3)), first(points[0], points[0]);
    expect("empty", Box3(), {Vec3(1.7976931348623157e308), Vec3(-1.7976931348623157e308)});
    expect("setFromPoints", after(kUnit, &Box3::setFromPoints, points, 3), bounds);
    expect("setFromPoints of a negative count", after(kUnit, &Box3::setFromPoints, points, -5), first);
    expect("of null", after(kUnit, &Box3::setFromPoints, nullptr, 2), Box3());
    expect("of none", {after(kUnit, &Box3::setFromPoints, points, 0), after(kUnit, &Box3::setFromArray, numbers, 0)},
           {Box3(), Box3()});
    expect("setFromArray", after(kUnit, &Box3::setFromArray, numbers, 9), bounds);
    expect("expandByPoint of the empty box", after(Box3(), &Box3::expandByPoint, points[0]), first);
}

TEST(Box3, FacesMoveAndPointsAreMeasured) {
    const double step = 0.10000000149011612;
    expect("expandByScalar", after(kUnit, &Box3::expandByScalar, 0.1f), {Vec3(-step), Vec3(1 + step)});
    Box3 box = after(kUnit, &Box3::setFromCenterAndSize, Vec3(2, 3, 5), Vec3(2, 4, 8));
    expect("setFromCenterAndSize", box, {1, 1, 1, 3, 5, 9});
    expect("expandByVector", after(box, &Box3::expandByVector, Vec3(1, 0, -5)), {0, 1, 6, 4, 5, 4});
    expect("translate", after(box, &Box3::translate, Vec3(1, 2, 3)), {2, 3, 4, 4, 7, 12});
    expect("centre and size", {box.getCenter(), box.getSize()}, {2, 3, 5, 2, 4, 8});
    expect("getParameter", box.getParameter(Vec3(2, 2, 11)), {0.5, 0.25, 1.25});
    expect("clampPoint", box.clampPoint(Vec3(-1, 2, 10)), {1, 2, 9});
    expect("distanceToPoint", {box.distanceToPoint(Vec3(6, 9, 4)), box.distanceToPoint(Vec3(2))}, {5, 0});
}

TEST(Box3, FacesBelongToTheBoxOnEachAxis) {
    EXPECT_TRUE(Box3(Vec3(0), Vec3(0)).isEmpty());
    EXPECT_FALSE(Box3(Vec3(2), Vec3(2)).isEmpty() || Box3(Vec3(-1), Vec3(0)).isEmpty() || kUnit.isEmpty());
    EXPECT_TRUE(kUnit.containsPoint(Vec3(kNaN)) && kUnit.intersectsBox(Box3(Vec3(kNaN), Vec3(kNaN))));
    EXPECT_TRUE(kUnit.containsBox(kUnit) && !kUnit.containsBox(Box3(Vec3(0), Vec3(1, 1, kNaN))));
    for (int axis = 0; axis < 3; ++axis) {
        SCOPED_TRACE(axis);
        EXPECT_TRUE(Box3(single<Vec3>(axis, 0.1), Vec3(1) - single<Vec3>(axis, 1)).isEmpty());
        for (const double side : {-1.0, 1.0}) {
            const Vec3 size = kSlab.getSize() * single<Vec3>(axis, side);
            const auto moved = [&](double by) { return after(kSlab, &Box3::translate, size * by); };
            EXPECT_TRUE(kSlab.intersectsBox(moved(1.0)) && !kSlab.intersectsBox(moved(1.1)));
            EXPECT_TRUE(kSlab.containsPoint(moved(0.5).getCenter()) && !kSlab.containsPoint(moved(0.6).getCenter()));
            EXPECT_FALSE(kSlab.containsBox(moved(0.1)));
            expect("disjoint", after(kSlab, &Box3::intersects, moved(1.1)), Box3());
        }
    }
}

TEST(Box3, IntersectionAndUnion) {
    const Box3 beside(Vec3(1, 0, -1), Vec3(2, 1, 0.5)), below(Vec3(-1), Vec3(0));
    expect("intersects", after(kUnit, &Box3::intersects, beside), {1, 0, 0, 1, 1, 0.5});
    expect("intersects in the origin", after(below, &Box3::intersects, kUnit), Box3());
    expect("unionBox of the empty box", after(kUnit, &Box3::unionBox, Box3()), kUnit);
    expect("unionBox", after(kUnit, &Box3::unionBox, beside), {0, 0, -1, 2, 1, 1});
}

TEST(Rect, SettersMoveOrResize) {
    const Rect rect(Vec2(5, 6), Vec2(10, 20));
    expect("left, top", {after(rect, &Rect::setLeft, 0), after(rect, &Rect::setTop, 1)}, {0, 6, 10, 20, 5, 1, 10, 20});
    expect("setRight", after(rect, &Rect::setRight, 20), {5, 6, 15, 20});
    expect("setBottom", after(rect, &Rect::setBottom, 6.1), {5, 6, 10, 6.0999999046325684 - 6});
    expect("setPoint", after(rect, &Rect::setPoint, Vec2(1, 2)), {1, 2, 10, 20});
    expect("setSize", after(rect, &Rect::setSize, Vec2(1, 2)), {5, 6, 1, 2});
    expect("setCenter", after(rect, &Rect::setCenter, Vec2(1, 2)), {-4, -8, 10, 20});
    expect("setCenterX", after(rect, &Rect::setCenterX, 1), {-4, 6, 10, 20});
    expect("setCenterY", after(rect, &Rect::setCenterY, 2), {5, -8, 10, 20});
    expect("include", {after(rect, &Rect::include, Vec2(50, -1)), after(rect, &Rect::include, Vec2(6, 7))},
           {5, -1, 45, 27, rect});
    expect("corners", {rect.getTopRight(), rect.getBottomLeft(), rect.getBottomRight()}, {15, 6, 5, 26, 15, 26});
    expect("centre and area", {rect.getCenter(), rect.getArea()}, {10, 16, 200});
}

TEST(Rect, EdgesCountForContainingAndTouchingButNotForIntersecting) {
    const Rect unit(0, 0, 1, 1);
    EXPECT_TRUE(unit.containsPoint({1, 1}) && unit.containsPoint({0, 0}) && unit.containsRect(unit));
    EXPECT_FALSE(unit.containsPoint({0.5, kNaN}) || Rect(0, 0, 0, 5).isEmpty() || Rect(0, 0, 5, 0).isEmpty());
    EXPECT_TRUE(Rect().isEmpty());
    for (const Vec2& side : {Vec2(1, 0), Vec2(-1, 0), Vec2(0, 1), Vec2(0, -1), Vec2(1, 1)}) {
        SCOPED_TRACE(testing::PrintToString(Numbers(side)));
        const auto neighbour = [&](double distance) { return Rect(side * distance, Vec2(1, 1)); };
        EXPECT_TRUE(unit.touches(neighbour(1.0)) && !unit.touches(neighbour(1.1)));
        EXPECT_TRUE(unit.intersects(neighbour(0.9)) && !unit.intersects(neighbour(1.0)));
        EXPECT_FALSE(unit.containsRect(neighbour(0.1)) || unit.containsPoint(neighbour(0.6).getCenter()));
    }
}

TEST(Rect, NewRectangles) {
    const double step = 0.10000000149011612;
    Rect unit(0, 0, 1, 1), wide(0, 0, 2, 4), askew(1, 2, 5, 1);
    expect("intersect", askew.intersect({2, 0, 1, 8}), {2, 2, 1, 1});
    expect("intersect of disjoint ones", unit.intersect({2, 0, 1, 1}), {2, 0, -1, 1});
    expect("unite", askew.unite({2, 0, 1, 8}), {1, 0, 5, 8});
    expect("expand", wide.expand({1, -3}), {-1, 3, 4, -2});
    expect("expand by a number", unit.expand(0.1f), {-step, -step, 1 + 2 * step, 1 + 2 * step});
    expect("scale", wide.scale(2.0f, 0.5f), {-2, 2, 6, 0});
}

TEST(Range, ConstructorsTellFlagsFromNumbers) {
    EXPECT_TRUE(Range(true).first == 0 && Range(true).second == 2147483647 && Range(false).second == 0);
    EXPECT_TRUE(Range(7).first == 7 && Range(7).second == 0 && Range(3, 9).second == 9);
}

} // namespace

} // namespace Ombrique::GaussianBlur
