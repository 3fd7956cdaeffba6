#include "calendar/MeetingWatcher.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <utility>

#include "calendar/JoinLink.h"

namespace sunpane {
namespace {

// With a fraction always, as in "1731760200.0".
std::string decimal(double value) {
    std::array<char, 400> buffer{};
    const auto [end, error] =
        std::to_chars(buffer.data(), buffer.data() + buffer.size(), value, std::chars_format::fixed);
    std::string digits(buffer.data(), end);
    if (digits.find('.') == std::string::npos) digits += ".0";
    return digits;
}

}  // namespace

std::vector<CalendarEvent> upcomingMeetings(const CalendarStore& store, const CalendarFallback& fallback, Instant now) {
    auto events = store.events(now, now + MeetingWatcher::horizon);
    const auto isTodo = fallback.todoRouting();
    std::erase_if(events, [&](const CalendarEvent& event) {
        const bool isOver = !event.start || !event.end || *event.end <= now;
        return event.allDay || isOver || isTodo(event);
    });
    std::stable_sort(events.begin(), events.end(),
                     [](const CalendarEvent& a, const CalendarEvent& b) { return a.start < b.start; });
    return events;
}

std::optional<Meeting> mostLikelyMeeting(const std::vector<CalendarEvent>& meetings) {
    if (meetings.empty()) return std::nullopt;
    const auto make = [](const CalendarEvent& event, std::optional<std::string> link) {
        return Meeting{event.title.value_or("Untitled"), event.start.value(), event.end.value(), std::move(link)};
    };
    for (const auto& event : meetings) {
        if (auto link = joinURL(event)) return make(event, std::move(link));
    }
    const auto invited =
        std::find_if(meetings.begin(), meetings.end(), [](const CalendarEvent& event) { return event.hasAttendees; });
    return make(invited != meetings.end() ? *invited : meetings.front(), std::nullopt);
}

MeetingAlert alertFor(const CalendarEvent& event) {
    const Instant start = event.start.value();
    return {event.identifier.empty() ? event.title.value_or("?") + "-" + decimal(start.unixTime()) : event.identifier,
            event.title.value_or("Meeting"), start, joinURL(event)};
}

MeetingWatcher::MeetingWatcher(const Collaborators& collaborators)
    : with_(collaborators),
      timer_(with_.runLoop.every(refreshInterval, [this] { refresh(false); })),
      changes_(with_.store.observeChanges([this] { refreshSoon(false); })),
      self_(std::make_shared<MeetingWatcher*>(this)) {
    refreshSoon(false);
}

void MeetingWatcher::setActive(bool active) {
    if (active) refreshSoon(true);
}

void MeetingWatcher::refreshSoon(bool mayPrompt) {
    postedMayPrompt_ = postedMayPrompt_ || mayPrompt;
    if (std::exchange(isPosted_, true)) return;
    with_.runLoop.post([weak = std::weak_ptr(self_)] {
        const auto self = weak.lock();
        if (!self) return;
        (*self)->isPosted_ = false;
        (*self)->refresh(std::exchange((*self)->postedMayPrompt_, false));
    });
}

void MeetingWatcher::refresh(bool mayPrompt) {
    const CalendarAccess access = with_.store.access();
    if (!mayPrompt && access != CalendarAccess::full) return;
    // One question is enough, however often the panel opens meanwhile.
    if (access == CalendarAccess::notDetermined && std::exchange(isAsking_, true)) return;
    with_.fallback.ensureAccess([weak = std::weak_ptr(self_)](bool granted) {
        const auto self = weak.lock();
        if (!self) return;
        (*self)->isAsking_ = false;
        if (granted) {
            (*self)->refreshWithAccess();
        } else {
            (*self)->publish(std::nullopt);
        }
    });
}

void MeetingWatcher::refreshWithAccess() {
    if (!with_.store.loaded()) return;
    const Instant now = with_.clock.now();
    const auto meetings = upcomingMeetings(with_.store, with_.fallback, now);
    std::vector<MeetingAlert> alerts;
    for (const auto& meeting : meetings) {
        if (*meeting.start >= now + alertHorizon || alerts.size() == maximumAlerts) break;
        alerts.push_back(alertFor(meeting));
    }
    with_.reminders.syncMeetingAlerts(std::move(alerts), with_.store.unread());
    publish(mostLikelyMeeting(meetings));
}

void MeetingWatcher::publish(std::optional<Meeting> meeting) {
    if (meeting == next_) return;
    announceChange();
    next_ = std::move(meeting);
}

}  // namespace sunpane
