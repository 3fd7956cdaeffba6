#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "base/HandlerList.h"

namespace sunpane {

/// Broadcasts by name within the process, with an optional text as the notification's object. Main thread only.
///
/// An observer that is cancelled while a notification is being delivered is not called any more; one that is added
/// meanwhile hears the next one.
class LocalNotifications {
public:
    using Handler = std::function<void(const std::optional<std::string>& object)>;

    [[nodiscard]] Subscription observe(std::string name, Handler handler);
    void post(std::string_view name, const std::optional<std::string>& object = std::nullopt) const;

private:
    using Observers = HandlerList<const std::optional<std::string>&>;
    std::map<std::string, Observers, std::less<>> observers_;
};

}  // namespace sunpane
