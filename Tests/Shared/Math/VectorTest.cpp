// Vec2, Vec3 and Vec4, and the comparisons of all types.

#include "Plugins/Shared/Math/Box3.h"
#include "Plugins/Shared/Math/Color.h"
#include "Plugins/Shared/Math/Rect.h"
#include "Tests/Shared/Math/MathTesting.h"

namespace Ombrique::GaussianBlur {

namespace {

template <typename Value> class ComparedByElement : public testing::Test {};
using ComparedValues = testing::Types<Vec2, Vec3, Mat4, Affine, Box3, Rect, Color>;
TYPED_TEST_SUITE(ComparedByElement, ComparedValues);

TYPED_TEST(ComparedByElement, WithTheBoundIncluded) {
    TypeParam zero = single<TypeParam>(0, 0);
    for (std::size_t i = 0; i < count<TypeParam>(); ++i) {
        EXPECT_TRUE(zero == single<TypeParam>(i, 1e-12) && !(zero != single<TypeParam>(i, -1e-12))) << i;
        for (const double far : {-kAboveTolerance, kAboveTolerance, kNaN})
            EXPECT_TRUE(zero != single<TypeParam>(i, far) && !(zero == single<TypeParam>(i, far))) << i;
    }
}

template <typename Vector> class AnyVector : public testing::Test {};
using Vectors = testing::Types<Vec2, Vec3, Vec4>;
TYPED_TEST_SUITE(AnyVector, Vectors);

TYPED_TEST(AnyVector, ComputesAsEigenDoes) {
    Random random;
    const auto a = random.value<TypeParam>(), b = random.value<TypeParam>();
    const Eigen::ArrayXd ea = eigen(a), eb = eigen(b);
    expect("operators", {a + b, a - b, a * b, a / b}, {ea + eb, ea - eb, ea * eb, ea / eb});
    expect("with a number", {a + 0.7, a - 0.7, a * 0.7, a / 0.7}, {ea + 0.7, ea - 0.7, ea * 0.7, ea / 0.7});
    TypeParam verbs = a, compounds = a;
    verbs.add(b), verbs.sub(0.7), verbs.mult(b), verbs.divide(0.3), verbs.divide(b), verbs.mult(0.2), verbs.sub(b);
    compounds += b, compounds -= 0.7, compounds *= b, compounds /= 0.3, compounds /= b, compounds *= 0.2;
    compounds -= b, compounds += 0.4, verbs.add(0.4);
    expect("verbs", verbs, ((ea + eb - 0.7) * eb / 0.3 / eb) * 0.2 - eb + 0.4);
    expect("compounds", compounds, verbs);
    verbs.divide(verbs);
    expect("divided by itself", verbs, TypeParam() + 1.0);
    expect("negate", a.negate(), -ea);
    expect("dot", a.dot(b), ea.matrix().dot(eb.matrix()), 1e-14);
    expect("distance", a.distance(b), (ea - eb).matrix().norm(), 1e-14);
    expect("a negative length", after(a, &TypeParam::setLength, -2.5), ea.matrix().normalized() * -2.5, 1e-15);
    expect("zero points along x", after(TypeParam(), &TypeParam::setLength, 5.0), single<TypeParam>(0, 5.0));
    for (std::size_t i = 0; i < count<TypeParam>(); ++i)
        expect("nearly zero", Numbers(after(single<TypeParam>(i, 1e-200), &TypeParam::setLength, 1.0))[i], 1.0 / 0.0);
}

template <typename Vector> class PlaneAndSpace : public testing::Test {};
using PlaneAndSpaceVectors = testing::Types<Vec2, Vec3>;
TYPED_TEST_SUITE(PlaneAndSpace, PlaneAndSpaceVectors);

TYPED_TEST(PlaneAndSpace, ExtremesKeepTheSideThatTiesAndNaNCallFor) {
    for (std::size_t i = 0; i < count<TypeParam>(); ++i) {
        const auto changed = [i](auto change, double own, auto... others) {
            return Numbers(after(single<TypeParam>(i, own), change, single<TypeParam>(i, others)...))[i];
        };
        const auto min = [&](double a, double b) { return changed(&TypeParam::getMin, a, b); };
        const auto max = [&](double a, double b) { return changed(&TypeParam::getMax, a, b); };
        const auto clamp = [&](double v, double low, double high) { return changed(&TypeParam::clamp, v, low, high); };
        expect("getMin", {min(3, 1), min(-2, 4), min(1, kNaN), min(kNaN, 1)}, {1, -2, 1, kNaN});
        expect("getMax", {max(3, 1), max(-2, 4), max(1, kNaN), max(kNaN, 1)}, {3, 4, kNaN, 1});
        expect("clamp", {clamp(-5, -1, 1), clamp(5, -2, 2), clamp(0.5, 0, 1), clamp(0, 1, -1)}, {-1, 2, 0.5, 1});
        EXPECT_TRUE(std::signbit(max(0.0, -0.0)) && !std::signbit(min(0.0, -0.0))) << "ties";
    }
}

// Values are made and computed with where nothing runs yet; products of matrices take another way there.
constexpr Vec3 kUp(0, 1, 0);
constexpr Vec4 kMapped =
    Mat4(1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 0, 0, 0, 1, false) * Vec4(kUp.cross(Vec3(1, 0, 0)), 1);
static_assert(kMapped == Vec4(1, 1, 1, 1) && Quaternion(0, 0, 1, 0).lengthSq() == 1.0 && kUp.dot(kUp) == 1.0);
static_assert((Mat4(Vec4(1, 2, 3, 4), Vec4(), Vec4(), Vec4(), true) * Mat4(true)).getRow(0) == Vec4(1, 2, 3, 4));

TEST(Vec2, TurnsAndMeasuresAsEigenDoes) {
    Random random;
    for (int i = 0; i < 20; ++i) {
        Vec2 p = random.value<Vec2>();
        const Vec2 a = random.value<Vec2>(), b = random.value<Vec2>();
        const double angle = random.number(-180.0, 180.0);
        const Eigen::Vector2d ea = eigen(a), ep = eigen(p);
        const Eigen::Rotation2Dd turn(angle * kPi / 180.0);
        const Eigen::Vector2d foot = Eigen::ParametrizedLine<double, 2>::Through(ea, eigen(b)).projection(ep);
        expect("rotate", after(p, &Vec2::rotate, angle), turn * ep, 1e-12);
        expect("rotateRound", p.rotateRound(angle, a), turn * (ep - ea) + ea, 1e-12);
        expect("rotateAround", after(p, &Vec2::rotateAround, angle, a), p.rotateRound(angle, a));
        expect("setAngle", after(p, &Vec2::setAngle, angle), turn * Eigen::Vector2d(p.length(), 0.0), 1e-12);
        expect("angleBetween", p.angleBetween(p.rotateRound(angle, Vec2())), angle, 1e-10);
        expect("distanceToLine", p.distanceToLine(a, b), (ep - foot).norm(), 1e-9);
        expect("lineProjectionLength", p.lineProjectionLength(a, b), (foot - ea).norm(), 1e-9);
        expect("project", p.project(a), ea * ea.dot(ep) / ea.squaredNorm(), 1e-12);
    }
}

TEST(Vec2, AnglesAndQuadrantsOfTheAxes) {
    const double rows[][4] = {{0, 0, 0, 1},  {0, 2, 90, 1},     {-1, 0, 180, 2}, {0, -1, -90, 4},
                              {1, 1, 45, 1}, {-1, -1, -135, 3}, {1, -1, -45, 4}, {-1, 1, 135, 2}};
    for (const auto& [x, y, degrees, quadrant] : rows)
        expect("angle, quadrant", {Vec2(x, y).getAngle(), Vec2(x, y).getQuadrant()}, {degrees, quadrant});
}

TEST(Vec2, SingleOperations) {
    const Vec2 v(3, -4), o(2, 3), infinite(1, 1.0 / 0.0);
    double array[] = {9, 1, 2}, x = 3, y = -4, small = 1e-12, above = kAboveTolerance, zero = 0;
    Vec2::normalize(&x, &y), Vec2::normalize(&small, &zero), Vec2::normalize(&above, &zero);
    expect("static normalize", {x, y, small, above}, {3 * (1.0 / 5.0), -4 * (1.0 / 5.0), 1e-12, 1}, 1e-16);
    expect("the factor to radians", after(v, &Vec2::setAngle, 90).x, 5.0 * std::cos(90.0 * 0.017453292519943));
    expect("by 0", {after(infinite, &Vec2::rotate, 0), v.rotateRound(0, Vec2(1e30, 1e30))}, {infinite, v});
    expect("quarter turns", {v.perpindicularLeft(), v.perpindicularRight(), v.normal()}, {4, 3, -4, -3, 4, 3});
    expect("components", {v.slope(), v.dotProduction(o), v % Vec2(-2, 2.5)}, {-4.0 / 3.0, 6, -12, 1, -1.5});
    expect("followSigns, prepen", {after(v, &Vec2::followSigns, o - o.x), after(v, &Vec2::prepen)}, {-3, 4, 4, 3});
    expect("arrays", {after(v, &Vec2::fromArray, array, 1), after(v, &Vec2::fromArray, nullptr, 1)}, {1, 2, 3, -4});
    expect("no line, no direction", {Vec2(1, 2).distanceToLine(v, v), v.project(Vec2())}, {kNaN, 0, 0});
    expect("origins", {Vec2::centerToTopLefetPoint(v, o), Vec2::topLeftToCenterPoint(v, o)}, {4, 5.5, 2, 5.5});
}

TEST(Vec2, TolerancesOfTheTests) {
    const Vec2 zero, one(1, 1), across(1, -1), long1(1e6, 0), long2(1e-7, 1e6), short1(1e-7, 0), short2(1e-7, 1e-7);
    EXPECT_TRUE(Vec2::equalWithTolerance(0, 0, 0.3, 0.3, 0.5) && !Vec2::equalWithTolerance(zero, Vec2(3, 4), 5.0));
    EXPECT_TRUE(Vec2::isDuplicate(zero, Vec2(-0.24, 0.24)) && (across * 0.9999e-12).negligible());
    EXPECT_FALSE(Vec2::isDuplicate(zero, Vec2(0.25, 0)) || Vec2::isDuplicate(zero, Vec2(0, -0.25)));
    for (const Vec2& far : {Vec2(0, -1e-12), Vec2(0, 1e-12), Vec2(-1e-12, 0), Vec2(1e-12, 0)})
        EXPECT_TRUE(far.nonNegligible());
    EXPECT_TRUE(across.isCollinear(Vec2(-2, 2)) && long1.isCollinear(Vec2(1e6, 1e-7)) && one.isCollinear(zero));
    EXPECT_TRUE(one.isOrthogonal(across) && long1.isOrthogonal(long2) && one.isOrthogonal(zero));
    EXPECT_FALSE(one.isOrthogonal(one) || short1.isOrthogonal(short2) || short1.isCollinear(short2)) << "by length";
}

TEST(Vec2, SidesAndQuadrants) {
    const Vec2 a(1, 1), b(3, 2), onLine(5, 3), left(5, 4), right(5, 2);
    expect("signedArea", Vec2::signedArea(Vec2(1, 2), Vec2(3, 3), Vec2(2, 6)), 7);
    EXPECT_TRUE(Vec2::intersecting(a, b, right, left) && Vec2::intersecting(a, b, onLine, left));
    EXPECT_FALSE(Vec2::intersecting(a, b, onLine, right) || Vec2::intersecting(a, b, left, left));
    for (const Vec2& opposite : {Vec2(-1, -1), Vec2(0, 0), Vec2(0, -1), Vec2(-1, 0)})
        EXPECT_TRUE(Vec2::oppositeQuadrant(a, opposite)) << opposite.x << ", " << opposite.y;
    for (const Vec2& other : {Vec2(-1, 1), Vec2(1, 1), Vec2(1, -1), Vec2(0, 1), Vec2(1, 0)})
        EXPECT_FALSE(Vec2::oppositeQuadrant(a, other)) << other.x << ", " << other.y;
    EXPECT_FALSE(Vec2::oppositeQuadrant(Vec2(1, -1), Vec2(1, 1)));
    EXPECT_TRUE(Vec2::oppositeQuadrant(Vec2(1, 0), Vec2(-1, 0)) && Vec2::oppositeQuadrant(Vec2(0, 1), Vec2(0, -1)));
}

TEST(Vec2, AnchoringTurnsOnlyWhatPointsTheOtherWay) {
    const Vec2 a(1, 2), b(3, 1); // a - b is (-2, 1), and (1, 2) is at right angles to it
    for (const auto& [d, outward] : {std::pair(Vec2(-1, 0), true), {Vec2(0, 1), true}, {Vec2(1, 2), false}}) {
        Vec2 kept = d, turnedOut = d, turnedIn = d;
        EXPECT_EQ(Vec2::anchorOutwardD(kept, a, b), outward);
        EXPECT_EQ(Vec2::anchorOutward(turnedOut, a, b, false), !outward);
        EXPECT_EQ(Vec2::anchorInward(turnedIn, a, b), outward);
        expect("directions", {kept, turnedOut, turnedIn}, {d, outward ? d : d.negate(), outward ? d.negate() : d});
    }
}

TEST(Vec2, IntersectClassifiesTheMeeting) {
    constexpr double kUntouched = 77.0;
    // The result is the code, the meeting point, and where it lies on each segment.
    const auto intersect = [](Vec2 a, Vec2 b, Vec2 c, Vec2 d) {
        Vec2 out(9, 9);
        double u = kUntouched, v = kUntouched;
        const int code = Vec2::intersect(a, b, c, d, out, &u, &v);
        EXPECT_EQ(Vec2::intersect(a, b, c, d, out, nullptr, nullptr), code);
        return Numbers{code, out, u, v};
    };
    expect("within both", intersect({1, 0}, {3, 2}, {1, 2}, {3, 0}), {1, 2, 1, 0.5, 0.5});
    expect("at the second ends", intersect({0, 0}, {2, 0}, {2, -4}, {2, 0}), {1, 2, 0, 1, 1});
    expect("at the first ends", intersect({0, 0}, {2, 0}, {0, 0}, {2, -4}), {1, 0, 0, 0, 0});
    expect("beyond b", intersect({0, 0}, {2, 0}, {4, -1}, {4, 3}), {3, 4, 0, 2, 0.25});
    expect("before c", intersect({0, 0}, {4, 0}, {1, 1}, {1, 2}), {4, 1, 0, 0.25, -1});
    expect("beyond d", intersect({0, 0}, {4, 0}, {1, 2}, {1, 1}), {4, 1, 0, 0.25, 2});
    expect("outside both", intersect({0, 0}, {1, 0}, {-1, 1}, {-1, 2}), {5, -1, 0, -1, -1});
    expect("parallel", intersect({0, 0}, {2, 2}, {0, 1}, {2, 3}), {0, 0, 0, kUntouched, kUntouched});
    expect("one line", intersect({1, 3}, {3, 7}, {5, 11}, {6, 13}), {2, 2, 5, kUntouched, kUntouched});
    expect("c = d off the line", intersect({0, 0}, {2, 0}, {1, 1}, {1, 1}), {0, 0, 0, kUntouched, kUntouched});
    expect("a = b off the line", intersect({1, 1}, {1, 1}, {0, 0}, {2, 0}), {0, 0, 0, kUntouched, kUntouched});
}

TEST(Vec3, SingleOperations) {
    Random random;
    const Vec3 a = random.value<Vec3>(), b = random.value<Vec3>(), v(1, -2, 4), x(1, 0, 0), y(0, 1, 0), z(0, 0, 1);
    double array[] = {9, 1, 2, 3};
    expect("fromArray", after(a, &Vec3::fromArray, array, 1), {1, 2, 3});
    Vec3(4, 5, 6).toArray(array, 1);
    expect("toArray", array, {9, 4, 5, 6});
    expect("cross", a.cross(b), eigen(a).cross(eigen(b)), 1e-14);
    expect("angleBetween", a.angleBetween(b), std::atan2(a.cross(b).length(), a.dot(b)), 1e-14);
    expect("angleBetween with zero", Vec3().angleBetween(a), kNaN);
    expect("lerp", {Vec2::lerp({1, -2}, {2, 3}, 3.0), Vec3::lerp(v, {2, 3, 5}, -1.0)}, {4, 13, 0, -7, 3});
    expect("invert, floor", {v.invert(), Vec3(-1.5, 1.5, 2.0).floor()}, {1, -0.5, 0.25, -2, 1, 2});
    expect("in place", {after(v, &Vec3::setInvert), after(v, &Vec3::setNegate)}, {v.invert(), v.negate()});
    expect("indices", after(a, [](Vec3& r) { r.set(0, 7), r.set(1, 8), r.set(-1, 9); }), {7, 8, 9});
    expect("ortho", {after(x, &Vec3::ortho, y), after(Vec3(), &Vec3::ortho, z), after(y, &Vec3::ortho, z)},
           {x, -1, 0, 0, y});
    for (const auto& [u, index] :
         {std::pair(Vec3(-4, 2, 3), 0), {Vec3(3, 1, -4), 2}, {Vec3(-1, 0, 1), 2}, {Vec3(1, -1, 0), 1}, {Vec3(1), 2}})
        expect("largestAbsComponent", u.largestAbsComponent(), index);
    expect("a cycle", {cyclicDifference(350, 10, 360), cyclicDifference(10, 350, 360)}, {-20, 20});
    expect("two cycles", {cyclicDifference(1000, 0, 360), cyclicDifference(0, 1000, 360)}, {640, -640});
    expect("half a cycle", {cyclicDifference(180, 0, 360), cyclicDifference(0, 180, 360)}, {180, -180});
}

TEST(Vectors, TolerancesOfTheCaller) {
    EXPECT_TRUE(Vec2(1, 2).equal(Vec2(1, 2), 0.0) && Vec3(2).equal(Vec3(2.5), 0.5) && !Vec3(2).equal(Vec3(2.5), 0.4));
    EXPECT_TRUE(Vec4() == Vec4(0, 0, 0.9e-12, 0) && Vec4() != Vec4(0.6e-12, 0.6e-12, 0.6e-12, 0.6e-12)) << "distance";
    EXPECT_TRUE(Vec4().equal(Vec4(0, 0, 3, 4), 5.1) && !Vec4().equal(Vec4(0, 0, 3, 4), 5.0));
}

TEST(Vec4, LerpWalksTheShorterArc) {
    const Vec4 x(1, 0, 0, 0), y(0, 1, 0, 0), v(Vec3(1, -2, 4), -8);
    const auto direction = [](double angle) { return Vec4(std::cos(angle), std::sin(angle), 0, 0); };
    expect("other operations", {v.invert(), v.lengthManhattan(), v.getVec3()}, {1, -0.5, 0.25, -0.125, 15, 1, -2, 4});
    expect("lengths", Vec4::lerp(x * 2, y * 2, 0.5), direction(0.25 * kPi), 1e-7);
    expect("the ends, as they are", {Vec4::lerp(x * 2, y * 3, 0.0), Vec4::lerp(x * 2, y * -3, 1.0)}, {x * 2, y * -3});
    expect("the far side", Vec4::lerp(x, Vec4(-1, 0.1, 0, 0), 0.5), direction(-std::atan(0.05)), 1e-15);
    expect("opposites", Vec4::lerp(x, x.negate(), 0.5), x);
    expect("beyond the end", Vec4::lerp(x, y, 2.0), x.negate(), 1e-6);
    // The chord begins where 1 - cosine is below 0.01 in single precision.
    const double arc = std::acos(1.0 - 0.0099999999), chord = std::acos(1.0 - 0.0099999996);
    expect("the arc", Vec4::lerp(x, direction(arc), 0.3), direction(0.3 * arc), 1e-7);
    expect("the chord", Vec4::lerp(x, direction(chord), 0.3),
           after(x * 0.7 + direction(chord) * 0.3, &Vec4::normalize));
    expect("zero", Vec4::lerp(Vec4(), v, 0.5), Vec4() + kNaN);
    // To the last bit, worked out step by step with the single-precision functions of the C library.
    expect("single precision", Vec4::lerp(Vec4(1, 2, 3, 4), Vec4(4, -1, 2, 0.5), 0.3),
           {0.43379959500798165, 0.230355235574424, 0.593349946755568, 0.6377226807159422});
    expect("single precision on the far side", Vec4::lerp(x, Vec4(-1, 0.5, 0, 2), 0.7),
           {0.5797558138577976, -0.19761566922543525, 0.0, -0.790462676901741});
}

} // namespace

} // namespace Ombrique::GaussianBlur
