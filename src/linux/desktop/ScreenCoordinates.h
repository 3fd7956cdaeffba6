#pragma once

#include <QPoint>
#include <QRect>

#include "base/Geometry.h"

/// Between Qt's device-independent pixels, whose y grows downward, and screen points, whose y grows upward from the
/// bottom of the primary screen. Both have the same unit.
namespace sunpane::coordinates {

Point toScreenPoints(const QPointF& position);
Rect toScreenPoints(const QRectF& rectangle);
QRect fromScreenPoints(const Rect& rectangle);

}  // namespace sunpane::coordinates
