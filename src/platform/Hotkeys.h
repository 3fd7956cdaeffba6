#pragma once

#include <functional>

#include "base/Subscription.h"

namespace sunpane {

/// Keys that reach this program whichever program has the keyboard. Main thread only.
class Hotkeys {
public:
    virtual ~Hotkeys() = default;

    /// Calls `handler` at each press of Control+Space until the subscription is destroyed, which gives the key back at
    /// once. An empty subscription when another program owns the key or the desktop has no such keys.
    [[nodiscard]] virtual Subscription registerControlSpace(std::function<void()> handler) = 0;
};

}  // namespace sunpane
