#include "reminders/ReminderScheduler.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "base/Dates.h"

namespace sunpane {
namespace {

constexpr double secondsPerMinute = 60;

CalendarTrigger triggerFor(Instant date, const std::optional<std::string>& rule, const Clock& clock) {
    const CivilTime time = LocalCalendar(clock).civilTime(date);
    CalendarTrigger trigger;
    trigger.hour = time.hour;
    trigger.minute = time.minute;
    trigger.repeats = rule == repeat_rule::daily || rule == repeat_rule::weekly || rule == repeat_rule::monthly;
    if (rule == repeat_rule::weekly) trigger.weekday = weekday(time.day);
    if (rule == repeat_rule::monthly || !trigger.repeats) trigger.day = time.day.day;
    if (!trigger.repeats) {
        trigger.month = time.day.month;
        trigger.year = time.day.year;
    }
    return trigger;
}

// Whether both triggers were made for the same rule: each rule sets other components.
bool isOfSameRule(const CalendarTrigger& a, const CalendarTrigger& b) {
    return a.repeats == b.repeats && a.day.has_value() == b.day.has_value() &&
           a.weekday.has_value() == b.weekday.has_value();
}

NotificationRequest meetingRequest(const MeetingAlert& alert) {
    NotificationRequest request;
    request.identifier = std::string(notification_id::meetingPrefix) + alert.id;
    request.title = alert.title;
    request.body = alert.joinURL ? "Starts in 15 minutes — tap to join" : "Starts in 15 minutes";
    if (alert.joinURL) request.userInfo[notification_id::joinURLKey] = *alert.joinURL;
    // A meeting starts at one moment, wherever the user is and whatever the clocks there do.
    const LocalCalendar utc("UTC", "en_US_POSIX");
    const CivilTime time = utc.civilTime(alert.start - ReminderScheduler::meetingLead);
    request.trigger = {"UTC",     time.day.year, time.day.month, time.day.day, std::nullopt,
                       time.hour, time.minute,   time.second,    false};
    request.expires = alert.start;
    return request;
}

}  // namespace

std::string notification_id::ofTodo(const Uuid& todoID) {
    return std::string(todoPrefix) + todoID.toString();
}

ReminderScheduler::ReminderScheduler(UserNotificationCenter& center, const Clock& clock)
    : center_(center), clock_(clock), self_(std::make_shared<ReminderScheduler*>(this)) {}

void ReminderScheduler::ensureAuth(std::function<void()> action) {
    center_.authorization(
        [weak = std::weak_ptr(self_), action = std::move(action)](NotificationAuthorization status) mutable {
            const auto self = weak.lock();
            if (!self) return;
            if (status != NotificationAuthorization::notDetermined) {
                action();
                return;
            }
            (*self)->center_.requestAuthorization([weak, action = std::move(action)](bool) {
                if (!weak.expired()) action();
            });
        });
}

NotificationRequest ReminderScheduler::todoRequest(const Uuid& todoID, const std::string& text, Instant date,
                                                   const std::optional<std::string>& repeatRule, const Clock& clock) {
    NotificationRequest request;
    request.identifier = notification_id::ofTodo(todoID);
    request.title = "Dawnly reminder";
    request.body = text;
    request.trigger = triggerFor(date, repeatRule, clock);
    request.intended = Instant::fromUnix(std::floor(date.unixTime() / secondsPerMinute) * secondsPerMinute);
    return request;
}

NotificationRequest ReminderScheduler::inPlaceOf(const NotificationRequest& pending, NotificationRequest request) {
    const bool isSame =
        request.intended && pending.intended == request.intended && isOfSameRule(pending.trigger, request.trigger);
    if (isSame) request.trigger = pending.trigger;
    return request;
}

void ReminderScheduler::schedule(const Uuid& todoID, const std::string& text, Instant date,
                                 const std::optional<std::string>& repeatRule) {
    NotificationRequest request = todoRequest(todoID, text, date, repeatRule, clock_);
    const std::uint64_t number = ++lastSchedule_;
    underWay_[request.identifier] = number;
    ensureAuth([this, number, request = std::move(request)] {
        const auto found = underWay_.find(request.identifier);
        if (found == underWay_.end() || found->second != number) return;
        center_.pending([weak = std::weak_ptr(self_), number, request](const auto& pending) {
            const auto self = weak.lock();
            if (!self) return;
            auto& underWay = (*self)->underWay_;
            const auto still = underWay.find(request.identifier);
            if (still == underWay.end() || still->second != number) return;
            underWay.erase(still);
            (*self)->replaceTodoRequest(request, pending);
        });
    });
}

void ReminderScheduler::replaceTodoRequest(NotificationRequest request,
                                           const std::vector<NotificationRequest>& pending) {
    const auto found = std::find_if(pending.begin(), pending.end(), [&](const NotificationRequest& each) {
        return each.identifier == request.identifier;
    });
    center_.add(found == pending.end() ? std::move(request) : inPlaceOf(*found, std::move(request)));
}

void ReminderScheduler::cancel(const Uuid& todoID) {
    const std::string identifier = notification_id::ofTodo(todoID);
    underWay_.erase(identifier);
    center_.removePending({identifier});
}

void ReminderScheduler::syncMeetingAlerts(std::vector<MeetingAlert> alerts, std::vector<std::string> unread) {
    const std::uint64_t number = ++lastSync_;
    ensureAuth([this, number, unread = std::move(unread), alerts = std::move(alerts)]() mutable {
        if (number != lastSync_) return;
        center_.pending([weak = std::weak_ptr(self_), number, unread = std::move(unread),
                         alerts = std::move(alerts)](const auto& pending) {
            const auto self = weak.lock();
            if (self && number == (*self)->lastSync_) (*self)->replaceMeetingAlerts(alerts, unread, pending);
        });
    });
}

void ReminderScheduler::replaceMeetingAlerts(const std::vector<MeetingAlert>& alerts,
                                             const std::vector<std::string>& unread,
                                             const std::vector<NotificationRequest>& pending) {
    std::map<std::string, NotificationRequest> wanted;
    for (const auto& alert : alerts) {
        NotificationRequest request = meetingRequest(alert);
        wanted.insert_or_assign(request.identifier, std::move(request));
    }
    const auto isUnread = [&](std::string_view identifier) {
        identifier.remove_prefix(notification_id::meetingPrefix.size());
        return std::any_of(unread.begin(), unread.end(),
                           [&](const std::string& prefix) { return identifier.starts_with(prefix); });
    };
    std::vector<std::string> unwanted;
    const Instant now = clock_.now();
    for (const auto& request : pending) {
        if (!request.identifier.starts_with(notification_id::meetingPrefix)) continue;
        const auto found = wanted.find(request.identifier);
        // A meeting that was moved so close that it is not announced any more must not be announced for its old time.
        const bool isUnwanted =
            found == wanted.end() ? !isUnread(request.identifier) : found->second.trigger != request.trigger;
        if (isUnwanted) unwanted.push_back(request.identifier);
    }
    if (!unwanted.empty()) center_.removePending(unwanted);
    for (const auto& [identifier, request] : wanted) {
        if (*request.expires - meetingLead > now) center_.add(request);
    }
}

}  // namespace sunpane
