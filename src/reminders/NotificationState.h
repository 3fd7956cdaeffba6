#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/Dates.h"
#include "base/Instant.h"
#include "platform/UserNotifications.h"

namespace sunpane {

/// A request that waits, and what its trigger's clock shows when it comes due next. A plain value.
struct WaitingRequest {
    NotificationRequest request;
    CivilTime next;
    /// Whether, when that clock shows `next` twice, the second time is meant.
    bool isSecond = false;
    friend bool operator==(const WaitingRequest&, const WaitingRequest&) = default;
};

/// A notification that was shown. A plain value.
struct ShownNotification {
    /// The run of the notification service that showed it, and that run's number for it.
    std::string instance;
    std::uint32_t number = 0;
    std::string identifier;
    std::map<std::string, std::string> userInfo;
    /// When it came due, which may be long before it was shown.
    Instant moment;
    friend bool operator==(const ShownNotification&, const ShownNotification&) = default;
};

/// What outlives the program of its notifications: one request for each identifier, and the latest shown ones, oldest
/// first.
struct NotificationState {
    std::vector<WaitingRequest> waiting;
    std::vector<ShownNotification> shown;
    friend bool operator==(const NotificationState&, const NotificationState&) = default;
};

inline constexpr std::size_t maximumNotificationStateBytes = 16 << 20;

/// The state as JSON. Pure; any thread.
std::string encodeNotifications(const NotificationState& state);

/// What `encodeNotifications` wrote, without the entries that cannot be read. Absent when `bytes` is anything else.
std::optional<NotificationState> decodeNotifications(std::string_view bytes);

}  // namespace sunpane
