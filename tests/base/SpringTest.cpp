#include "base/Spring.h"

#include <gtest/gtest.h>

#include <cmath>

namespace sunpane {
namespace {

// A cubic Bézier segment's position at a given time, by bisection on its parameter.
double splineAt(const std::vector<Point>& points, double time) {
    Point start{0, 0};
    for (std::size_t i = 0; i < points.size(); i += 3) {
        const Point c1 = points[i];
        const Point c2 = points[i + 1];
        const Point end = points[i + 2];
        if (time <= end.x) {
            const auto at = [](double a, double b, double c, double d, double u) {
                const double v = 1 - u;
                return v * v * v * a + 3 * v * v * u * b + 3 * v * u * u * c + u * u * u * d;
            };
            double low = 0;
            double high = 1;
            for (int k = 0; k < 60; ++k) {
                const double mid = (low + high) / 2;
                (at(start.x, c1.x, c2.x, end.x, mid) < time ? low : high) = mid;
            }
            return at(start.y, c1.y, c2.y, end.y, low);
        }
        start = end;
    }
    return 1;
}

TEST(Spring, MovesAsTheDifferentialEquationSays) {
    // x'' = omega^2 (1 - x) - 2 zeta omega x', integrated independently with small steps.
    for (const Spring spring : {Spring{0.38, 0.82}, Spring{0.3, 0.95}, Spring{0.35, 0.78}, Spring{0.4, 1.0}}) {
        const double omega = 2 * 3.14159265358979 / spring.response;
        double x = 0;
        double v = 0;
        const double dt = 1e-5;
        const auto steps = static_cast<int>(spring.settlingTime() / dt);
        for (int step = 0; step < steps; ++step) {
            const double t = step * dt;
            v += dt * (omega * omega * (1 - x) - 2 * spring.dampingFraction * omega * v);
            x += dt * v;
            if (std::fmod(t, 0.02) < dt) {
                ASSERT_NEAR(spring.position(t + dt), x, 1e-3);
            }
        }
    }
}

TEST(Spring, SplineFollowsTheSpringAndSettles) {
    for (const Spring spring : {Spring{0.38, 0.82}, Spring{0.3, 0.95}, Spring{0.35, 0.78}, Spring{0.32, 0.76}}) {
        const auto points = spring.bezierSpline();
        const Seconds duration = spring.settlingTime();
        ASSERT_EQ(points.back(), (Point{1, 1}));
        for (int percent = 1; percent < 100; ++percent) {
            const double t = percent / 100.0;
            EXPECT_NEAR(splineAt(points, t), spring.position(t * duration), 2e-3) << t;
        }
        EXPECT_LE(std::abs(spring.position(duration) - 1), 1.1e-3);
        EXPECT_GT(std::abs(spring.position(duration * 0.9) - 1), 1e-4);
    }
}

}  // namespace
}  // namespace sunpane
