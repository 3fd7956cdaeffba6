#pragma once

#include <functional>

#include "base/Geometry.h"
#include "base/Subscription.h"

namespace sunpane {

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
};

}  // namespace sunpane
