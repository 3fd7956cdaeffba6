#pragma once

#include <functional>
#include <string>

#include "base/Subscription.h"

namespace sunpane {

/// Named broadcasts between the processes of one user's session. Main thread only.
class DistributedNotifications {
public:
    virtual ~DistributedNotifications() = default;

    /// Calls `handler` on the main thread for each broadcast of that name, such as "app.dawnly.Dawnly.report". Without
    /// a session to broadcast in, nothing is ever heard.
    [[nodiscard]] virtual Subscription observe(const std::string& name, std::function<void()> handler) = 0;
};

}  // namespace sunpane
