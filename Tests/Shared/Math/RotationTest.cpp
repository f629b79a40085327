// Quaternion, Euler and the conversions between them, matrices and vectors.

#include "Plugins/Shared/Math/Euler.h"
#include "Tests/Shared/Math/MathTesting.h"

namespace Ombrique::GaussianBlur {

namespace {

TEST(Quaternion, ConstructorsAndSettersTreatWAndTheAxisDifferently) {
    const Quaternion q(4, 5, 6, 0.5);
    double array[] = {9, 1, 2, 3, 4};
    expect("setWithArray", after(q, &Quaternion::setWithArray, array, 1), {1, 2, 3, 4});
    q.toArray(array, 1);
    expect("toArray", array, {9, 4, 5, 6, 0.5});
    expect("w is 1", {Quaternion(), Quaternion(1, 2, 3)}, {0, 0, 0, 1, 1, 2, 3, 1});
    expect("w stays", after(q, [](Quaternion& r) { r.set(1, 2, 3); }), {1, 2, 3, 0.5});
    expect("axis as it is", Quaternion(Vec3(0, 0, 2), kPi), {0, 0, 2, 0}, 1e-15);
    expect("axis normalised", after(q, [](Quaternion& r) { r.set(Vec3(0, 0, 2), kPi); }), {0, 0, 1, 0}, 1e-15);
    expect("zero axis", after(q, [](Quaternion& r) { r.set(Vec3(), 1.0); }),
           {0.479425538604203, 0, 0, 0.8775825618903728});
    for (const auto& other : {single<Quaternion>(0, 1e-300), single<Quaternion>(1, 1), single<Quaternion>(2, 1),
                              single<Quaternion>(3, kNaN)})
        EXPECT_TRUE(other != Quaternion(0, 0, 0, 0) && !(other == Quaternion(0, 0, 0, 0)));
}

TEST(Quaternion, ComputesAsEigenDoes) {
    Random random;
    for (int i = 0; i < 20; ++i) {
        Quaternion a = random.unitQuaternion(), b = random.unitQuaternion(), q = random.value<Quaternion>();
        const Vec3 v = random.value<Vec3>(), axis = after(v, &Vec3::normalize);
        const Vec3 to = Quaternion::quaternionMulVec3(b, axis);
        const Eigen::Quaterniond ea = eigen(a), eb = eigen(b), eq = eigen(q), turn(Eigen::AngleAxisd(1.3, eigen(axis)));
        const double t = random.number(0.0, 1.0);
        expect("multiply", after(a, &Quaternion::multiply, b), (ea * eb).coeffs(), 1e-15);
        expect("premultiply", after(a, &Quaternion::premultiply, b), (eb * ea).coeffs(), 1e-15);
        expect("square", after(a, [](Quaternion& r) { r.multiply(r); }), (ea * ea).coeffs(), 1e-15);
        expect("quaternionMulVec3", Quaternion::quaternionMulVec3(a, v), ea * eigen(v), 1e-14);
        expect("measures", {a.dot(b), q.length(), q.lengthSq()}, {ea.dot(eb), eq.norm(), eq.squaredNorm()}, 1e-14);
        expect("conjugate", after(q, &Quaternion::conjugate), eq.conjugate().coeffs());
        expect("setInverse", after(q, &Quaternion::setInverse), eq.conjugate().normalized().coeffs(), 1e-15);
        expect("axis and angle", Quaternion(axis, 1.3), turn.coeffs(), 1e-15);
        expect("direction", Quaternion::quaternionMulVec3(Quaternion(axis, to), axis), to, 1e-13);
        expect("lerp", Quaternion::lerp(a, b, t), ea.slerp(t, eb).coeffs(), 1e-14);
    }
    expect("zero", after(Quaternion(0, 0, 0, 0), &Quaternion::setInverse), {0, 0, 0, 1});
    expect("nearly zero", after(Quaternion(0, 1e-160, 0, 0), &Quaternion::normalize), {0, 1, 0, 0}, 1e-3);
    EXPECT_TRUE(std::signbit(after(Quaternion(), &Quaternion::conjugate).x));
}

TEST(Quaternion, OppositeDirectionsTurnAboutAnAxisAtRightAngles) {
    const Vec3 x(1, 0, 0), y(0, 1, 0), alongX(-0.64, 0.48, 0.6), alongZ(0.6, 0.48, -0.64);
    expect("x, y", {Quaternion(x, x.negate()), Quaternion(y, y.negate())}, {0, 1, 0, 0, 0, 0, 1, 0});
    expect("mostly x", Quaternion(alongX, alongX.negate()), {-0.6, -0.8, 0, 0}, 1e-15);
    expect("mostly z", Quaternion(alongZ, alongZ.negate()), {0, 0.8, 0.6, 0}, 1e-15);
    expect("below the bound", Quaternion(x, Vec3(-1.0 + 0.99e-12, 1e-6, 0)), {0, 1, 0, 0});
    expect("above the bound", Quaternion(x, Vec3(-1.0 + 1.01e-12, 1e-6, 0)), {0, 0, 1, 1.01e-6}, 1e-9);
    expect("zero vectors", Quaternion(Vec3(), Vec3()), {0, 0, 0, 1});
}

TEST(Quaternion, AxisAndAngleInDegrees) {
    const auto axis = [](Quaternion q) { return q.getRotationAxis(); };
    const auto angle = [](Quaternion q) { return q.getRotationAngle(); };
    const Vec3 v(1.0 / 3.0, 2.0 / 3.0, -2.0 / 3.0);
    expect("axis", axis(Quaternion(v, 1.5)), v, 1e-15);
    expect("axis below the bound", axis({1, 0, 0, -1 + 0.49e-12}), {0, 0, 1});
    expect("axis above the bound", axis({1e-6, 0, 0, 1 - 0.51e-12}), {1, 0, 0}, 0.02);
    expect("angle", {angle(Quaternion(v, 1.5)), angle({0, 0, 0, -1})}, {1.5 * 180.0 / kPi, 360}, 1e-12);
    expect("w beyond 1", angle({0, 0, 0, 1.0000001}), kNaN);
}

TEST(Quaternion, SlerpTakesTheShorterArc) {
    const auto turn = [](double sine) { return Quaternion(sine, 0, 0, std::sqrt(1.0 - sine * sine)); };
    const auto lerp = &Quaternion::lerp;
    const Quaternion none, close = turn(0.000999), far(-0.6, 0, 0, -0.8), shorter(0.3, 0, 0, 0.4),
                           q(0.4999999, 0.4999999, 0.4999999, 0.4999999);
    expect("the end keeps its sign", lerp(none, {-0.3, 0, 0, -0.4}, 1.0), {-0.3, 0, 0, -0.4});
    expect("the start of close ones", lerp(none, close, 0.0), none);
    expect("opposites", lerp(turn(0.6), far, 0.5), turn(0.6));
    expect("a product of 1 or more", lerp({2, 0, 0, 0}, {0.5, 0.5, 0, 0}, 0.5), {2, 0, 0, 0});
    expect("equal ones, shorter than 1", lerp(shorter, shorter, 7.0), shorter);
    expect("close ones have a mean", lerp(none, close, 0.9), {close.x * 0.5, 0, 0, (1 + close.w) * 0.5});
    expect("close ones across", lerp(q, {-0.5003, -0.4997, -0.5002, -0.4998}, 0.9),
           {0.50014995, 0.49984995, 0.50009995, 0.49989995}, 1e-15);
    expect("no longer close", lerp(none, turn(0.001001), 0.9), turn(0.0009009), 1e-9);
    expect("beyond the end", lerp(none, turn(std::sin(0.25)), 3.0), turn(std::sin(0.75)), 1e-15);
}

constexpr std::pair<Euler::RotationOrder, const char*> kOrders[] = {{Euler::XYZ, "xyz"}, {Euler::YZX, "yzx"},
                                                                    {Euler::ZXY, "zxy"}, {Euler::XZY, "xzy"},
                                                                    {Euler::YXZ, "yxz"}, {Euler::ZYX, "zyx"}};

/// The angle whose name is the axis.
double& angle(Euler& euler, char axis) { return axis == 'x' ? euler.x : axis == 'y' ? euler.y : euler.z; }

Numbers angles(const Euler& euler) { return {euler.x, euler.y, euler.z}; }

/// The product of the three rotations about single axes, as the order's name says.
Mat4 rotationOf(Euler euler, const char* axes) {
    Eigen::Affine3d rotation = Eigen::Affine3d::Identity();
    for (; *axes; ++axes)
        rotation.rotate(Eigen::AngleAxisd(angle(euler, *axes), Eigen::Vector3d::Unit(*axes - 'x')));
    return Mat4(rotation.matrix().data(), true);
}

Mat4 rotationOf(const Quaternion& q) { return after(Mat4(false), &Mat4::setWithQuaternion, q); }

Euler eulerOf(const Mat4& m, Euler::RotationOrder order) { return after(Euler(), &Euler::setWithMat4, m, order); }

TEST(RotationConversions, QuaternionsAndMatricesStandForTheSameRotation) {
    Random random;
    // Half turns have a trace of -1; the largest element of the diagonal stands in each place, once by very little.
    std::vector<Quaternion> samples = {{0.8, 0.48, -0.36, 0},
                                       {0.48, -0.8, 0.36, 0},
                                       {-0.36, 0.48, 0.8, 0},
                                       {0.5, 0.5, 0.5, 0.5},
                                       {1e-6, 0, std::sqrt(1 - 1e-12), 0}};
    std::generate_n(std::back_inserter(samples), 40, [&] { return random.unitQuaternion(); });
    for (const Quaternion& q : samples) {
        const Vec3 v = random.value<Vec3>();
        const Eigen::Affine3d rotation(eigen(q));
        const Quaternion back = after(q, &Quaternion::setWithMat4, rotationOf(q));
        expect("Mat4::setWithQuaternion", rotationOf(q), rotation.matrix(), 1e-14);
        expect("Vec3::applyQuaternion", after(v, &Vec3::applyQuaternion, q), rotation * eigen(v), 1e-14);
        expect("Quaternion::setWithMat4", {rotationOf(back), eigen(back).norm()}, {rotation.matrix(), 1}, 1e-14);
    }
    expect("a length of 1.4", after(Vec3(1, 0, 0), &Vec3::applyQuaternion, Quaternion(0, 0, 1, 1)), {0, 2, 0});
    expect("a trace of exactly 0", after(Quaternion(), &Quaternion::setWithMat4, Mat4(false)), {0, 0, 0.5, 0});
}

TEST(RotationConversions, EulerAnglesComposeInTheirOrderAndComeBack) {
    Random random;
    for (const auto& [order, axes] : kOrders) {
        SCOPED_TRACE(axes);
        for (int i = 0; i < 20; ++i) {
            Euler euler(random.number(), random.number(), random.number(), order);
            angle(euler, axes[1]) *= 0.5;
            const Mat4 matrix = rotationOf(euler, axes);
            const Quaternion q = after(Quaternion(), &Quaternion::setWithEuler, euler);
            Euler back = eulerOf(matrix, order);
            expect("Quaternion::setWithEuler", rotationOf(q), matrix, 1e-6);
            expect("Euler::setWithMat4", {angles(back), back.order}, {angles(euler), order}, 1e-12);
            back.setWithQuaternion(q, Euler::Unspecified);
            expect("Euler::setWithQuaternion", {angles(back), back.order}, {angles(euler), order}, 1e-4);
        }
        // In gimbal lock, or so near that it counts as locked: one outer angle 0, and nearly the same rotation.
        for (const double middle : {0.5 * kPi, -0.5 * kPi, std::asin(0.9999995)}) {
            Euler euler(0.4, 0.4, 0.4, order);
            angle(euler, axes[1]) = middle;
            const Mat4 matrix = rotationOf(euler, axes);
            Euler back = eulerOf(matrix, order);
            expect("locked", rotationOf(back, axes), matrix, std::fabs(middle) > 1.57079 ? 1e-9 : 1e-3);
            EXPECT_EQ(angle(back, axes[0]) * angle(back, axes[2]), 0.0);
        }
    }
}

TEST(RotationConversions, GimbalLockBeginsAtASinglePrecisionThreshold) {
    const auto extracted = [](double key) {
        return angles(eulerOf(Mat4(1, 0, 0, 0, 0, 1, 0, 0, key, -0.5, 1, 0, 0, 0, 0, 1, true), Euler::XYZ));
    };
    expect("at the threshold", extracted(0.9999989867210388)[0], 0);
    expect("below the threshold", extracted(0.9999989867210387)[0], std::atan2(0.5, 1.0));
    expect("clamped", {extracted(-1.5)[1], extracted(1.5)[1]}, {-0.5 * kPi, 0.5 * kPi});
    expect("NaN", extracted(kNaN), {0, kNaN, 0});
}

TEST(RotationConversions, EulerInSinglePrecisionAndOrdersThatAreMissingOrUnknown) {
    const auto unknown = static_cast<Euler::RotationOrder>(7);
    const Quaternion q(1, 2, 3, 4);
    // Worked out step by step in 32-bit floats.
    expect("to the last bit", after(q, &Quaternion::setWithEuler, Euler(0.7, -1.1, 2.3, Euler::XYZ)),
           {-0.3287527859210968, -0.46739375591278076, 0.6577638387680054, 0.4907255172729492});
    expect("unknown", after(q, &Quaternion::setWithEuler, Euler(1, 1, 1, unknown)), q);
    expect("Unspecified", after(q, &Quaternion::setWithEuler, Euler(1, 1, 1, Euler::Unspecified)), {0, 0, 0, 0});
    Euler euler(1, 2, 3, Euler::Unspecified);
    euler.setWithMat4(Mat4(true), Euler::Unspecified);
    EXPECT_TRUE(euler == Euler(1, 2, 3, Euler::Unspecified));
    euler.setWithMat4(Mat4(true), unknown);
    EXPECT_TRUE(euler == Euler(1, 2, 3, unknown));
    euler.set(4, 5, 6, Euler::Unspecified);
    EXPECT_TRUE(euler == Euler(4, 5, 6, unknown));
    euler.set(0, 0, 0, Euler::ZYX);
    EXPECT_TRUE(euler == Euler(1e-12, -1e-12, 1e-12, Euler::ZYX) && !(euler == Euler()) && Euler().order == Euler::XYZ);
    for (const Vec3& v : {Vec3(kAboveTolerance, 0, 0), Vec3(0, kAboveTolerance, 0), Vec3(0, 0, kAboveTolerance)})
        EXPECT_FALSE(euler == Euler(v.x, v.y, v.z, Euler::ZYX));
}

TEST(RotationConversions, ComposeAndDecomposeUndoEachOther) {
    Random random;
    for (const Vec3& scale : {Vec3(-2, 0.5, 1), Vec3(1, 3, 0.5), Vec3(0.5, 1, 2)}) {
        const Vec3 anchor = random.value<Vec3>(), position = random.value<Vec3>();
        const Quaternion rotation = random.unitQuaternion();
        Mat4 m = random.value<Mat4>(), plain = m;
        m.compose(anchor, position, rotation, scale);
        plain.compose(m * Vec3(), rotation, scale);
        const Eigen::Affine3d expected = Eigen::Translation3d(eigen(position)) * eigen(rotation) *
                                         Eigen::Scaling(eigen(scale)) * Eigen::Translation3d(-eigen(anchor));
        expect("compose", {m, plain}, {expected.matrix(), expected.matrix()}, 1e-13);

        Vec3 positionBack, scaleBack, inPlace = anchor;
        Quaternion rotationBack;
        m.decompose(positionBack, rotationBack, scaleBack);
        expect("decompose", {positionBack, scaleBack}, {m * Vec3(), scale}, 1e-13);
        m.decompose(inPlace, inPlace, rotationBack, scaleBack);
        expect("the position in the anchor's place", {inPlace, scaleBack}, {position, scale}, 1e-13);
        expect("rotation", rotationOf(rotationBack), rotationOf(rotation), 1e-13);
    }
    Vec3 position, scale;
    Quaternion rotation;
    Mat4(false).decompose(position, rotation, scale);
    expect("scales of 0", scale, Vec3(1e-06));
}

TEST(RotationConversions, VectorsGoThroughMatrices) {
    const Mat4 m(1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 1, -3, 5, 4, false);
    const Vec3 v(1, -1, 2);
    expect("applyMatrix4", after(v, &Vec3::applyMatrix4, m), {9, 21, 33});
    expect("applyProjection", after(v, &Vec3::applyProjection, m), {9 / 18.0, 21 / 18.0, 33 / 18.0}, 1e-15);
    expect("transformDirection", after(v, &Vec3::transformDirection, m), Eigen::Vector3d(5, 13, 21).normalized(),
           1e-15);
    expect("setFromMatrixColumn", after(v, &Vec3::setFromMatrixColumn, m, 1), {2, 6, 10});
    expect("setFromMatrixPosition", after(v, &Vec3::setFromMatrixPosition, m), {4, 8, 12});
}

} // namespace

} // namespace Ombrique::GaussianBlur
