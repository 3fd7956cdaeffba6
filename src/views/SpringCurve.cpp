#include "views/SpringCurve.h"

#include <QPointF>
#include <cmath>

namespace sunpane {

SpringCurve::SpringCurve(const Spring& spring)
    : curve_(QEasingCurve::BezierSpline), duration_(static_cast<int>(std::lround(spring.settlingTime() * 1000))) {
    const auto points = spring.bezierSpline();
    const auto toQt = [](Point point) { return QPointF(point.x, point.y); };
    for (std::size_t i = 0; i + 2 < points.size(); i += 3) {
        curve_.addCubicBezierSegment(toQt(points[i]), toQt(points[i + 1]), toQt(points[i + 2]));
    }
}

}  // namespace sunpane
