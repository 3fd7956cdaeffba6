#include "base/LocalNotifications.h"

#include <utility>

namespace sunpane {

Subscription LocalNotifications::observe(std::string name, Handler handler) {
    return observers_[std::move(name)].add(std::move(handler));
}

void LocalNotifications::post(std::string_view name, const std::optional<std::string>& object) const {
    if (const auto found = observers_.find(name); found != observers_.end()) found->second.call(object);
}

}  // namespace sunpane
