#include "views/WorkArea.h"

#include <QGuiApplication>

namespace sunpane {

WorkArea::WorkArea(QObject* parent) : QObject(parent) {
    follow();
}

void WorkArea::setWindow(QWindow* window) {
    if (window_ == window) return;
    if (window_) disconnect(window_, nullptr, this, nullptr);
    window_ = window;
    if (window_) connect(window_, &QWindow::screenChanged, this, &WorkArea::follow);
    follow();
}

void WorkArea::follow() {
    if (screen_) disconnect(screen_, nullptr, this, nullptr);
    screen_ = window_ ? window_->screen() : QGuiApplication::primaryScreen();
    if (screen_) connect(screen_, &QScreen::availableGeometryChanged, this, &WorkArea::areaChanged);
    emit areaChanged();
}

QRectF WorkArea::area() const {
    return screen_ ? QRectF(screen_->availableGeometry()) : QRectF();
}

}  // namespace sunpane
