#pragma once

#include "Plugins/Shared/Math/Mat4.h"
#include "Plugins/Shared/Math/Quaternion.h"

#include <Eigen/Geometry>
#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <functional>
#include <limits>
#include <random>

/// What the tests of the math library share.
namespace Ombrique::GaussianBlur {

inline constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
inline constexpr double kPi = 3.14159265358979323846;
inline constexpr double kAboveTolerance = 1.0000000000000002e-12;

/// How many doubles a type of the library consists of.
template <typename Value> constexpr std::size_t count() { return sizeof(Value) / sizeof(double); }

/// The doubles of which a number, an array, a value of the library or of Eigen, or a list of these consists.
struct Numbers : std::vector<double> {
    Numbers(std::initializer_list<Numbers> parts) {
        for (const Numbers& part : parts)
            insert(end(), part.begin(), part.end());
    }
    Numbers(const Eigen::MatrixXd& m) : vector(m.data(), m.data() + m.size()) {}
    template <typename Value> Numbers(const Value& value) {
        if constexpr (std::is_arithmetic_v<Value> || std::is_enum_v<Value>)
            push_back(static_cast<double>(value));
        else if constexpr (std::is_trivially_copyable_v<Value>)
            for (double number : std::bit_cast<std::array<double, count<Value>()>>(value))
                push_back(number);
        else
            *this = Numbers(Eigen::MatrixXd(value));
    }
};

/// Compares each double to within an absolute tolerance. Zeros of either sign are equal, and so are NaNs.
inline void expect(const char* what, const Numbers& actual, const Numbers& expected, double tolerance = 0.0) {
    const auto alike = [tolerance](double a, double b) {
        return a == b || std::fabs(a - b) <= tolerance || (std::isnan(a) && std::isnan(b));
    };
    EXPECT_TRUE(std::equal(actual.begin(), actual.end(), expected.begin(), expected.end(), alike))
        << what << ": " << testing::PrintToString(actual) << " instead of " << testing::PrintToString(expected);
}

/// The value as an operation in place leaves it.
template <typename Value, typename Operation, typename... Arguments>
Value after(Value value, Operation operation, Arguments&&... arguments) {
    std::invoke(operation, value, std::forward<Arguments>(arguments)...);
    return value;
}

/// A value of a type that consists of doubles alone: `number` gives them in turn.
template <typename Value, typename Number> Value valueOf(Number number) {
    std::array<double, count<Value>()> numbers;
    std::generate(numbers.begin(), numbers.end(), number);
    return std::bit_cast<Value>(numbers);
}

/// All zeros but for one of the doubles.
template <typename Value> Value single(std::size_t index, double number) {
    return valueOf<Value>([&] { return index-- == 0 ? number : 0.0; });
}

/// Random values from a fixed seed, which a failure inside the scope of the object shows.
class Random {
public:
    double number(double low = -3.0, double high = 3.0) { return std::uniform_real_distribution(low, high)(mEngine); }
    template <typename Value> Value value() {
        return valueOf<Value>([this] { return number(); });
    }
    Quaternion unitQuaternion() { return after(value<Quaternion>(), &Quaternion::normalize); }

private:
    static constexpr unsigned kSeed = 20261122;
    std::mt19937_64 mEngine{kSeed};
    testing::ScopedTrace mTrace{__FILE__, __LINE__, "seed " + std::to_string(kSeed)};
};

inline Eigen::Vector2d eigen(const Vec2& v) { return {v.x, v.y}; }
inline Eigen::Vector3d eigen(const Vec3& v) { return {v.x, v.y, v.z}; }
inline Eigen::Vector4d eigen(const Vec4& v) { return {v.x, v.y, v.z, v.w}; }
inline Eigen::Matrix4d eigen(const Mat4& m) { return Eigen::Map<const Eigen::Matrix4d>(m.m); }
inline Eigen::Quaterniond eigen(const Quaternion& q) { return {q.w, q.x, q.y, q.z}; }

} // namespace Ombrique::GaussianBlur
