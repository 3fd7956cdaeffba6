#include "linux/desktop/X11PanelWindow.h"

#include <xcb/shape.h>
#include <xcb/xcb.h>

#include <QEvent>
#include <QGuiApplication>
#include <QRegion>
#include <QScreen>
#include <cstdlib>
#include <utility>
#include <vector>

#include "linux/desktop/ScreenCoordinates.h"

namespace sunpane {
namespace {

constexpr int mostRaisesInARow = 20;
constexpr qint64 calmAfterMilliseconds = 2000;

xcb_connection_t* toolkitConnection() {
    const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    return x11 != nullptr ? x11->connection() : nullptr;
}

std::vector<xcb_rectangle_t> toRectangles(const QRegion& region) {
    std::vector<xcb_rectangle_t> rectangles;
    rectangles.reserve(static_cast<std::size_t>(region.rectCount()));
    for (const QRect& rect : region) {
        rectangles.push_back({static_cast<std::int16_t>(rect.x()), static_cast<std::int16_t>(rect.y()),
                              static_cast<std::uint16_t>(rect.width()), static_cast<std::uint16_t>(rect.height())});
    }
    return rectangles;
}

void setShape(xcb_window_t window, xcb_shape_kind_t kind, const std::vector<xcb_rectangle_t>& rectangles) {
    xcb_shape_rectangles(toolkitConnection(), XCB_SHAPE_SO_SET, kind, XCB_CLIP_ORDERING_UNSORTED, window, 0, 0,
                         static_cast<std::uint32_t>(rectangles.size()), rectangles.data());
}

void removeShape(xcb_window_t window, xcb_shape_kind_t kind) {
    xcb_shape_mask(toolkitConnection(), XCB_SHAPE_SO_SET, kind, window, 0, 0, XCB_NONE);
}

}  // namespace

X11PanelWindow::X11PanelWindow(std::unique_ptr<QWindow> window, const Rect& frame, X11Events& events)
    : window_(std::move(window)), events_(events) {
    window_->setFlags(Qt::FramelessWindowHint | Qt::BypassWindowManagerHint | Qt::WindowStaysOnTopHint |
                      Qt::NoDropShadowWindowHint);
    window_->setGeometry(coordinates::fromScreenPoints(frame));
    window_->create();
    window_->installEventFilter(this);
    connect(&events_, &X11Events::compositorChanged, this, &X11PanelWindow::applyShape);
    connect(&events_, &X11Events::coveredByAnother, this, &X11PanelWindow::raiseAgain);
}

X11PanelWindow::~X11PanelWindow() {
    events_.watchStacking(XCB_NONE);
    window_->removeEventFilter(this);
}

Rect X11PanelWindow::frame() const {
    return coordinates::toScreenPoints(window_->geometry());
}

bool X11PanelWindow::isVisible() const {
    return window_->isVisible();
}

bool X11PanelWindow::isOnScreen() const {
    const QScreen* screen = window_->screen();
    return window_->isVisible() && screen != nullptr && screen->geometry().intersects(window_->geometry());
}

void X11PanelWindow::orderFrontRegardless() {
    window_->show();
    window_->raise();
    events_.watchStacking(static_cast<xcb_window_t>(window_->winId()));
    applyShape();
}

void X11PanelWindow::orderOut() {
    resignKey();
    events_.watchStacking(XCB_NONE);
    window_->hide();
}

void X11PanelWindow::makeKey() {
    if (window_->isActive()) return;
    if (xcb_connection_t* connection = toolkitConnection()) {
        xcb_get_input_focus_reply_t* focus =
            xcb_get_input_focus_reply(connection, xcb_get_input_focus(connection), nullptr);
        if (focus != nullptr) previousFocus_ = focus->focus;
        std::free(focus);
    }
    window_->requestActivate();
}

void X11PanelWindow::resignKey() {
    const xcb_window_t previous = std::exchange(previousFocus_, XCB_NONE);
    xcb_connection_t* connection = toolkitConnection();
    if (previous == XCB_NONE || connection == nullptr || !window_->isActive()) return;
    // A window that is gone by now makes this an error that is ignored; the focus then falls to its parent.
    xcb_set_input_focus(connection, XCB_INPUT_FOCUS_PARENT, previous, XCB_CURRENT_TIME);
    xcb_flush(connection);
}

void X11PanelWindow::setOutline(const QPolygonF& outline) {
    if (outline == outline_) return;
    outline_ = outline;
    applyShape();
}

void X11PanelWindow::applyShape() {
    if (outline_.isEmpty() || toolkitConnection() == nullptr) return;
    const qreal scale = window_->devicePixelRatio();
    QPolygonF pixels = outline_;
    for (QPointF& point : pixels)
        point *= scale;
    const auto rectangles = toRectangles(QRegion(pixels.toPolygon()));
    const auto id = static_cast<xcb_window_t>(window_->winId());
    if (events_.hasCompositor()) {
        removeShape(id, XCB_SHAPE_SK_BOUNDING);
        setShape(id, XCB_SHAPE_SK_INPUT, rectangles);
    } else {
        setShape(id, XCB_SHAPE_SK_BOUNDING, rectangles);
        removeShape(id, XCB_SHAPE_SK_INPUT);
    }
    xcb_flush(toolkitConnection());
}

void X11PanelWindow::raiseAgain() {
    if (!window_->isVisible()) return;
    if (sinceRaised_.isValid() && sinceRaised_.elapsed() > calmAfterMilliseconds) raisesInARow_ = 0;
    if (++raisesInARow_ > mostRaisesInARow) return;
    sinceRaised_.start();
    window_->raise();
}

bool X11PanelWindow::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::MouseButtonPress) makeKey();
    return QObject::eventFilter(watched, event);
}

}  // namespace sunpane
