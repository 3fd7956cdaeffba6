#pragma once

#include <QKeyEvent>
#include <QObject>

#include "base/HandlerList.h"
#include "linux/desktop/X11Events.h"
#include "platform/EventMonitors.h"

namespace sunpane {

/// Pointer monitors: XInput 2 raw motion for the whole screen, the toolkit's events for our own windows.
class X11EventMonitors : public QObject, public EventMonitors {
    Q_OBJECT

public:
    explicit X11EventMonitors(X11Events& events);

    Point pointerLocation() const override;
    Subscription onGlobalPointerMoved(std::function<void()> handler) override;
    Subscription onLocalPointerMoved(std::function<void()> handler) override;
    Subscription onGlobalMouseDown(std::function<void()> handler) override;

    Subscription onLocalScroll(std::function<bool(const ScrollEvent&)> handler) override;
    Subscription onLocalKeyDown(std::function<bool(const KeyEvent&)> handler) override;

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    bool swallowsKey(const QKeyEvent& event) const;

    X11Events& events_;
    HandlerList<> global_;
    HandlerList<> local_;
    HandlerList<> mouseDown_;
    HandlerList<const KeyEvent&, bool&> keys_;
};

}  // namespace sunpane
