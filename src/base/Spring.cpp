#include "base/Spring.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numbers>

namespace sunpane {
namespace {

constexpr double settledWithin = 0.001;
// Enough for a thousandth of error, and no more than the toolkit's easing curves have room for.
constexpr std::size_t splineSegments = 10;

double angularFrequency(const Spring& spring) {
    return 2 * std::numbers::pi / spring.response;
}

// The derivative of position; the released spring starts at rest.
double velocity(const Spring& spring, Seconds time) {
    const double omega = angularFrequency(spring);
    const double zeta = spring.dampingFraction;
    if (zeta >= 1) return omega * omega * time * std::exp(-omega * time);
    const double damped = omega * std::sqrt(1 - zeta * zeta);
    return std::exp(-zeta * omega * time) * (omega * omega / damped) * std::sin(damped * time);
}

}  // namespace

double Spring::position(Seconds time) const {
    if (time <= 0) return 0;
    const double omega = angularFrequency(*this);
    // Nothing here springs slower than critically damped; a larger fraction is treated as critical.
    if (dampingFraction >= 1) return 1 - (1 + omega * time) * std::exp(-omega * time);
    const double damped = omega * std::sqrt(1 - dampingFraction * dampingFraction);
    const double envelope = std::exp(-dampingFraction * omega * time);
    return 1 - envelope * (std::cos(damped * time) + (dampingFraction * omega / damped) * std::sin(damped * time));
}

Seconds Spring::settlingTime() const {
    // Walk back from where the envelope alone is surely settled to the last moment that is still outside.
    const double omega = angularFrequency(*this);
    const double slowest = std::min(dampingFraction, 1.0) * omega;
    Seconds time = 2 * -std::log(settledWithin) / slowest;
    const Seconds step = response / 200;
    while (time > step && std::abs(position(time - step) - 1) <= settledWithin)
        time -= step;
    return time;
}

std::vector<Point> Spring::bezierSpline() const {
    const Seconds duration = settlingTime();
    const double scale = 1 / position(duration);
    const Seconds step = duration / splineSegments;
    std::vector<Point> points;
    points.reserve(splineSegments * 3);
    for (std::size_t i = 0; i < splineSegments; ++i) {
        // Hermite form: control points a third of the step along the tangents.
        const Seconds start = static_cast<double>(i) * step;
        const Seconds end = static_cast<double>(i + 1) * step;
        points.push_back(
            {(start + step / 3) / duration, scale * (position(start) + velocity(*this, start) * step / 3)});
        points.push_back({(end - step / 3) / duration, scale * (position(end) - velocity(*this, end) * step / 3)});
        points.push_back({end / duration, scale * position(end)});
    }
    points.back() = {1, 1};
    return points;
}

}  // namespace sunpane
