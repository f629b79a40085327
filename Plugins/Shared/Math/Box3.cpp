#include "Plugins/Shared/Math/Box3.h"

#include <limits>

namespace Ombrique::GaussianBlur {

void Box3::setFromArray(float* values, int count) {
    makeEmpty();
    for (int i = 0; i < count; i += 3)
        expandByPoint(Vec3(values[i], values[i + 1], values[i + 2]));
}

void Box3::setFromPoints(Vec3* points, int count) {
    makeEmpty();
    if (!points || count == 0)
        return;
    set(points[0], points[0]);
    for (int i = 1; i < count; ++i)
        expandByPoint(points[i]);
}

void Box3::makeEmpty() {
    constexpr double kLargest = std::numeric_limits<double>::max();
    set(Vec3(kLargest), Vec3(-kLargest));
}

void Box3::expandByPoint(Vec3 point) { unionBox(Box3(point, point)); }

bool Box3::isEmpty() const {
    if (min.x > max.x || min.y > max.y || min.z > max.z)
        return true;
    return min.isZero() && max.isZero();
}

bool Box3::containsPoint(const Vec3& point) const { return intersectsBox(Box3(point, point)); }

bool Box3::containsBox(const Box3& box) const {
    return box.min.x >= min.x && max.x >= box.max.x && //
           box.min.y >= min.y && max.y >= box.max.y && //
           box.min.z >= min.z && max.z >= box.max.z;
}

bool Box3::intersectsBox(const Box3& box) const {
    return !(min.x > box.max.x || box.min.x > max.x || //
             min.y > box.max.y || box.min.y > max.y || //
             min.z > box.max.z || box.min.z > max.z);
}

Vec3 Box3::clampPoint(Vec3 point) const {
    point.clamp(min, max);
    return point;
}

void Box3::intersects(Box3 box) {
    min.getMax(box.min);
    max.getMin(box.max);
    if (isEmpty())
        makeEmpty();
}

void Box3::unionBox(Box3 box) {
    min.getMin(box.min);
    max.getMax(box.max);
}

} // namespace Ombrique::GaussianBlur
