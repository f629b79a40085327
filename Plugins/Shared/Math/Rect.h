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
    Rect(Vec2 point, Vec2 size) : Rect(point.x, point.y, size.x, size.y) {}
    Rect(double xValue, double yValue, double widthValue, double heightValue)
        : x(xValue), y(yValue), width(widthValue), height(heightValue) {}

    /// Each field within 1e-12, the bound included.
    bool operator==(const Rect& r) const {
        return isNear(x, r.x) && isNear(y, r.y) && isNear(width, r.width) && isNear(height, r.height);
    }
    bool operator!=(const Rect& r) const { return !(*this == r); }

    Vec2 getPoint() const { return Vec2(x, y); }
    Vec2 getSize() const { return Vec2(width, height); }
    double getLeft() const { return x; }
    double getTop() const { return y; }
    double getRight() const { return x + width; }
    double getBottom() const { return y + height; }
    double getCenterX() const { return width * 0.5 + x; }
    double getCenterY() const { return height * 0.5 + y; }
    Vec2 getCenter() const { return Vec2(getCenterX(), getCenterY()); }
    Vec2 getTopLeft() const { return Vec2(x, y); }
    Vec2 getTopRight() const { return Vec2(getRight(), y); }
    Vec2 getBottomLeft() const { return Vec2(x, getBottom()); }
    Vec2 getBottomRight() const { return Vec2(getRight(), getBottom()); }
    double getArea() const { return width * height; }

    // Point, left, top and centre move the rectangle and keep its size; size, right and bottom keep its origin.
    void setPoint(Vec2 point) { *this = Rect(point, getSize()); }
    void setSize(Vec2 size) { *this = Rect(getPoint(), size); }
    void setLeft(double v) { x = v; }
    void setTop(double v) { y = v; }
    void setRight(double v) { width = v - x; }
    /// In single precision, unlike the other setters.
    void setBottom(float v) { height = static_cast<double>(v) - y; }
    void setCenterX(double v) { x = width * -0.5 + v; }
    void setCenterY(double v) { y = height * -0.5 + v; }
    void setCenter(Vec2 c) { setPoint(c - getSize() * 0.5); }

    /// Width and height both exactly 0; one alone isn't enough, and a negative size isn't empty.
    bool isEmpty() const { return width == 0.0 && height == 0.0; }
    /// All four edges count as inside.
    bool containsPoint(Vec2 p) const { return containsRect(Rect(p, Vec2())); }
    bool containsRect(Rect r) const;
    /// Whether the rectangles overlap; sharing an edge isn't enough.
    bool intersects(Rect r) const;
    /// Whether the rectangles overlap or share an edge or a corner.
    bool touches(Rect r) const;

    // New rectangles; this one stays.

    /// The overlap; of disjoint rectangles one of negative width or height.
    Rect intersect(Rect r);
    /// The bounds of both rectangles, and of this one and a point.
    Rect unite(Rect r);
    Rect getInclude(Vec2 p) { return unite(Rect(p, Vec2())); }
    /// Moves each side out by the amount; a negative one moves it in, past the other side, too.
    Rect expand(Vec2 v) { return Rect(x - v.x, y - v.y, width + 2.0 * v.x, height + 2.0 * v.y); }
    Rect expand(float f) { return expand(Vec2(f, f)); }
    /// Moves each side out by (factor - 1) times the whole extent, about the centre: a factor of 2 gives three times
    /// the width, 0.5 a width of 0.
    Rect scale(float sx, float sy);

    /// Becomes getInclude(p).
    void include(Vec2 p) { *this = getInclude(p); }

private:
    /// The rectangle between two corners.
    static Rect between(Vec2 topLeft, Vec2 bottomRight) { return Rect(topLeft, bottomRight - topLeft); }
};

} // namespace Ombrique::GaussianBlur
