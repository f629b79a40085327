#pragma once

#include "Plugins/Shared/Math/Vec3.h"

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
    Box3() { makeEmpty(); }
    Box3(Vec3 minValue, Vec3 maxValue) : min(minValue), max(maxValue) {}

    /// Each component within 1e-12, the bound included.
    bool operator==(const Box3& other) const { return min == other.min && max == other.max; }

    void set(Vec3 newMin, Vec3 newMax) { *this = Box3(newMin, newMax); }
    /// The bounds of points in a flat array of x, y, z triples. `count` is the number of floats, not of points, and
    /// must be a multiple of 3; below 1 the box is empty.
    void setFromArray(float* values, int count);
    /// The bounds of `count` points; empty for a null array or a count of 0. A negative count acts as 1.
    void setFromPoints(Vec3* points, int count);
    void makeEmpty();
    /// Grows to hold the point.
    void expandByPoint(Vec3 point);
    void setFromCenterAndSize(Vec3 center, Vec3 size) { set(center - size * 0.5, center + size * 0.5); }
    /// True also for a box that has collapsed onto the origin, though not for one collapsed onto another point.
    bool isEmpty() const;
    Vec3 getCenter() const { return (min + max) * 0.5; }
    Vec3 getSize() const { return max - min; }
    /// Moves each face out; a negative distance moves it in, past the other one, too.
    void expandByVector(Vec3 v) { set(min - v, max + v); }
    void expandByScalar(float s) { expandByVector(Vec3(s)); }
    /// The faces belong to the box. A NaN is outside of nothing, and so inside.
    bool containsPoint(const Vec3& point) const;
    /// A box contains itself. A NaN fails.
    bool containsBox(const Box3& box) const;
    /// Where the point lies between min (0) and max (1) on each axis; a flat axis gives infinities or NaN.
    Vec3 getParameter(const Vec3& point) const { return (point - min) / (max - min); }
    /// Whether the boxes touch or overlap; changes nothing, unlike `intersects`. A NaN counts as overlapping.
    bool intersectsBox(const Box3& box) const;
    /// The nearest point of the box.
    Vec3 clampPoint(Vec3 point) const;
    /// 0 for a point in the box.
    double distanceToPoint(Vec3 point) { return clampPoint(point).distance(point); }
    /// Becomes the intersection; the empty box where there is none, or where it is the origin alone.
    void intersects(Box3 box);
    /// Becomes the bounds of both boxes; an empty one takes part by its corners.
    void unionBox(Box3 box);
    void translate(Vec3 v) { set(min + v, max + v); }
};

} // namespace Ombrique::GaussianBlur
