#pragma once

#include <vector>

#include "base/Geometry.h"
#include "base/Instant.h"

namespace sunpane {

/// A damped spring, given as interface designers give it: `response` (s) is the period of the undamped spring, so
/// that the angular frequency is 2*pi/response, and `dampingFraction` is 1 for critical damping. The only place that
/// knows the spring's formula.
struct Spring {
    Seconds response;
    double dampingFraction;

    /// How far the spring has come from 0 towards 1 after `time` seconds, released at rest. Passes 1 and returns when
    /// the damping fraction is below 1.
    double position(Seconds time) const;

    /// When the spring stays within a thousandth of its target.
    Seconds settlingTime() const;

    /// The motion up to `settlingTime` as cubic Bézier segments, time and position both scaled to end at (1, 1):
    /// three points for each segment (two control points, then its end), starting from (0, 0).
    std::vector<Point> bezierSpline() const;

    friend bool operator==(const Spring&, const Spring&) = default;
};

}  // namespace sunpane
