#include "linux/desktop/X11PanelWindow.h"

#include <xcb/shape.h>
#include <xcb/xcb.h>

#include <QEvent>
#include <QGuiApplication>
#include <QRegion>
#include <QScreen>
#include <utility>
#include <vector>

#include "linux/desktop/ScreenCoordinates.h"
#include "linux/desktop/XcbReply.h"

namespace sunpane {
namespace {

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

// As whole numbers: left, top, width and height of each rectangle.
void setBlurRegion(xcb_window_t window, xcb_atom_t property, const std::vector<xcb_rectangle_t>& rectangles) {
    std::vector<std::uint32_t> numbers;
    for (const auto& r : rectangles) {
        for (const int number : {int{r.x}, int{r.y}, int{r.width}, int{r.height}})
            numbers.push_back(static_cast<std::uint32_t>(number));
    }
    xcb_change_property(toolkitConnection(), XCB_PROP_MODE_REPLACE, window, property, XCB_ATOM_CARDINAL, 32,
                        static_cast<std::uint32_t>(numbers.size()), numbers.data());
}

}  // namespace

X11PanelWindow::X11PanelWindow(std::unique_ptr<QWindow> window, const Rect& frame, X11Events& events,
                               std::function<bool()> isOpen)
    : window_(std::move(window)), events_(events), isOpen_(std::move(isOpen)) {
    window_->setFlags(Qt::FramelessWindowHint | Qt::BypassWindowManagerHint | Qt::WindowStaysOnTopHint |
                      Qt::NoDropShadowWindowHint);
    window_->setGeometry(coordinates::fromScreenPoints(frame));
    window_->create();
    window_->installEventFilter(this);
    connect(&events_, &X11Events::compositorChanged, this, &X11PanelWindow::applyShape);
}

X11PanelWindow::~X11PanelWindow() {
    window_->removeEventFilter(this);
}

bool X11PanelWindow::setFrame(const Rect& frame) {
    const QRect geometry = coordinates::fromScreenPoints(frame);
    if (geometry == window_->geometry()) return false;
    window_->setGeometry(geometry);
    // Whoever looks at the window over another connection is to find it where it is now.
    focusedWindow();
    return true;
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
    // Not raised: its private space knows what it must stay below.
    window_->show();
    applyShape();
    if (std::exchange(keyAgain_, false)) makeKey();
}

void X11PanelWindow::orderOut() {
    if (!window_->isVisible()) return;
    keyAgain_ = previousFocus_ && focusedWindow() == window_->winId();
    resignKey();
    window_->hide();
}

void X11PanelWindow::makeKey() {
    xcb_connection_t* connection = toolkitConnection();
    if (connection == nullptr || !events_.isConnected()) {
        window_->requestActivate();
        return;
    }
    const auto ours = static_cast<xcb_window_t>(window_->winId());
    const auto focused = focusedWindow();
    if (!focused || focused == ours) return;
    previousFocus_ = focused;
    // Not by way of the toolkit, whose clock knows nothing of a key that was grabbed elsewhere: a request that is older
    // than the last change of the focus has no effect.
    keySince_ = events_.serverTime();
    xcb_set_input_focus(connection, XCB_INPUT_FOCUS_POINTER_ROOT, ours, keySince_);
    xcb_flush(connection);
}

void X11PanelWindow::resignKey() {
    const auto previous = std::exchange(previousFocus_, std::nullopt);
    if (!previous) return;
    xcb_connection_t* connection = toolkitConnection();
    // With the time at which the panel took the focus this has no effect if anyone has moved the focus since, as the
    // click that folded the panel may do at this very moment.
    xcb_set_input_focus(connection, XCB_INPUT_FOCUS_POINTER_ROOT, heir(*previous), keySince_);
    xcb_flush(connection);
}

std::optional<xcb_window_t> X11PanelWindow::focusedWindow() {
    xcb_connection_t* connection = toolkitConnection();
    const auto reply = own(xcb_get_input_focus_reply(connection, xcb_get_input_focus(connection), nullptr));
    return reply ? std::optional(reply->focus) : std::nullopt;
}

xcb_window_t X11PanelWindow::heir(xcb_window_t previous) const {
    xcb_connection_t* connection = toolkitConnection();
    for (const xcb_window_t candidate : {previous, events_.activeWindow()}) {
        if (candidate == XCB_INPUT_FOCUS_POINTER_ROOT) return candidate;
        const auto attributes =
            own(xcb_get_window_attributes_reply(connection, xcb_get_window_attributes(connection, candidate), nullptr));
        if (attributes && attributes->map_state == XCB_MAP_STATE_VIEWABLE) return candidate;
    }
    return XCB_INPUT_FOCUS_POINTER_ROOT;
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
    if (events_.compositorBlurs()) {
        setBlurRegion(id, events_.blurAtom(), rectangles);
    } else if (events_.isConnected()) {
        xcb_delete_property(toolkitConnection(), id, events_.blurAtom());
    }
    xcb_flush(toolkitConnection());
}

bool X11PanelWindow::eventFilter(QObject* watched, QEvent* event) {
    // Nothing would take the keyboard from a folded notch again.
    if (event->type() == QEvent::MouseButtonPress && isOpen_()) makeKey();
    return QObject::eventFilter(watched, event);
}

}  // namespace sunpane
