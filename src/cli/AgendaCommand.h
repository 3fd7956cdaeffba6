#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "base/Clock.h"
#include "calendar/MeetingWatcher.h"
#include "cli/Command.h"
#include "platform/CalendarStore.h"
#include "platform/UserDefaults.h"

namespace sunpane::cli {

/// What the program makes of the calendars at one moment. A plain value.
struct Agenda {
    struct Entry {
        CalendarEvent event;
        std::optional<std::string> joinURL;
        bool routedToTodos = false;
    };
    /// What the user lets the desktop program do; a command reads the calendars all the same.
    CalendarAccess access = CalendarAccess::notDetermined;
    /// Today's events, in the calendars' order.
    std::vector<Entry> events;
    std::optional<Meeting> next;
    std::vector<std::string> todayEventTitles;
    std::vector<std::string> todayCalendarTodoTitles;
    /// The markdown of the briefing that stands in on a day without one.
    std::optional<std::string> fallback;
};

/// Reads what `store`, whose first reading is over, tells for `clock`.
Agenda makeAgenda(CalendarStore& store, const UserDefaults& defaults, const Clock& clock,
                  std::function<bool(const std::string& title)> isDismissedTodo);

/// On one line, without control characters; times in ISO 8601 with the clock's offset.
std::string toJson(const Agenda& agenda, const Clock& clock);

/// Shows today's agenda, or that of another moment.
int runAgenda(Arguments arguments, Environment& environment);

inline constexpr Command agendaCommand{.name = "agenda",
                                       .usage = "[--json] [--at ISO8601]",
                                       .summary = "Shows today's events, the next meeting and what counts as a todo.",
                                       .run = runAgenda};

}  // namespace sunpane::cli
