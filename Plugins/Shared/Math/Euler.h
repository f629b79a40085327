#pragma once

#include "Plugins/Shared/Math/Float.h"

#include <cstdint>

namespace Ombrique::GaussianBlur {

struct Mat4;
struct Quaternion;

/// A rotation as three angles in radians about the axes x, y and z, with the order in which they compose.
struct Euler {
    /// The order of the factors from left to right: XYZ is the rotation about x times that about y times that about z,
    /// as matrices acting on column vectors or as quaternions, so that the one about z acts first on a point.
    enum RotationOrder : std::int32_t {
        /// As an argument: keep the stored order.
        Unspecified = 0,
        XYZ = 1,
        YZX = 2,
        ZXY = 3,
        XZY = 4,
        YXZ = 5,
        ZYX = 6,
    };
    static constexpr RotationOrder mDefaultOrder = XYZ;

    double x = 0.0;
    double y = 0.0;
    double z = 0.0;
    RotationOrder order = mDefaultOrder;

    Euler() = default;
    /// Stores the order unchecked, Unspecified too.
    constexpr Euler(double xValue, double yValue, double zValue, RotationOrder orderValue) noexcept
        : x(xValue), y(yValue), z(zValue), order(orderValue) {}

    /// Each angle within 1e-12, the bound included, and the same order: equal rotations in other angles or another
    /// order are unequal.
    constexpr bool operator==(const Euler& other) const noexcept {
        return isNear(x, other.x) && isNear(y, other.y) && isNear(z, other.z) && order == other.order;
    }

    /// The order Unspecified keeps the stored order.
    constexpr void set(double xValue, double yValue, double zValue, RotationOrder newOrder) noexcept {
        *this = Euler(xValue, yValue, zValue, newOrder == Unspecified ? order : newOrder);
    }
    /// Extract the angles of a pure rotation (the upper left 3x3 block, without scale; a unit quaternion) in the given
    /// order, which is stored, or, with Unspecified, in the stored one. Where neither names an order the angles stay.
    /// Within about 1.4e-3 radians of gimbal lock one of the outer angles is set to 0.
    void setWithMat4(const Mat4& m, RotationOrder newOrder);
    void setWithQuaternion(const Quaternion& q, RotationOrder newOrder);
};

} // namespace Ombrique::GaussianBlur
