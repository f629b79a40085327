// The math library beside GLM and Eigen, over arrays of the same random values. Each operation is written for each
// library as its user would write it, and the three results are compared before anything is timed.

#include "Benchmarks/PeerTable.h"
#include "Plugins/Shared/Math/Affine.h"
#include "Plugins/Shared/Math/Mat4.h"
#include "Plugins/Shared/Math/Quaternion.h"

#include <Eigen/Dense>
#include <glm/glm.hpp>
#include <glm/gtc/quaternion.hpp>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <random>

using namespace Ombrique::GaussianBlur;

namespace {

constexpr std::size_t kCount = 1024;

using GlmAffine = glm::dmat3;
using EigenAffine = Eigen::Transform<double, 2, Eigen::AffineCompact>;

/// What a matrix is composed of; the quaternion first, for its alignment.
template <typename Quaternion, typename Vector> struct Parts {
    Quaternion rotation;
    Vector position, scale;
};

/// A value as the doubles of which it consists. The three libraries store matrices by column and quaternions as
/// x, y, z, w; only affine transforms of the plane differ, and are told here by column, without a last row.
template <typename Value> std::vector<double> doubles(const Value& value) {
    return {reinterpret_cast<const double*>(&value), reinterpret_cast<const double*>(&value + 1)};
}
/// A quaternion and its negative are the same rotation, and the libraries choose differently.
template <typename Quaternion, typename Vector> std::vector<double> doubles(const Parts<Quaternion, Vector>& parts) {
    std::vector<double> result(reinterpret_cast<const double*>(&parts), reinterpret_cast<const double*>(&parts + 1));
    if (result[3] < 0.0)
        std::transform(result.begin(), result.begin() + 4, result.begin(), std::negate<>());
    return result;
}
std::vector<double> doubles(const Affine& a) { return {a.m[0], a.m[3], a.m[1], a.m[4], a.m[2], a.m[5]}; }
std::vector<double> doubles(const GlmAffine& a) { return {a[0].x, a[0].y, a[1].x, a[1].y, a[2].x, a[2].y}; }

/// The reverse of `doubles`, for the types of the peers.
template <typename Value> Value from(const std::vector<double>& numbers) {
    Value value;
    if constexpr (std::is_same_v<Value, GlmAffine>)
        value = GlmAffine(numbers[0], numbers[1], 0, numbers[2], numbers[3], 0, numbers[4], numbers[5], 1);
    else
        std::copy(numbers.begin(), numbers.end(), reinterpret_cast<double*>(&value));
    return value;
}

/// kCount random values of one type of each library, alike.
template <typename Ours, typename Glm, typename Eigens> struct Samples {
    std::vector<Ours> ours;
    std::vector<Glm> glm;
    std::vector<Eigens> eigen;

    /// make() is called for each value.
    template <typename Make> explicit Samples(Make make) {
        for (std::size_t i = 0; i < kCount; ++i) {
            ours.push_back(make());
            const std::vector<double> numbers = doubles(ours.back());
            glm.push_back(from<Glm>(numbers));
            eigen.push_back(from<Eigens>(numbers));
        }
    }
};

double number(double low = -1.0, double high = 1.0) {
    static std::mt19937_64 engine(20261122);
    return std::uniform_real_distribution(low, high)(engine);
}

Vec3 vector() { return Vec3(number(), number(), number()); }

Quaternion rotation() {
    Quaternion q(number(), number(), number(), number());
    q.normalize();
    return q;
}

Mat4 matrix() {
    Mat4 m(false);
    for (double& element : m.m)
        element = number();
    return m;
}

/// Where results go; matrices of ours have no default.
template <typename Result> std::vector<Result> blankResults() {
    if constexpr (std::is_default_constructible_v<Result>)
        return std::vector<Result>(kCount);
    else
        return std::vector<Result>(kCount, Result(false));
}

template <typename Result, typename Function> void registerContender(const std::string& name, Function function) {
    benchmark::RegisterBenchmark(name.c_str(), [function](benchmark::State& state) {
        std::vector<Result> results = blankResults<Result>();
        for (auto _ : state) {
            for (std::size_t i = 0; i < kCount; ++i)
                function(i, results[i]);
            benchmark::DoNotOptimize(results.data());
            benchmark::ClobberMemory();
        }
    });
}

template <typename Ours, typename Theirs> void check(const char* operation, const Ours& ours, const Theirs& theirs) {
    const std::vector<double> a = doubles(ours), b = doubles(theirs);
    for (std::size_t i = 0; i < a.size(); ++i)
        if (!(std::fabs(a[i] - b[i]) <= 1e-8 * (1.0 + std::fabs(b[i])))) {
            std::fprintf(stderr, "%s: the results differ: %.17g and %.17g\n", operation, a[i], b[i]);
            std::exit(1);
        }
}

/// Takes for each library a function that writes the result for an index. Checks that they agree, and registers them
/// for timing.
template <typename OursResult, typename GlmResult, typename EigenResult, typename Ours, typename Glm, typename Eigens>
void compare(const char* operation, Ours ours, Glm glm, Eigens eigen) {
    auto oursResults = blankResults<OursResult>();
    auto glmResults = blankResults<GlmResult>();
    auto eigenResults = blankResults<EigenResult>();
    for (std::size_t i = 0; i < kCount; ++i) {
        ours(i, oursResults[i]);
        glm(i, glmResults[i]);
        eigen(i, eigenResults[i]);
        check(operation, oursResults[i], glmResults[i]);
        check(operation, oursResults[i], eigenResults[i]);
    }
    registerContender<OursResult>(std::string(operation) + "/ours", ours);
    registerContender<GlmResult>(std::string(operation) + "/GLM", glm);
    registerContender<EigenResult>(std::string(operation) + "/Eigen", eigen);
}

void compareMatrices() {
    static Samples<Mat4, glm::dmat4, Eigen::Matrix4d> a(matrix), b(matrix);
    static Samples<Vec4, glm::dvec4, Eigen::Vector4d> v([] { return Vec4(vector(), number()); });

    compare<Mat4, glm::dmat4, Eigen::Matrix4d>(
        "matrix * matrix", [](std::size_t i, auto& r) { Mat4::mult(a.ours[i], b.ours[i], r); },
        [](std::size_t i, auto& r) { r = a.glm[i] * b.glm[i]; },
        [](std::size_t i, auto& r) { r = a.eigen[i] * b.eigen[i]; });
    compare<Vec4, glm::dvec4, Eigen::Vector4d>(
        "matrix * vector", [](std::size_t i, auto& r) { r = a.ours[i] * v.ours[i]; },
        [](std::size_t i, auto& r) { r = a.glm[i] * v.glm[i]; },
        [](std::size_t i, auto& r) { r = a.eigen[i] * v.eigen[i]; });
    compare<Mat4, glm::dmat4, Eigen::Matrix4d>(
        "matrix inverse", [](std::size_t i, auto& r) { a.ours[i].getInverse(r); },
        [](std::size_t i, auto& r) { r = glm::inverse(a.glm[i]); },
        [](std::size_t i, auto& r) { r = a.eigen[i].inverse(); });
    compare<double, double, double>(
        "determinant", [](std::size_t i, auto& r) { r = a.ours[i].determinant(); },
        [](std::size_t i, auto& r) { r = glm::determinant(a.glm[i]); },
        [](std::size_t i, auto& r) { r = a.eigen[i].determinant(); });
}

// The peers' own functions for these two do more (a shear and a perspective, a singular value decomposition), or
// several products where one will do; so both are written out as ours is, without anchor.

void compareComposition() {
    static Samples<Quaternion, glm::dquat, Eigen::Quaterniond> rotations(rotation);
    static Samples<Vec3, glm::dvec3, Eigen::Vector3d> positions(vector);
    static Samples<Vec3, glm::dvec3, Eigen::Vector3d> scales(
        [] { return Vec3(number(0.1, 2.0), number(0.1, 2.0), number(0.1, 2.0)); });
    static Samples<Mat4, glm::dmat4, Eigen::Matrix4d> composed([i = std::size_t(0)]() mutable {
        Mat4 m(false);
        m.compose(positions.ours[i], rotations.ours[i], scales.ours[i]);
        ++i;
        return m;
    });

    compare<Mat4, glm::dmat4, Eigen::Matrix4d>(
        "compose", [](std::size_t i, auto& r) { r.compose(positions.ours[i], rotations.ours[i], scales.ours[i]); },
        [](std::size_t i, auto& r) {
            r = glm::mat4_cast(rotations.glm[i]);
            r[0] *= scales.glm[i].x;
            r[1] *= scales.glm[i].y;
            r[2] *= scales.glm[i].z;
            r[3] = glm::dvec4(positions.glm[i], 1.0);
        },
        [](std::size_t i, auto& r) {
            r.template topLeftCorner<3, 3>() = rotations.eigen[i].toRotationMatrix() * scales.eigen[i].asDiagonal();
            r.template topRightCorner<3, 1>() = positions.eigen[i];
            r.template bottomRows<1>() << 0.0, 0.0, 0.0, 1.0;
        });
    compare<Parts<Quaternion, Vec3>, Parts<glm::dquat, glm::dvec3>, Parts<Eigen::Quaterniond, Eigen::Vector3d>>(
        "decompose", [](std::size_t i, auto& r) { composed.ours[i].decompose(r.position, r.rotation, r.scale); },
        [](std::size_t i, auto& r) {
            const glm::dmat4& m = composed.glm[i];
            glm::dmat3 pure(m);
            r.scale = glm::dvec3(glm::length(pure[0]), glm::length(pure[1]), glm::length(pure[2]));
            if (glm::determinant(m) < 0.0)
                r.scale.x = -r.scale.x;
            pure[0] *= 1.0 / r.scale.x;
            pure[1] *= 1.0 / r.scale.y;
            pure[2] *= 1.0 / r.scale.z;
            r.rotation = glm::quat_cast(pure);
            r.position = m[3];
        },
        [](std::size_t i, auto& r) {
            const Eigen::Matrix4d& m = composed.eigen[i];
            Eigen::Matrix3d pure = m.topLeftCorner<3, 3>();
            r.scale = pure.colwise().norm();
            if (m.determinant() < 0.0)
                r.scale.x() = -r.scale.x();
            pure *= r.scale.cwiseInverse().asDiagonal();
            r.rotation = pure;
            r.position = m.topRightCorner<3, 1>();
        });
}

void compareQuaternions() {
    static Samples<Quaternion, glm::dquat, Eigen::Quaterniond> a(rotation), b(rotation);
    static Samples<Vec3, glm::dvec3, Eigen::Vector3d> v(vector);
    static Samples<double, double, double> t([] { return number(0.0, 1.0); });

    compare<Quaternion, glm::dquat, Eigen::Quaterniond>(
        "quaternion * quaternion", [](std::size_t i, auto& r) { r.multiplyQuaternions(a.ours[i], b.ours[i]); },
        [](std::size_t i, auto& r) { r = a.glm[i] * b.glm[i]; },
        [](std::size_t i, auto& r) { r = a.eigen[i] * b.eigen[i]; });
    compare<Vec3, glm::dvec3, Eigen::Vector3d>(
        "quaternion rotates vector",
        [](std::size_t i, auto& r) { r = Quaternion::quaternionMulVec3(a.ours[i], v.ours[i]); },
        [](std::size_t i, auto& r) { r = a.glm[i] * v.glm[i]; },
        [](std::size_t i, auto& r) { r = a.eigen[i] * v.eigen[i]; });
    compare<Quaternion, glm::dquat, Eigen::Quaterniond>(
        "slerp", [](std::size_t i, auto& r) { r = Quaternion::lerp(a.ours[i], b.ours[i], t.ours[i]); },
        [](std::size_t i, auto& r) { r = glm::slerp(a.glm[i], b.glm[i], t.glm[i]); },
        [](std::size_t i, auto& r) { r = a.eigen[i].slerp(t.eigen[i], b.eigen[i]); });
}

void compareVectorsAndAffines() {
    static Samples<Vec3, glm::dvec3, Eigen::Vector3d> v(vector), w(vector);
    static Samples<Vec2, glm::dvec2, Eigen::Vector2d> points([] { return Vec2(number(), number()); });
    const auto affine = [] { return Affine(number(), number(), number(), number(), number(), number()); };
    static Samples<Affine, GlmAffine, EigenAffine> a(affine), b(affine);

    compare<Vec3, glm::dvec3, Eigen::Vector3d>(
        "vector normalise",
        [](std::size_t i, auto& r) {
            Vec3 unit = v.ours[i];
            unit.normalize();
            r = unit;
        },
        [](std::size_t i, auto& r) { r = glm::normalize(v.glm[i]); },
        [](std::size_t i, auto& r) { r = v.eigen[i].normalized(); });
    compare<Vec3, glm::dvec3, Eigen::Vector3d>(
        "vector cross", [](std::size_t i, auto& r) { r = v.ours[i].cross(w.ours[i]); },
        [](std::size_t i, auto& r) { r = glm::cross(v.glm[i], w.glm[i]); },
        [](std::size_t i, auto& r) { r = v.eigen[i].cross(w.eigen[i]); });
    compare<Affine, GlmAffine, EigenAffine>(
        "affine * affine",
        [](std::size_t i, auto& r) {
            Affine product = a.ours[i];
            product.premultiply(b.ours[i]);
            r = product;
        },
        [](std::size_t i, auto& r) { r = a.glm[i] * b.glm[i]; },
        [](std::size_t i, auto& r) { r = a.eigen[i] * b.eigen[i]; });
    compare<Vec2, glm::dvec2, Eigen::Vector2d>(
        "affine maps point", [](std::size_t i, auto& r) { r = a.ours[i].getTransform(points.ours[i]); },
        [](std::size_t i, auto& r) { r = a.glm[i] * glm::dvec3(points.glm[i], 1.0); },
        [](std::size_t i, auto& r) { r = a.eigen[i] * points.eigen[i]; });
}

/// Why an operation is slower than a peer's and stays so: our documents settle what each computes, to the last bit.
const PeerTable::Remarks kRemarks = {
    {"compose", "the scale goes to the bottom row too"},
    {"decompose", "each axis by its own root and quotient, and the determinant of all of the matrix"},
    {"quaternion * quaternion", "the order of the sums"},
    {"slerp", "the angle by atan2, where the peers take acos"},
    {"affine * affine", "stored row by row, so that pairs of rows don't lie side by side"},
    {"affine maps point", "stored row by row, so that pairs of rows don't lie side by side"},
};

} // namespace

int main(int argc, char** argv) {
    // Repetitions in random order, so that a moment when the machine is busy doesn't fall on one library alone; the
    // caller's arguments come later and win.
    std::string defaults[] = {"--benchmark_repetitions=30", "--benchmark_min_time=0.02",
                              "--benchmark_enable_random_interleaving=true"};
    std::vector<char*> arguments = {argv[0]};
    for (std::string& argument : defaults)
        arguments.push_back(argument.data());
    arguments.insert(arguments.end(), argv + 1, argv + argc);
    int count = static_cast<int>(arguments.size());
    benchmark::Initialize(&count, arguments.data());
    if (benchmark::ReportUnrecognizedArguments(count, arguments.data()))
        return 1;

    compareMatrices();
    compareComposition();
    compareQuaternions();
    compareVectorsAndAffines();
    PeerTable table({"ours", "GLM", "Eigen"}, kCount, kRemarks);
    benchmark::RunSpecifiedBenchmarks(&table);
}
