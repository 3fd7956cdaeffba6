#pragma once

#include <functional>

#include "base/Subscription.h"

namespace sunpane {

/// Whether the user has asked the desktop for less motion. Main thread only.
class MotionPreference {
public:
    virtual ~MotionPreference() = default;

    /// False until the desktop has answered, and on a desktop without such a setting.
    virtual bool isReduced() const = 0;

    /// Calls `handler` on the main thread after `isReduced` has changed.
    [[nodiscard]] virtual Subscription onChange(std::function<void()> handler) = 0;
};

}  // namespace sunpane
