#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "base/Subscription.h"
#include "platform/EventMonitors.h"

namespace sunpane {

/// Hands each scroll event over the panel to those who recognise gestures in it. The one that was added last is asked
/// first, and an event that one of them consumes reaches neither the others nor the view below.
///
/// One instance, owned by the start-up code; main thread only.
class ScrollSwipeHub {
public:
    /// Returns whether it consumed the event.
    using Handler = std::function<bool(const ScrollEvent&)>;

    explicit ScrollSwipeHub(EventMonitors& monitors) : monitors_(monitors) {}
    ScrollSwipeHub(const ScrollSwipeHub&) = delete;
    ScrollSwipeHub& operator=(const ScrollSwipeHub&) = delete;

    /// Adds a handler, for as long as the subscription is kept; it may be dropped while handlers are being asked. The
    /// first handler starts the monitor of scroll events, which then stays; where the desktop refuses one, the next
    /// handler tries again.
    [[nodiscard]] Subscription add(Handler handler);

private:
    using Entries = std::vector<std::shared_ptr<Handler>>;

    void ensureMonitor();
    bool dispatch(const ScrollEvent& event) const;

    EventMonitors& monitors_;
    // The newest first.
    std::shared_ptr<Entries> entries_ = std::make_shared<Entries>();
    Subscription monitor_;
};

}  // namespace sunpane
