#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "base/Clock.h"
#include "base/Observable.h"
#include "base/RunLoop.h"
#include "base/Spring.h"
#include "calendar/CalendarFallback.h"
#include "platform/CalendarStore.h"
#include "reminders/ReminderScheduler.h"

namespace sunpane {

/// An online meeting, or any other event that the user may want to go to. A plain value.
struct Meeting {
    std::string title;
    Instant start;
    Instant end;
    std::optional<std::string> joinURL;
    friend bool operator==(const Meeting&, const Meeting&) = default;
};

/// The events of the coming `MeetingWatcher::horizon` that are meetings and not over, earliest first. Empty without
/// access.
std::vector<CalendarEvent> upcomingMeetings(const CalendarStore& store, const CalendarFallback& fallback, Instant now);

/// The one of `meetings` (earliest first) that the user most likely joins next: the first with a link, otherwise the
/// first with attendees, otherwise the first.
std::optional<Meeting> mostLikelyMeeting(const std::vector<CalendarEvent>& meetings);

/// What the alert about a meeting says; its id stays the same while the event does.
MeetingAlert alertFor(const CalendarEvent& event);

/// Knows the user's next meeting, and keeps a notification pending for each meeting of the next day and a half.
///
/// One instance, owned by the start-up code; main thread only. Looks again every minute, when the calendars change and
/// when the panel opens; only the last may ask the user for access.
class MeetingWatcher : public Observable {
public:
    static constexpr Seconds refreshInterval = 60;
    static constexpr Seconds horizon = 1209600;
    static constexpr Seconds alertHorizon = 129600;
    /// Of more meetings within the alert horizon the earliest get alerts.
    static constexpr std::size_t maximumAlerts = 256;
    /// How what shows the meeting moves when it changes.
    static constexpr Spring animation{0.35, 0.85};

    struct Collaborators {
        CalendarStore& store;
        CalendarFallback& fallback;
        ReminderScheduler& reminders;
        const Clock& clock;
        RunLoop& runLoop;
    };

    /// Starts watching; the first refresh runs on the main loop.
    explicit MeetingWatcher(const Collaborators& collaborators);

    /// Absent when there is no meeting or no access.
    const std::optional<Meeting>& next() const { return next_; }

    /// Computes `next` anew and brings the alerts in line with it. Without `mayPrompt` nothing happens unless access
    /// was granted already, and the user is never asked. While the calendars are being read nothing happens either;
    /// no alert of a calendar that was never read is taken back for want of its meeting.
    void refresh(bool mayPrompt);

    /// The panel was opened (true) or folded.
    void setActive(bool active);

private:
    void refreshSoon(bool mayPrompt);
    void refreshWithAccess();
    void publish(std::optional<Meeting> meeting);

    Collaborators with_;
    std::optional<Meeting> next_;
    // A refresh that was posted and has not run; a burst of changes needs one.
    bool isPosted_ = false;
    bool postedMayPrompt_ = false;
    // Whether a refresh waits for the user's answer.
    bool isAsking_ = false;
    Subscription timer_;
    Subscription changes_;
    std::shared_ptr<MeetingWatcher*> self_;
};

}  // namespace sunpane
