#pragma once

#include <functional>
#include <string>

#include "base/Geometry.h"
#include "base/Subscription.h"

namespace sunpane {

/// Where a scroll gesture is in its life. `none` where there is no gesture: the clicks of a wheel, and anything that
/// has no momentum.
enum class ScrollPhase { none, began, changed, ended, cancelled };

/// One step of scrolling. A plain value.
struct ScrollEvent {
    ScrollPhase phase = ScrollPhase::none;
    /// The phase of what coasts on after the fingers have left.
    ScrollPhase momentumPhase = ScrollPhase::none;
    /// Precise, in points. Positive moves the content to the right, or down: it goes where the fingers go.
    double deltaX = 0;
    double deltaY = 0;
};

/// A key that went down in one of this program's windows. A plain value.
struct KeyEvent {
    /// What the key types without Control and Command, in lower case and UTF-8; empty for a key that types nothing.
    std::string characters;
    /// The key that starts commands on this desktop's relatives: Super.
    bool command = false;
    bool control = false;
    bool shift = false;
    /// Whether the keyboard is on a field for text.
    bool inTextField = false;
};

/// Where the pointer is, and what happens to it. Main thread only.
class EventMonitors {
public:
    virtual ~EventMonitors() = default;

    /// In screen points. Wherever the pointer is, whoever has the keyboard.
    virtual Point pointerLocation() const = 0;

    /// Calls `handler` when the pointer moves over other programs' windows. An empty subscription where the desktop
    /// does not tell; bursts may arrive as one call.
    [[nodiscard]] virtual Subscription onGlobalPointerMoved(std::function<void()> handler) = 0;

    /// Calls `handler` when the pointer moves over this program's own windows.
    [[nodiscard]] virtual Subscription onLocalPointerMoved(std::function<void()> handler) = 0;

    /// Calls `handler` when the left or the right button goes down outside this program's windows. An empty
    /// subscription where the desktop does not tell.
    [[nodiscard]] virtual Subscription onGlobalMouseDown(std::function<void()> handler) = 0;

    /// Calls `handler` for each step of a scroll gesture over this program's own windows, before they get it; a step
    /// for which it returns true goes no further. An empty subscription where the desktop does not tell. The clicks of
    /// a plain wheel may be kept from handlers: they are no gesture, and scroll what is under the pointer.
    [[nodiscard]] virtual Subscription onLocalScroll(std::function<bool(const ScrollEvent&)> handler) = 0;

    /// Calls `handler` for each key that goes down, or repeats, in one of this program's own windows, before they get
    /// it; a key for which it returns true goes no further.
    [[nodiscard]] virtual Subscription onLocalKeyDown(std::function<bool(const KeyEvent&)> handler) = 0;
};

}  // namespace sunpane
