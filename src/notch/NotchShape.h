#pragma once

#include <vector>

#include "base/Geometry.h"

namespace sunpane {

/// The panel's outline: a rectangle that hangs from the top edge of the screen. Its top corners flare outward by
/// `topRadius` so that they melt into the edge, its bottom corners are rounded by `bottomRadius` (both in points).
struct NotchShape {
    double bottomRadius;
    double topRadius;

    /// A straight line, or a quadratic curve through its control point, to `end`.
    struct Segment {
        enum class Kind { line, quadratic };
        Kind kind;
        Point control;  // of a quadratic curve
        Point end;
        friend bool operator==(const Segment&, const Segment&) = default;
    };

    /// A closed outline.
    struct Path {
        Point start;
        std::vector<Segment> segments;
    };

    /// The outline around `rect`, in view coordinates: y grows downward, so that `rect.y` is the top edge. It is wider
    /// than the rectangle by `topRadius` on each side at the top.
    Path path(const Rect& rect) const;

    friend bool operator==(const NotchShape&, const NotchShape&) = default;
};

}  // namespace sunpane
