#pragma once

#include "Plugins/Shared/Math/Vec3.h"

#include <limits>

namespace Ombrique::GaussianBlur {

/// An axis-aligned bounding box in space.
///
/// The empty box has its corners at the largest finite doubles, min positive and max negative, so that whatever expands
/// it replaces them. Nothing keeps min below max: a box with min above max on any axis counts as empty. Operations on
/// an empty box have no special case: its centre is (0, 0, 0), and its size minus infinity. The in-place operations
/// take their arguments by value.
struct Box3 {
    Vec3 min;
    Vec3 max;

    /// The empty box.
    constexpr Box3() noexcept { makeEmpty(); }
    constexpr Box3(Vec3 minValue, Vec3 maxValue) noexcept : min(minValue), max(maxValue) {}

    /// Each component within 1e-12, the bound included.
    constexpr bool operator==(const Box3& other) const noexcept { return min == other.min && max == other.max; }

    constexpr void set(Vec3 newMin, Vec3 newMax) noexcept { *this = Box3(newMin, newMax); }
    /// The bounds of points in a flat array of x, y, z triples. `count` is the number of floats, not of points, and
    /// must be a multiple of 3; below 1 the box is empty.
    constexpr void setFromArray(float* values, int count) noexcept {
        makeEmpty();
        for (int i = 0; i < count; i += 3)
            expandByPoint(Vec3(values[i], values[i + 1], values[i + 2]));
    }
    /// The bounds of `count` points; empty for a null array or a count of 0. A negative count acts as 1.
    constexpr void setFromPoints(Vec3* points, int count) noexcept {
        makeEmpty();
        if (!points || count == 0)
            return;
        set(points[0], points[0]);
        for (int i = 1; i < count; ++i)
            expandByPoint(points[i]);
    }
    constexpr void makeEmpty() noexcept {
        constexpr double kLargest = std::numeric_limits<double>::max();
        set(Vec3(kLargest), Vec3(-kLargest));
    }
    /// Grows to hold the point.
    constexpr void expandByPoint(Vec3 point) noexcept { unionBox(Box3(point, point)); }
    constexpr void setFromCenterAndSize(Vec3 center, Vec3 size) noexcept {
        set(center - size * 0.5, center + size * 0.5);
    }
    /// True also for a box that has collapsed onto the origin, though not for one collapsed onto another point.
    constexpr bool isEmpty() const noexcept {
        return min.x > max.x || min.y > max.y || min.z > max.z || (min.isZero() && max.isZero());
    }
    constexpr Vec3 getCenter() const noexcept { return (min + max) * 0.5; }
    constexpr Vec3 getSize() const noexcept { return max - min; }
    /// Moves each face out; a negative distance moves it in, past the other one, too.
    constexpr void expandByVector(Vec3 v) noexcept { set(min - v, max + v); }
    constexpr void expandByScalar(float s) noexcept { expandByVector(Vec3(s)); }
    /// The faces belong to the box. A NaN is outside of nothing, and so inside.
    constexpr bool containsPoint(const Vec3& point) const noexcept { return intersectsBox(Box3(point, point)); }
    /// A box contains itself. A NaN fails.
    constexpr bool containsBox(const Box3& box) const noexcept {
        return box.min.x >= min.x && max.x >= box.max.x && //
               box.min.y >= min.y && max.y >= box.max.y && //
               box.min.z >= min.z && max.z >= box.max.z;
    }
    /// Where the point lies between min (0) and max (1) on each axis; a flat axis gives infinities or NaN.
    constexpr Vec3 getParameter(const Vec3& point) const noexcept { return (point - min) / (max - min); }
    /// Whether the boxes touch or overlap; changes nothing, unlike `intersects`. A NaN counts as overlapping.
    constexpr bool intersectsBox(const Box3& box) const noexcept {
        return !(min.x > box.max.x || box.min.x > max.x || //
                 min.y > box.max.y || box.min.y > max.y || //
                 min.z > box.max.z || box.min.z > max.z);
    }
    /// The nearest point of the box.
    constexpr Vec3 clampPoint(Vec3 point) const noexcept {
        point.clamp(min, max);
        return point;
    }
    /// 0 for a point in the box.
    double distanceToPoint(Vec3 point) { return clampPoint(point).distance(point); }
    /// Becomes the intersection; the empty box where there is none, or where it is the origin alone.
    constexpr void intersects(Box3 box) noexcept {
        min.getMax(box.min);
        max.getMin(box.max);
        if (isEmpty())
            makeEmpty();
    }
    /// Becomes the bounds of both boxes; an empty one takes part by its corners.
    constexpr void unionBox(Box3 box) noexcept {
        min.getMin(box.min);
        max.getMax(box.max);
    }
    constexpr void translate(Vec3 v) noexcept { set(min + v, max + v); }
};

} // namespace Ombrique::GaussianBlur
