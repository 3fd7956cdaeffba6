#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "base/Instant.h"

namespace sunpane {

enum class NotificationAuthorization { notDetermined, denied, authorized };

/// When a notification comes due: at every moment that matches all components that are set, in the Gregorian calendar
/// and in `timeZone`. Components smaller than the smallest one set count as their least value. A moment that the clocks
/// skip comes due at the first instant after the gap, one that they repeat comes due once: the first time, if that is
/// still to come and the request does not intend the second.
struct CalendarTrigger {
    /// Whose clock the components are read from, as an IANA name; absent: the user's, wherever the user is by then.
    std::optional<std::string> timeZone = std::nullopt;
    std::optional<int> year = std::nullopt;
    /// 1 to 12.
    std::optional<int> month = std::nullopt;
    /// 1 to 31.
    std::optional<int> day = std::nullopt;
    /// 1 (Sunday) to 7 (Saturday).
    std::optional<int> weekday = std::nullopt;
    std::optional<int> hour = std::nullopt;
    std::optional<int> minute = std::nullopt;
    std::optional<int> second = std::nullopt;
    /// Whether it comes due at every match, or only at the first after it was added.
    bool repeats = false;
    friend bool operator==(const CalendarTrigger&, const CalendarTrigger&) = default;
};

struct NotificationRequest {
    std::string identifier;
    std::string title;
    std::string body;
    /// Handed back when the user answers the notification.
    std::map<std::string, std::string> userInfo;
    CalendarTrigger trigger;
    /// From then on it is not worth showing any more; absent: it always is.
    std::optional<Instant> expires = std::nullopt;
    /// The moment that the trigger was made for. It tells which one is meant where the clocks show a time twice, and
    /// whether two requests are for the same moment though their triggers were read from clocks of different zones.
    std::optional<Instant> intended = std::nullopt;
    friend bool operator==(const NotificationRequest&, const NotificationRequest&) = default;
};

/// The user's click on a notification.
struct NotificationResponse {
    std::string identifier;
    std::map<std::string, std::string> userInfo;
};

/// The user's notifications: requests wait here until they come due, across restarts of the program, and are shown
/// with the default sound. Main thread only. Nothing here reports an error; what cannot be shown is not shown.
class UserNotificationCenter {
public:
    virtual ~UserNotificationCenter() = default;

    /// Each of these calls back on the main thread, never before it returns.
    virtual void authorization(std::function<void(NotificationAuthorization)> answer) = 0;
    virtual void requestAuthorization(std::function<void(bool granted)> answer) = 0;
    virtual void pending(std::function<void(std::vector<NotificationRequest>)> answer) = 0;

    /// Adds a request, in place of a pending one of the same identifier; when the trigger is the same, that one's
    /// moment stays, even if it is due and waits to be shown. One that never comes due is dropped, and so is one that
    /// would only repeat what was shown under its identifier for the same moment.
    virtual void add(NotificationRequest request) = 0;

    /// Forgets pending requests. What was shown already stays where it is.
    virtual void removePending(const std::vector<std::string>& identifiers) = 0;

    /// Who is told of clicks, also on notifications that an earlier run of the program showed.
    virtual void setResponseHandler(std::function<void(const NotificationResponse&)> handler) = 0;
};

}  // namespace sunpane
