#include "cli/AgendaCommand.h"

#include <nlohmann/json.hpp>
#include <ostream>
#include <utility>

#include "base/Dates.h"
#include "base/Text.h"
#include "calendar/CalendarFallback.h"
#include "calendar/JoinLink.h"
#include "cli/StoreSession.h"
#include "cli/TerminalText.h"
#include "core/briefing/FolderBriefingProvider.h"

namespace sunpane::cli {
namespace {

using Json = nlohmann::ordered_json;

const char* nameOf(CalendarAccess access) {
    switch (access) {
        case CalendarAccess::notDetermined:
            return "notDetermined";
        case CalendarAccess::restricted:
            return "restricted";
        case CalendarAccess::denied:
            return "denied";
        case CalendarAccess::writeOnly:
            return "writeOnly";
        case CalendarAccess::full:
            return "full";
    }
    return "";
}

/// A clock that stands still.
class StoppedClock : public Clock {
public:
    StoppedClock(const Clock& clock, Instant at) : clock_(clock), at_(at) {}
    Instant now() const override { return at_; }
    std::string timeZone() const override { return clock_.timeZone(); }
    std::string locale() const override { return clock_.locale(); }

private:
    const Clock& clock_;
    Instant at_;
};

template <class T>
Json orNull(const std::optional<T>& value) {
    return value ? Json(*value) : Json(nullptr);
}

void print(const Agenda& agenda, const Clock& clock, std::ostream& out) {
    const LocalCalendar calendar(clock);
    out << calendar.format(clock.now(), "EEEE d MMM") << "\n\n";
    if (agenda.events.empty()) out << "  Nothing on the calendar.\n";
    for (const auto& [event, joinURL, routedToTodos] : agenda.events) {
        if (event.allDay || !event.start || !event.end) {
            out << "  All day      ";
        } else {
            out << "  " << calendar.format(*event.start, "HH:mm") << "–" << calendar.format(*event.end, "HH:mm")
                << "  ";
        }
        out << printable(event.title.value_or("Untitled")) << (routedToTodos ? " (todo)" : "");
        if (joinURL) out << "  " << printable(*joinURL);
        out << '\n';
    }
    if (!agenda.next) return;
    out << "\nNext: " << calendar.format(agenda.next->start, "EEE d MMM, HH:mm") << "  "
        << printable(agenda.next->title);
    if (agenda.next->joinURL) out << "  " << printable(*agenda.next->joinURL);
    out << '\n';
}

struct AgendaArguments {
    bool asJson = false;
    std::optional<Instant> at;
};

// Absent after a usage error, which was told.
std::optional<AgendaArguments> parse(Arguments arguments, Environment& environment) {
    AgendaArguments parsed;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        if (arguments[i] == "--json") {
            parsed.asJson = true;
        } else if (arguments[i] == "--at" && i + 1 < arguments.size()) {
            parsed.at = LocalCalendar(environment.clock).parseIso8601(arguments[++i]);
            if (parsed.at) continue;
            usageError(agendaCommand, "no moment: " + escapedName(arguments[i]), environment);
            return std::nullopt;
        } else {
            usageError(agendaCommand, "unknown word " + escapedName(arguments[i]), environment);
            return std::nullopt;
        }
    }
    return parsed;
}

}  // namespace

Agenda makeAgenda(CalendarStore& store, const UserDefaults& defaults, const Clock& clock,
                  std::function<bool(const std::string& title)> isDismissedTodo) {
    CalendarFallback fallback(store, defaults, clock);
    fallback.isDismissedTodo = std::move(isDismissedTodo);
    Agenda agenda;
    agenda.access = store.access();
    const auto isTodo = fallback.todoRouting();
    for (auto& event : fallback.todayEvents()) {
        auto link = joinURL(event);
        const bool routedToTodos = isTodo(event);
        agenda.events.push_back({std::move(event), std::move(link), routedToTodos});
    }
    agenda.next = mostLikelyMeeting(upcomingMeetings(store, fallback, clock.now()));
    agenda.todayEventTitles = fallback.todayEventTitles();
    agenda.todayCalendarTodoTitles = fallback.todayCalendarTodoTitles();
    if (auto briefing = fallback.todayBriefing()) agenda.fallback = std::move(briefing->markdown);
    return agenda;
}

std::string toJson(const Agenda& agenda, const Clock& clock) {
    const LocalCalendar calendar(clock);
    const auto time = [&](const std::optional<Instant>& instant) {
        return instant ? Json(calendar.iso8601(*instant)) : Json(nullptr);
    };
    Json events = Json::array();
    for (const auto& [event, link, routedToTodos] : agenda.events) {
        events.push_back({{"title", orNull(event.title)},
                          {"start", time(event.start)},
                          {"end", time(event.end)},
                          {"allDay", event.allDay},
                          {"calendar", event.calendar ? Json(event.calendar->title) : Json(nullptr)},
                          {"joinURL", orNull(link)},
                          {"routedToTodos", routedToTodos}});
    }
    Json next = nullptr;
    if (agenda.next) {
        next = Json{{"title", agenda.next->title},
                    {"start", time(agenda.next->start)},
                    {"end", time(agenda.next->end)},
                    {"joinURL", orNull(agenda.next->joinURL)}};
    }
    const Json json{{"access", nameOf(agenda.access)},
                    {"events", std::move(events)},
                    {"next", std::move(next)},
                    {"todayEventTitles", agenda.todayEventTitles},
                    {"todayCalendarTodoTitles", agenda.todayCalendarTodoTitles},
                    {"fallback", orNull(agenda.fallback)}};
    return text::withControlsEscaped(json.dump(-1, ' ', false, Json::error_handler_t::replace));
}

int runAgenda(Arguments arguments, Environment& environment) {
    const auto parsed = parse(arguments, environment);
    if (!parsed) return failure;
    const StoppedClock clock(environment.clock, parsed->at.value_or(environment.clock.now()));
    const auto store = environment.openCalendars ? environment.openCalendars(clock) : nullptr;
    if (!store || !store->loaded()) {
        environment.err << "dawnlyctl agenda: the calendars could not be read\n";
        return failure;
    }
    StoreSession session(environment, FolderBriefingProvider::currentDirectory(environment.defaults));
    Agenda agenda = makeAgenda(*store, environment.defaults, clock,
                               [&](const std::string& title) { return session.todos().isDismissed(title); });
    if (environment.calendarAccess) agenda.access = environment.calendarAccess();
    if (parsed->asJson) {
        environment.out << toJson(agenda, clock) << '\n';
    } else {
        print(agenda, clock, environment.out);
    }
    return success;
}

}  // namespace sunpane::cli
