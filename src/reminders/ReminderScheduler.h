#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/Clock.h"
#include "base/Instant.h"
#include "base/Uuid.h"
#include "platform/UserNotifications.h"

namespace sunpane {

/// How notifications are named; a click on one is told apart by the prefix.
namespace notification_id {
inline constexpr std::string_view todoPrefix = "todo-";
inline constexpr std::string_view meetingPrefix = "meeting-";
/// The key of a meeting's link in the notification's user information.
inline constexpr const char* joinURLKey = "joinURL";
std::string ofTodo(const Uuid& todoID);
}  // namespace notification_id

/// How often a reminder comes again; any other rule means once.
namespace repeat_rule {
inline constexpr std::string_view daily = "daily";
inline constexpr std::string_view weekly = "weekly";
inline constexpr std::string_view monthly = "monthly";
}  // namespace repeat_rule

/// A meeting that the user is to be told of before it starts. A plain value.
struct MeetingAlert {
    std::string id;
    std::string title;
    Instant start;
    std::optional<std::string> joinURL;
    friend bool operator==(const MeetingAlert&, const MeetingAlert&) = default;
};

/// Turns todo reminders and upcoming meetings into notifications. Keeps nothing of its own: the notification centre
/// alone knows what is pending.
///
/// One instance, owned by the start-up code; main thread only. Failures are silent; where the user does not want
/// notifications none is shown.
class ReminderScheduler {
public:
    /// How long (s) before its start a meeting is announced.
    static constexpr Seconds meetingLead = 900;

    ReminderScheduler(UserNotificationCenter& center, const Clock& clock);

    /// Reminds of a todo at `date`, to the minute, and again by `repeatRule`, in place of what was pending for it. When
    /// that was for the same date and rule, it keeps its trigger.
    void schedule(const Uuid& todoID, const std::string& text, Instant date,
                  const std::optional<std::string>& repeatRule);

    /// Forgets the pending reminder of a todo. What was shown stays.
    void cancel(const Uuid& todoID);

    /// Makes the pending meeting alerts those of `alerts` that are still to come. Of overlapping calls the last counts.
    /// Meetings whose ids begin with one of `unread` may not be known yet: what is pending for them stays.
    void syncMeetingAlerts(std::vector<MeetingAlert> alerts, std::vector<std::string> unread = {});

    /// Runs `action` on the main thread, whatever the user's answer, once it is known whether notifications may be
    /// shown; asks the user if that was never decided.
    void ensureAuth(std::function<void()> action);

    /// The request that `schedule` makes.
    static NotificationRequest todoRequest(const Uuid& todoID, const std::string& text, Instant date,
                                           const std::optional<std::string>& repeatRule, const Clock& clock);

    /// What becomes of `request` where `pending` waits under its identifier. A reminder that was set for 9:00 stays one
    /// for 9:00 when the user is in another zone by now, so its trigger must not be read from that zone's clock anew.
    static NotificationRequest inPlaceOf(const NotificationRequest& pending, NotificationRequest request);

private:
    void replaceTodoRequest(NotificationRequest request, const std::vector<NotificationRequest>& pending);
    void replaceMeetingAlerts(const std::vector<MeetingAlert>& alerts, const std::vector<std::string>& unread,
                              const std::vector<NotificationRequest>& pending);

    UserNotificationCenter& center_;
    const Clock& clock_;
    // What is on its way to the centre, by identifier; a later call for the same todo overtakes it.
    std::map<std::string, std::uint64_t> underWay_;
    std::uint64_t lastSchedule_ = 0;
    std::uint64_t lastSync_ = 0;
    std::shared_ptr<ReminderScheduler*> self_;
};

}  // namespace sunpane
