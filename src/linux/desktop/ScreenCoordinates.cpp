#include "linux/desktop/ScreenCoordinates.h"

#include <QGuiApplication>
#include <QScreen>

namespace sunpane::coordinates {
namespace {

// Qt's y of the line from which screen points count upward.
double baseline() {
    const QScreen* primary = QGuiApplication::primaryScreen();
    if (primary == nullptr) return 0;
    const QRect frame = primary->geometry();
    return frame.y() + frame.height();
}

}  // namespace

Point toScreenPoints(const QPointF& position) {
    return {position.x(), baseline() - position.y()};
}

Rect toScreenPoints(const QRectF& rectangle) {
    return {rectangle.x(), baseline() - rectangle.y() - rectangle.height(), rectangle.width(), rectangle.height()};
}

QRect fromScreenPoints(const Rect& rectangle) {
    return QRectF(rectangle.x, baseline() - rectangle.maxY(), rectangle.width, rectangle.height).toRect();
}

}  // namespace sunpane::coordinates
