#include "linux/desktop/X11EventMonitors.h"

#include <QCursor>
#include <QEvent>
#include <QGuiApplication>
#include <QInputMethodQueryEvent>
#include <QWheelEvent>
#include <utility>

#include "linux/desktop/ScreenCoordinates.h"

namespace sunpane {
namespace {

bool isInTextField(QObject* focus) {
    if (focus == nullptr) return false;
    // One that is only for reading takes no input, and yet the keys that edit are meant for it.
    if (focus->inherits("QQuickTextEdit") || focus->inherits("QQuickTextInput")) return true;
    QInputMethodQueryEvent query(Qt::ImEnabled);
    QCoreApplication::sendEvent(focus, &query);
    return query.value(Qt::ImEnabled).toBool();
}

}  // namespace

X11EventMonitors::X11EventMonitors(X11Events& events, RunLoop& runLoop)
    : events_(events), gestures_(runLoop, [this](const ScrollEvent& event) { return tellScroll(event); }) {
    connect(&events_, &X11Events::pointerMoved, this, [this] { global_.call(); });
    connect(&events_, &X11Events::mouseDownElsewhere, this, [this] { mouseDown_.call(); });
    connect(&events_, &X11Events::scrolled, this, [this](const ScrollStep& step) { gestures_.take(step); });
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

Subscription X11EventMonitors::onLocalScroll(std::function<bool(const ScrollEvent&)> handler) {
    if (!events_.isConnected()) return {};
    return scrolled_.add([handler = std::move(handler)](const ScrollEvent& event, bool& swallowed) {
        swallowed = swallowed || handler(event);
    });
}

bool X11EventMonitors::tellScroll(const ScrollEvent& event) {
    // The server tells of scrolling over other programs' windows too. The pointer rests while fingers scroll.
    if (event.phase == ScrollPhase::began) gestureIsOverUs_ = events_.isPointerOverUs();
    bool swallowed = false;
    if (gestureIsOverUs_) scrolled_.call(event, swallowed);
    return swallowed;
}

Subscription X11EventMonitors::onLocalKeyDown(std::function<bool(const KeyEvent&)> handler) {
    return keys_.add([handler = std::move(handler)](const KeyEvent& event, bool& swallowed) {
        swallowed = swallowed || handler(event);
    });
}

bool X11EventMonitors::swallowsKey(const QKeyEvent& event) const {
    KeyEvent key;
    // Not text(), which is a control character while Control is down.
    if (event.key() < Qt::Key_Escape) key.characters = QString(QChar(event.key())).toLower().toStdString();
    key.command = event.modifiers().testFlag(Qt::MetaModifier);
    key.control = event.modifiers().testFlag(Qt::ControlModifier);
    key.shift = event.modifiers().testFlag(Qt::ShiftModifier);
    key.inTextField = isInTextField(QGuiApplication::focusObject());
    bool swallowed = false;
    keys_.call(key, swallowed);
    return swallowed;
}

bool X11EventMonitors::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::KeyPress && watched->isWindowType() && swallowsKey(static_cast<QKeyEvent&>(*event)))
        return true;
    if (event->type() == QEvent::Wheel && watched->isWindowType()) {
        // The two connections to the server do not run in step.
        events_.readEvents();
        if (gestures_.swallowed(static_cast<const QWheelEvent*>(event)->timestamp())) return true;
    }
    if (event->type() == QEvent::MouseMove && watched->isWindowType()) local_.call();
    return QObject::eventFilter(watched, event);
}

}  // namespace sunpane
