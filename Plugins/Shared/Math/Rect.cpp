#include "Plugins/Shared/Math/Rect.h"

namespace Ombrique::GaussianBlur {

bool Rect::containsRect(Rect r) const {
    return r.x >= x && r.y >= y && getRight() >= r.getRight() && getBottom() >= r.getBottom();
}

bool Rect::intersects(Rect r) const {
    return r.getRight() > x && r.getBottom() > y && getRight() > r.x && getBottom() > r.y;
}

bool Rect::touches(Rect r) const {
    return r.getRight() >= x && r.getBottom() >= y && getRight() >= r.x && getBottom() >= r.y;
}

Rect Rect::intersect(Rect r) {
    Vec2 topLeft = getTopLeft();
    topLeft.getMax(r.getTopLeft());
    Vec2 bottomRight = getBottomRight();
    bottomRight.getMin(r.getBottomRight());
    return between(topLeft, bottomRight);
}

Rect Rect::unite(Rect r) {
    Vec2 topLeft = getTopLeft();
    topLeft.getMin(r.getTopLeft());
    Vec2 bottomRight = getBottomRight();
    bottomRight.getMax(r.getBottomRight());
    return between(topLeft, bottomRight);
}

Rect Rect::scale(float sx, float sy) {
    return expand(Vec2(static_cast<double>(sx) * width - width, static_cast<double>(sy) * height - height));
}

} // namespace Ombrique::GaussianBlur
