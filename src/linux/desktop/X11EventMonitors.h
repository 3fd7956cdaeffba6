#pragma once

#include <QKeyEvent>
#include <QObject>

#include "base/HandlerList.h"
#include "linux/desktop/ScrollGestures.h"
#include "linux/desktop/X11Events.h"
#include "platform/EventMonitors.h"

namespace sunpane {

/// Pointer and key monitors: XInput 2 raw motion for the whole screen, the toolkit's events for our own windows.
///
/// Scrolling is read from XInput 2 as well, because the toolkit rounds it, merges steps that come quickly and leaves
/// out the one that tells that the fingers have left. Its own wheel events are only held back where a step was
/// swallowed.
class X11EventMonitors : public QObject, public EventMonitors {
    Q_OBJECT

public:
    X11EventMonitors(X11Events& events, RunLoop& runLoop);

    Point pointerLocation() const override;
    Subscription onGlobalPointerMoved(std::function<void()> handler) override;
    Subscription onLocalPointerMoved(std::function<void()> handler) override;
    Subscription onGlobalMouseDown(std::function<void()> handler) override;
    Subscription onLocalScroll(std::function<bool(const ScrollEvent&)> handler) override;
    Subscription onLocalKeyDown(std::function<bool(const KeyEvent&)> handler) override;

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    bool tellScroll(const ScrollEvent& event);
    bool swallowsKey(const QKeyEvent& event) const;

    X11Events& events_;
    HandlerList<> global_;
    HandlerList<> local_;
    HandlerList<> mouseDown_;
    HandlerList<const ScrollEvent&, bool&> scrolled_;
    HandlerList<const KeyEvent&, bool&> keys_;
    ScrollGestures gestures_;
    bool gestureIsOverUs_ = false;
};

}  // namespace sunpane
