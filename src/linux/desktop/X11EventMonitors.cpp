#include "linux/desktop/X11EventMonitors.h"

#include <QCursor>
#include <QEvent>
#include <QGuiApplication>
#include <utility>

#include "linux/desktop/ScreenCoordinates.h"

namespace sunpane {

X11EventMonitors::X11EventMonitors(X11Events& events) : events_(events) {
    connect(&events_, &X11Events::pointerMoved, this, [this] { global_.call(); });
    connect(&events_, &X11Events::mouseDownElsewhere, this, [this] { mouseDown_.call(); });
    qGuiApp->installEventFilter(this);
}

Point X11EventMonitors::pointerLocation() const {
    return coordinates::toScreenPoints(QCursor::pos());
}

Subscription X11EventMonitors::onGlobalPointerMoved(std::function<void()> handler) {
    if (!events_.isConnected()) return {};
    return global_.add(std::move(handler));
}

Subscription X11EventMonitors::onLocalPointerMoved(std::function<void()> handler) {
    return local_.add(std::move(handler));
}

Subscription X11EventMonitors::onGlobalMouseDown(std::function<void()> handler) {
    if (!events_.isConnected()) return {};
    return mouseDown_.add(std::move(handler));
}

bool X11EventMonitors::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::MouseMove && watched->isWindowType()) local_.call();
    return QObject::eventFilter(watched, event);
}

}  // namespace sunpane
