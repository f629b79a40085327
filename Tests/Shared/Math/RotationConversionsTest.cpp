#include "Plugins/Shared/Math/Euler.h"
#include "Tests/Shared/Math/MathTesting.h"

#include <Eigen/Geometry>

namespace Ombrique::GaussianBlur {

namespace {

constexpr std::pair<Euler::RotationOrder, const char*> kOrders[] = {{Euler::XYZ, "xyz"}, {Euler::YZX, "yzx"},
                                                                    {Euler::ZXY, "zxy"}, {Euler::XZY, "xzy"},
                                                                    {Euler::YXZ, "yxz"}, {Euler::ZYX, "zyx"}};

/// The product of the three rotations about single axes, as the order's name says.
Mat4 rotationOf(const Euler& euler, const char* axes) {
    Mat4 rotation(true);
    for (; *axes; ++axes)
        *axes == 'x' ? rotation.rotateX(euler.x) : *axes == 'y' ? rotation.rotateY(euler.y) : rotation.rotateZ(euler.z);
    return rotation;
}

Mat4 rotationOf(const Quaternion& q) {
    Mat4 rotation(false);
    rotation.setWithQuaternion(q);
    return rotation;
}

/// The angle whose name is the axis.
double& angle(Euler& euler, char axis) { return axis == 'x' ? euler.x : axis == 'y' ? euler.y : euler.z; }

TEST(RotationConversions, QuaternionsAndMatricesStandForTheSameRotation) {
    Random random;
    // Traces of 0 or less, with the largest diagonal element in each place, once by very little.
    std::vector<Quaternion> samples = {Quaternion(1, 0, 0, 0), Quaternion(0, 1, 0, 0), Quaternion(0, 0, 1, 0),
                                       Quaternion(0.5, 0.5, 0.5, 0.5), Quaternion(1e-6, 0, std::sqrt(1 - 1e-12), 0)};
    for (int i = 0; i < 40; ++i)
        samples.push_back(random.unitQuaternion());
    for (const Quaternion& q : samples) {
        SCOPED_TRACE(testing::PrintToString(values(q)));
        Mat4 matrix = rotationOf(q);
        const Vec3 v = random.value<Vec3>();
        expectNear(values(matrix * v), values(Quaternion::quaternionMulVec3(q, v)), 1e-14);
        Vec3 applied = v;
        applied.applyQuaternion(q);
        expectNear(values(applied), values(matrix * v), 1e-14);
        Quaternion back;
        back.setWithMat4(matrix);
        expectNear(values(rotationOf(back)), values(matrix), 1e-14);
        EXPECT_NEAR(back.length(), 1.0, 1e-14);
    }
    Vec3 doubled(1, 0, 0);
    doubled.applyQuaternion(Quaternion(0, 0, 1, 1));
    expectValues(doubled, {0, 2, 0});
}

TEST(RotationConversions, EulerAnglesComposeInTheirOrderAndComeBack) {
    Random random;
    for (const auto& [order, axes] : kOrders) {
        SCOPED_TRACE(axes);
        for (int i = 0; i < 20; ++i) {
            Euler euler(random.number(), random.number(), random.number(), order);
            angle(euler, axes[1]) *= 0.5;
            const Mat4 matrix = rotationOf(euler, axes);
            Quaternion q;
            q.setWithEuler(euler);
            expectNear(values(rotationOf(q)), values(matrix), 1e-6);
            Euler back;
            back.setWithMat4(matrix, order);
            expectNear({back.x, back.y, back.z}, {euler.x, euler.y, euler.z}, 1e-12);
            EXPECT_EQ(back.order, order);
            back.setWithQuaternion(q, Euler::Unspecified);
            expectNear({back.x, back.y, back.z}, {euler.x, euler.y, euler.z}, 1e-4);
        }
        // In gimbal lock, or so near that it counts as locked: one outer angle 0, and nearly the same rotation.
        for (const double middle : {0.5 * kPi, -0.5 * kPi, std::asin(0.9999995)}) {
            Euler euler(0.4, 0.4, 0.4, order);
            angle(euler, axes[1]) = middle;
            const Mat4 matrix = rotationOf(euler, axes);
            Euler back;
            back.setWithMat4(matrix, order);
            expectNear(values(rotationOf(back, axes)), values(matrix), std::fabs(middle) > 1.57079 ? 1e-9 : 1e-3);
            EXPECT_EQ(angle(back, axes[0]) * angle(back, axes[2]), 0.0);
        }
    }
}

TEST(RotationConversions, GimbalLockBeginsAtASinglePrecisionThreshold) {
    const auto extracted = [](double key) {
        Mat4 m(true);
        m.m[8] = key;
        m.m[9] = -0.5;
        Euler euler;
        euler.setWithMat4(m, Euler::XYZ);
        return euler;
    };
    EXPECT_EQ(extracted(0.9999989867210388).x, 0.0);
    EXPECT_EQ(extracted(std::nextafter(0.9999989867210388, 0.0)).x, std::atan2(0.5, 1.0));
    EXPECT_EQ(extracted(-1.5).y, -0.5 * kPi) << "clamped";
    EXPECT_TRUE(std::isnan(extracted(kNaN).y) && extracted(kNaN).x == 0.0);
}

TEST(RotationConversions, EulerToQuaternionIsSinglePrecisionToTheLastBit) {
    // Worked out step by step in 32-bit floats.
    Quaternion q;
    q.setWithEuler(Euler(0.7, -1.1, 2.3, Euler::XYZ));
    expectValues(q, {-0.3287527859210968, -0.46739375591278076, 0.6577638387680054, 0.4907255172729492});
}

TEST(RotationConversions, OrdersThatAreMissingOrUnknown) {
    const auto unknown = static_cast<Euler::RotationOrder>(7);
    Quaternion q(1, 2, 3, 4);
    q.setWithEuler(Euler(1, 1, 1, unknown));
    expectValues(q, {1, 2, 3, 4});
    q.setWithEuler(Euler(1, 1, 1, Euler::Unspecified));
    expectValues(q, {0, 0, 0, 0});

    Euler euler(1, 2, 3, Euler::Unspecified);
    euler.setWithMat4(Mat4(true), Euler::Unspecified);
    EXPECT_TRUE(euler == Euler(1, 2, 3, Euler::Unspecified));
    euler.setWithMat4(Mat4(true), unknown);
    EXPECT_TRUE(euler == Euler(1, 2, 3, unknown));
    euler.set(4, 5, 6, Euler::Unspecified);
    EXPECT_TRUE(euler == Euler(4, 5, 6, unknown));
    euler.setWithQuaternion(Quaternion(), Euler::ZYX);
    EXPECT_TRUE(euler == Euler(0, 1e-12, 0, Euler::ZYX));
    EXPECT_FALSE(euler == Euler(0, 0, 0, Euler::XYZ));
}

TEST(RotationConversions, ComposeAndDecomposeUndoEachOther) {
    Random random;
    for (const Vec3& anchor : {Vec3(), random.value<Vec3>()}) {
        const Vec3 position = random.value<Vec3>(), scale(-2.0, 0.5, 1.0), p = random.value<Vec3>();
        const Quaternion rotation = random.unitQuaternion();
        Mat4 m(false);
        m.compose(anchor, position, rotation, scale);
        const Vec3 expected = position + Quaternion::quaternionMulVec3(rotation, scale * (p - anchor));
        expectNear(values(m * p), values(expected), 1e-13);
        Mat4 withoutAnchor(false);
        withoutAnchor.compose(m * Vec3(), rotation, scale);
        expectNear(values(withoutAnchor), values(m), 1e-14);

        Vec3 positionBack, scaleBack;
        Quaternion rotationBack;
        m.decompose(anchor, positionBack, rotationBack, scaleBack);
        expectNear(values(positionBack), values(position), 1e-13);
        expectNear(values(scaleBack), values(scale), 1e-13);
        expectNear(values(rotationOf(rotationBack)), values(rotationOf(rotation)), 1e-13);
        m.decompose(positionBack, rotationBack, scaleBack);
        expectValues(positionBack, values(m * Vec3()));
    }
    Mat4 flat(true);
    flat.setColumn(0, Vec4());
    Vec3 position, scale;
    Quaternion rotation;
    flat.decompose(position, rotation, scale);
    expectValues(scale, {1e-06, 1, 1});
}

TEST(RotationConversions, VectorsGoThroughMatrices) {
    const Mat4 m(1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 0, 0, 2, 4, false);
    const Vec3 v(1, -1, 2);
    Vec3 mapped = v, projected = v, direction = v, column;
    mapped.applyMatrix4(m);
    expectValues(mapped, {9, 21, 33});
    projected.applyProjection(m);
    expectValues(projected, {9 / 8.0, 21 / 8.0, 33 / 8.0});
    direction.transformDirection(m);
    const double length = std::hypot(5.0, 13.0, 21.0);
    expectNear(values(direction), {5 / length, 13 / length, 21 / length}, 1e-15);
    column.setFromMatrixColumn(m, 1);
    expectValues(column, {2, 6, 10});
    column.setFromMatrixPosition(m);
    expectValues(column, {4, 8, 12});
}

} // namespace

} // namespace Ombrique::GaussianBlur
