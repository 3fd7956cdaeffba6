#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/Clock.h"
#include "base/Instant.h"
#include "base/Subscription.h"
#include "core/briefing/Briefing.h"
#include "platform/CalendarStore.h"
#include "platform/UserDefaults.h"

namespace sunpane {

/// The program's access to the user's calendars: a briefing made of today's events for days without one, the events
/// that are really tasks, and new events for todos.
///
/// One instance, owned by the start-up code; main thread only. Without access, and while the calendars are being read,
/// every question answers nothing.
class CalendarFallback {
public:
    static constexpr std::string_view briefingID = "calendar-fallback";
    static constexpr std::string_view todosEnabledKey = "calendarTodosEnabled";
    static constexpr std::string_view todoCalendarsKey = "todoCalendarIDs";
    /// An event of one's own that is not longer (s) than this is taken for a task.
    static constexpr Seconds longestTask = 2700;
    /// A new event whose length is not known, or is at most `shortestDuration` (s), gets this length (s).
    static constexpr Seconds defaultDuration = 3600;
    static constexpr Seconds shortestDuration = 60;

    CalendarFallback(CalendarStore& store, const UserDefaults& defaults, const Clock& clock);

    /// Called on the main thread after the calendars changed.
    std::function<void()> onChange;
    /// Whether the user removed a todo with that title.
    std::function<bool(const std::string& title)> isDismissedTodo;

    /// Finds out whether the calendars may be read, and asks the user if that was never decided. Calls back at once
    /// when it is decided, otherwise with the user's answer; calls meanwhile wait for the same answer. Whoever asks
    /// without a click of the user's keeps one call waiting and no more.
    void ensureAccess(std::function<void(bool granted)> done);

    /// Whether the user has yet to say if the calendars may be read.
    bool isUndecided() const { return store_.access() == CalendarAccess::notDetermined; }

    /// Whether the calendars may be read and their first reading is still under way.
    bool isLoading() const;

    /// A briefing of today's schedule.
    std::optional<Briefing> todayBriefing() const;

    /// The trimmed titles of all of today's events that have one.
    std::vector<std::string> todayEventTitles() const;

    /// The same for the events that belong into the todo list.
    std::vector<std::string> todayCalendarTodoTitles() const;

    /// All of today's events, in the calendars' order.
    std::vector<CalendarEvent> todayEvents() const;

    /// Whether an event belongs into the todo list and not into the schedule, by the settings as they are now. For one
    /// pass over events: reading the settings costs more than asking for an event. Not to be kept.
    std::function<bool(const CalendarEvent& event)> todoRouting() const;
    /// The same for a single event.
    bool routesToTodos(const CalendarEvent& event) const { return todoRouting()(event); }

    /// Writes an event of `duration` (s) to the default calendar; calls back with its identifier, or with nothing when
    /// there is no access or it could not be written.
    void addEvent(const std::string& title, Instant start, Seconds duration,
                  std::function<void(std::optional<std::string> identifier)> done);

private:
    using AccessHandler = std::function<void(bool)>;

    CalendarStore& store_;
    const UserDefaults& defaults_;
    const Clock& clock_;
    bool authorized_;
    // Those who wait for the user's answer; empty while none is asked for.
    std::vector<AccessHandler> waiting_;
    Subscription changes_;
    std::shared_ptr<CalendarFallback*> self_;
};

}  // namespace sunpane
