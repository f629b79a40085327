#pragma once

#include "Plugins/Shared/Math/Vec2.h"

namespace Ombrique::GaussianBlur {

/// An axis-aligned rectangle as an origin and a size, in a plane whose y axis points down, so that the top is the
/// smaller y. Right is x + width, bottom y + height. Nothing keeps the size positive: a negative one is computed with
/// like any other.
struct Rect {
    double x = 0.0;
    double y = 0.0;
    double width = 0.0;
    double height = 0.0;

    Rect() = default;
    /// An origin and a size, not two corners.
    constexpr Rect(Vec2 point, Vec2 size) noexcept : Rect(point.x, point.y, size.x, size.y) {}
    constexpr Rect(double xValue, double yValue, double widthValue, double heightValue) noexcept
        : x(xValue), y(yValue), width(widthValue), height(heightValue) {}

    /// Each field within 1e-12, the bound included.
    constexpr bool operator==(const Rect& r) const noexcept {
        return isNear(x, r.x) && isNear(y, r.y) && isNear(width, r.width) && isNear(height, r.height);
    }
    constexpr bool operator!=(const Rect& r) const noexcept { return !(*this == r); }

    constexpr Vec2 getPoint() const noexcept { return Vec2(x, y); }
    constexpr Vec2 getSize() const noexcept { return Vec2(width, height); }
    constexpr double getLeft() const noexcept { return x; }
    constexpr double getTop() const noexcept { return y; }
    constexpr double getRight() const noexcept { return x + width; }
    constexpr double getBottom() const noexcept { return y + height; }
    constexpr double getCenterX() const noexcept { return width * 0.5 + x; }
    constexpr double getCenterY() const noexcept { return height * 0.5 + y; }
    constexpr Vec2 getCenter() const noexcept { return Vec2(getCenterX(), getCenterY()); }
    constexpr Vec2 getTopLeft() const noexcept { return Vec2(x, y); }
    constexpr Vec2 getTopRight() const noexcept { return Vec2(getRight(), y); }
    constexpr Vec2 getBottomLeft() const noexcept { return Vec2(x, getBottom()); }
    constexpr Vec2 getBottomRight() const noexcept { return Vec2(getRight(), getBottom()); }
    constexpr double getArea() const noexcept { return width * height; }

    // Point, left, top and centre move the rectangle and keep its size; size, right and bottom keep its origin.
    constexpr void setPoint(Vec2 point) noexcept { *this = Rect(point, getSize()); }
    constexpr void setSize(Vec2 size) noexcept { *this = Rect(getPoint(), size); }
    constexpr void setLeft(double v) noexcept { x = v; }
    constexpr void setTop(double v) noexcept { y = v; }
    constexpr void setRight(double v) noexcept { width = v - x; }
    /// In single precision, unlike the other setters.
    constexpr void setBottom(float v) noexcept { height = static_cast<double>(v) - y; }
    constexpr void setCenterX(double v) noexcept { x = width * -0.5 + v; }
    constexpr void setCenterY(double v) noexcept { y = height * -0.5 + v; }
    constexpr void setCenter(Vec2 c) noexcept { setPoint(c - getSize() * 0.5); }

    /// Width and height both exactly 0; one alone isn't enough, and a negative size isn't empty.
    constexpr bool isEmpty() const noexcept { return width == 0.0 && height == 0.0; }
    /// All four edges count as inside.
    constexpr bool containsPoint(Vec2 p) const noexcept { return containsRect(Rect(p, Vec2())); }
    constexpr bool containsRect(Rect r) const noexcept {
        return r.x >= x && r.y >= y && getRight() >= r.getRight() && getBottom() >= r.getBottom();
    }
    /// Whether the rectangles overlap; sharing an edge isn't enough.
    constexpr bool intersects(Rect r) const noexcept {
        return r.getRight() > x && r.getBottom() > y && getRight() > r.x && getBottom() > r.y;
    }
    /// Whether the rectangles overlap or share an edge or a corner.
    constexpr bool touches(Rect r) const noexcept {
        return r.getRight() >= x && r.getBottom() >= y && getRight() >= r.x && getBottom() >= r.y;
    }

    // New rectangles; this one stays.

    /// The overlap; of disjoint rectangles one of negative width or height.
    constexpr Rect intersect(Rect r) noexcept {
        Vec2 topLeft = getTopLeft(), bottomRight = getBottomRight();
        topLeft.getMax(r.getTopLeft());
        bottomRight.getMin(r.getBottomRight());
        return between(topLeft, bottomRight);
    }
    /// The bounds of both rectangles, and of this one and a point.
    constexpr Rect unite(Rect r) noexcept {
        Vec2 topLeft = getTopLeft(), bottomRight = getBottomRight();
        topLeft.getMin(r.getTopLeft());
        bottomRight.getMax(r.getBottomRight());
        return between(topLeft, bottomRight);
    }
    constexpr Rect getInclude(Vec2 p) noexcept { return unite(Rect(p, Vec2())); }
    /// Moves each side out by the amount; a negative one moves it in, past the other side, too.
    constexpr Rect expand(Vec2 v) noexcept { return Rect(x - v.x, y - v.y, width + 2.0 * v.x, height + 2.0 * v.y); }
    constexpr Rect expand(float f) noexcept { return expand(Vec2(f, f)); }
    /// Moves each side out by (factor - 1) times the whole extent, about the centre: a factor of 2 gives three times
    /// the width, 0.5 a width of 0.
    Rect scale(float sx, float sy);

    /// Becomes getInclude(p).
    constexpr void include(Vec2 p) noexcept { *this = getInclude(p); }

private:
    /// The rectangle between two corners.
    static constexpr Rect between(Vec2 topLeft, Vec2 bottomRight) noexcept {
        return Rect(topLeft, bottomRight - topLeft);
    }
};

} // namespace Ombrique::GaussianBlur
