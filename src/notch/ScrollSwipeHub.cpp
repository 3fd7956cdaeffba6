#include "notch/ScrollSwipeHub.h"

#include <algorithm>
#include <utility>

namespace sunpane {

Subscription ScrollSwipeHub::add(Handler handler) {
    ensureMonitor();
    auto entry = std::make_shared<Handler>(std::move(handler));
    entries_->insert(entries_->begin(), entry);
    return Subscription([entries = std::weak_ptr(entries_), weak = std::weak_ptr(entry)] {
        const auto removed = weak.lock();
        if (!removed) return;
        // An event may be on its way through the handlers just now.
        *removed = nullptr;
        if (const auto list = entries.lock()) std::erase(*list, removed);
    });
}

void ScrollSwipeHub::ensureMonitor() {
    if (monitor_) return;
    monitor_ = monitors_.onLocalScroll([this](const ScrollEvent& event) { return dispatch(event); });
}

bool ScrollSwipeHub::dispatch(const ScrollEvent& event) const {
    const Entries snapshot = *entries_;
    return std::any_of(snapshot.begin(), snapshot.end(), [&event](const std::shared_ptr<Handler>& entry) {
        // A copy keeps a handler alive that removes itself while it runs.
        const Handler handler = *entry;
        return handler && handler(event);
    });
}

}  // namespace sunpane
