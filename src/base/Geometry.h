#pragma once

namespace sunpane {

/// A position in points. Above the ports the origin is the bottom left of the primary screen and y grows upward.
struct Point {
    double x = 0;
    double y = 0;
    friend bool operator==(const Point&, const Point&) = default;
};

/// A width and a height in points.
struct Size {
    double width = 0;
    double height = 0;
    friend bool operator==(const Size&, const Size&) = default;
};

/// An axis-parallel rectangle in points; `x` and `y` are its smallest coordinates.
struct Rect {
    double x = 0;
    double y = 0;
    double width = 0;
    double height = 0;

    double minX() const { return x; }
    double minY() const { return y; }
    double midX() const { return x + width / 2; }
    double maxX() const { return x + width; }
    double maxY() const { return y + height; }

    /// Whether the point lies inside; the smallest edges count as inside, the largest as outside.
    bool contains(Point point) const {
        return point.x >= minX() && point.x < maxX() && point.y >= minY() && point.y < maxY();
    }

    /// Grown by `margin` points on every side.
    Rect grownBy(double margin) const { return {x - margin, y - margin, width + 2 * margin, height + 2 * margin}; }

    friend bool operator==(const Rect&, const Rect&) = default;
};

}  // namespace sunpane
