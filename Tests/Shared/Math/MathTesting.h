#pragma once

#include "Plugins/Shared/Math/Mat4.h"
#include "Plugins/Shared/Math/Quaternion.h"

#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <limits>
#include <random>
#include <vector>

/// What the tests of the math library share.
namespace Ombrique::GaussianBlur {

inline constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
inline constexpr double kInfinity = std::numeric_limits<double>::infinity();
inline constexpr double kPi = 3.14159265358979323846;

/// The doubles of which a value consists, in the order of its fields; only compiles where there is nothing else in it.
template <typename Value> std::vector<double> values(const Value& value) {
    const auto doubles = std::bit_cast<std::array<double, sizeof(Value) / sizeof(double)>>(value);
    return {doubles.begin(), doubles.end()};
}

/// Compares exactly, but for the sign of zeros.
template <typename Value> void expectValues(const Value& actual, const std::vector<double>& expected) {
    EXPECT_EQ(values(actual), expected);
}

/// Compares each double to within an absolute tolerance.
inline void expectNear(const std::vector<double>& actual, const std::vector<double>& expected, double tolerance) {
    ASSERT_EQ(actual.size(), expected.size());
    for (std::size_t i = 0; i < actual.size(); ++i)
        EXPECT_NEAR(actual[i], expected[i], tolerance) << "at index " << i;
}

/// Random values from a fixed seed, which a failure inside the scope of the object shows.
class Random {
public:
    double number(double low = -3.0, double high = 3.0) { return std::uniform_real_distribution(low, high)(mEngine); }
    /// A value of any type that consists of doubles alone.
    template <typename Value> Value value() {
        std::array<double, sizeof(Value) / sizeof(double)> numbers;
        std::generate(numbers.begin(), numbers.end(), [this] { return number(); });
        return std::bit_cast<Value>(numbers);
    }
    Quaternion unitQuaternion() {
        auto q = value<Quaternion>();
        q.normalize();
        return q;
    }

private:
    static constexpr unsigned kSeed = 20261122;
    std::mt19937_64 mEngine{kSeed};
    testing::ScopedTrace mTrace{__FILE__, __LINE__, "seed " + std::to_string(kSeed)};
};

} // namespace Ombrique::GaussianBlur
