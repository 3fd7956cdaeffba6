#pragma once

#include <functional>

#include "base/Instant.h"
#include "base/Subscription.h"

namespace sunpane {

/// Runs tasks one at a time, in the order in which they come due. All operations may be called from any thread.
///
/// A cancelled timer or delayed task never starts once `Subscription::cancel` has returned on the executor's own
/// thread; cancelled from another thread it may still be running at that moment. Delays are uptime, not wall clock.
class SerialExecutor {
public:
    using Task = std::function<void()>;

    virtual ~SerialExecutor() = default;

    /// Runs `task` as soon as what was posted before it has run.
    virtual void post(Task task) = 0;

    /// Runs `task` once, `delay` seconds from now.
    [[nodiscard]] virtual Subscription after(Seconds delay, Task task) = 0;

    /// Runs `task` every `interval` seconds, first after one interval. Missed firings are not made up for.
    [[nodiscard]] virtual Subscription every(Seconds interval, Task task) = 0;
};

}  // namespace sunpane
