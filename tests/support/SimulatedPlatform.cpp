#include "support/SimulatedPlatform.h"

#include <algorithm>
#include <cassert>

namespace sunpane::testing {

void SimulatedTime::advance(Seconds seconds) {
    assert(seconds >= 0);
    const Seconds end = uptime_ + seconds;
    while (!events_.empty() && events_.begin()->first.first <= end) {
        const auto [key, event] = *events_.begin();
        events_.erase(events_.begin());
        uptime_ = std::max(uptime_, key.first);
        if (!*event.task) continue;
        if (event.interval > 0) events_.emplace(Key{key.first + event.interval, nextOrder_++}, event);
        // A copy keeps the task alive when it cancels itself.
        const Task task = *event.task;
        task();
    }
    uptime_ = end;
}

std::shared_ptr<SimulatedTime::Task> SimulatedTime::insert(Seconds due, Seconds interval, Task task) {
    auto shared = std::make_shared<Task>(std::move(task));
    events_.emplace(Key{due, nextOrder_++}, Event{interval, shared});
    return shared;
}

Subscription SimulatedTime::schedule(Seconds delay, Seconds interval, Task task) {
    const auto shared = insert(uptime_ + delay, interval, std::move(task));
    return Subscription([this, weakSelf = std::weak_ptr(alive_), weak = std::weak_ptr(shared)] {
        const auto cancelled = weak.lock();
        if (!cancelled || weakSelf.expired()) return;
        *cancelled = nullptr;
        std::erase_if(events_, [&](const auto& entry) { return entry.second.task == cancelled; });
    });
}

void SimulatedTime::post(Task task) {
    insert(uptime_, 0, std::move(task));
}

}  // namespace sunpane::testing
