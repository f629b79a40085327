#include "Tests/Shared/Math/MathTesting.h"

#include <Eigen/Geometry>

namespace Ombrique::GaussianBlur {

namespace {

Eigen::Quaterniond eigen(const Quaternion& q) { return {q.w, q.x, q.y, q.z}; }

std::vector<double> components(const Eigen::Quaterniond& q) { return {q.x(), q.y(), q.z(), q.w()}; }

TEST(Quaternion, ConstructorsAndSettersTreatWAndTheAxisDifferently) {
    Quaternion q(1, 2, 3);
    expectValues(q, {1, 2, 3, 1});
    q.w = 0.5;
    q.set(4, 5, 6);
    expectValues(q, {4, 5, 6, 0.5});
    expectNear(values(Quaternion(Vec3(0, 0, 2), kPi)), {0, 0, 2, 0}, 1e-15);
    q.set(Vec3(0, 0, 2), kPi);
    expectNear(values(q), {0, 0, 1, 0}, 1e-15);
    q.set(Vec3(), 1.0);
    expectValues(q, {0.479425538604203, 0, 0, 0.8775825618903728});
}

TEST(Quaternion, ProductsAndRotationAgreeWithTheHamiltonProduct) {
    Random random;
    for (int i = 0; i < 20; ++i) {
        const Quaternion a = random.unitQuaternion(), b = random.unitQuaternion();
        const Vec3 v = random.value<Vec3>();
        Quaternion after = a, before = a, squared = a;
        after.multiply(b);
        before.premultiply(b);
        squared.multiply(squared);
        expectNear(values(after), components(eigen(a) * eigen(b)), 1e-15);
        expectNear(values(before), components(eigen(b) * eigen(a)), 1e-15);
        expectNear(values(squared), components(eigen(a) * eigen(a)), 1e-15);
        const Eigen::Vector3d rotated = eigen(a) * Eigen::Vector3d(v.x, v.y, v.z);
        expectNear(values(Quaternion::quaternionMulVec3(a, v)), {rotated[0], rotated[1], rotated[2]}, 1e-14);

        Quaternion undone = a;
        undone.setInverse();
        undone.multiply(a);
        expectNear(values(undone), {0, 0, 0, 1}, 1e-15);
        EXPECT_TRUE(a != b && a == a);
    }
    EXPECT_TRUE(Quaternion(0, 0, 0, kNaN) != Quaternion(0, 0, 0, kNaN));
}

TEST(Quaternion, ZeroNormalisesToTheIdentity) {
    Quaternion normalised(0, 0, 0, 0), inverted(0, 0, 0, 0);
    normalised.normalize();
    inverted.setInverse();
    expectValues(normalised, {0, 0, 0, 1});
    expectValues(inverted, {0, 0, 0, 1});
    Quaternion conjugated;
    conjugated.conjugate();
    EXPECT_TRUE(std::signbit(conjugated.x));
}

TEST(Quaternion, DirectionsTurnOntoEachOther) {
    Random random;
    for (int i = 0; i < 20; ++i) {
        Vec3 from = random.value<Vec3>(), to = random.value<Vec3>();
        from.normalize();
        to.normalize();
        expectNear(values(Quaternion::quaternionMulVec3(Quaternion(from, to), from)), values(to), 1e-13);
    }
    expectValues(Quaternion(Vec3(1, 0, 0), Vec3(-1, 0, 0)), {0, 1, 0, 0});
    expectValues(Quaternion(Vec3(0, 0, 1), Vec3(0, 0, -1)), {0, -1, 0, 0});
    expectValues(Quaternion(Vec3(0, 1, 0), Vec3(0, -1, 0)), {0, 0, 1, 0});
    expectValues(Quaternion(Vec3(1, 0, 0), Vec3(-1 + 5e-13, 1e-6, 0)), {0, 1, 0, 0});
    expectValues(Quaternion(Vec3(), Vec3()), {0, 0, 0, 1});
}

TEST(Quaternion, AxisAndAngleInDegrees) {
    Quaternion q;
    q.set(Vec3(1, 2, -2), 1.5);
    EXPECT_NEAR(q.getRotationAngle(), 1.5 * 180.0 / kPi, 1e-12);
    expectNear(values(q.getRotationAxis()), {1.0 / 3.0, 2.0 / 3.0, -2.0 / 3.0}, 1e-15);
    EXPECT_EQ(Quaternion(0, 0, 0, -1).getRotationAngle(), 360.0) << "the sign of w isn't folded";
    EXPECT_TRUE(std::isnan(Quaternion(0, 0, 0, 1.0000001).getRotationAngle()));
    expectValues(Quaternion(1, 0, 0, -1).getRotationAxis(), {0, 0, 1});
}

TEST(Quaternion, SlerpFollowsTheShorterArc) {
    Random random;
    for (const double t : {0.25, 0.5, 0.9}) {
        const Quaternion a = random.unitQuaternion(), b = random.unitQuaternion();
        expectNear(values(Quaternion::lerp(a, b, t)), components(eigen(a).slerp(t, eigen(b))), 1e-14);
    }
    const double s = std::sin(0.0005), c = std::cos(0.0005);
    const auto check = [](const Quaternion& a, const Quaternion& b, double t, const Quaternion& expected) {
        expectValues(Quaternion::lerp(a, b, t), values(expected));
    };
    const Quaternion identity, far(0.6, 0, 0, -0.8), q(0.6, 0, 0, 0.8), negative(-0.6, 0, 0, -0.8), close(s, 0, 0, c);
    check(identity, far, 1.0, far); // the end keeps its sign
    check(identity, far, 0.0, identity);
    check(q, negative, 0.5, q);
    check(Quaternion(2, 0, 0, 0), Quaternion(0.5, 0.5, 0, 0), 0.5, Quaternion(2, 0, 0, 0)); // a product of 1 or more
    check(identity, close, 0.9, Quaternion(s * 0.5, 0, 0, (1 + c) * 0.5)); // close ones have a plain mean
    check(Quaternion(3, 0, 0, 4), Quaternion(3, 0, 0, 4), 7.0, Quaternion(3, 0, 0, 4));
    Quaternion beyond;
    beyond.slerp(Quaternion(Vec3(0, 0, 1), 0.5), 3.0);
    expectNear(values(beyond), values(Quaternion(Vec3(0, 0, 1), 1.5)), 1e-15);
}

} // namespace

} // namespace Ombrique::GaussianBlur
