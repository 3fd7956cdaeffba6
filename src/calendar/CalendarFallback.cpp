#include "calendar/CalendarFallback.h"

#include <algorithm>
#include <array>
#include <unordered_set>
#include <utility>

#include "base/Dates.h"
#include "base/Text.h"
#include "calendar/JoinLink.h"

namespace sunpane {
namespace {

constexpr std::array<std::string_view, 6> taskCalendarWords{"task",  "taken",    "todo",
                                                            "to-do", "reminder", "herinnering"};
constexpr std::array<std::string_view, 2> absenceWords{"ooo", "out of office"};

constexpr const char* timePattern = "HH:mm";

template <class Words>
bool containsAny(const std::string& text, const Words& words) {
    const std::string lower = text::lowercased(text);
    return std::any_of(words.begin(), words.end(),
                       [&](std::string_view word) { return lower.find(word) != std::string::npos; });
}

bool isTasksTitledCalendar(const std::optional<CalendarInfo>& calendar) {
    return calendar && containsAny(calendar->title, taskCalendarWords);
}

bool looksLikeTodo(const CalendarEvent& event) {
    if (event.allDay) return false;
    if (event.calendar && event.calendar->birthdays) return false;
    if (event.hasAttendees) return false;
    if (!text::trimWhitespace(event.location.value_or("")).empty()) return false;
    if (!event.start || !event.end) return false;
    if (*event.end - *event.start > CalendarFallback::longestTask) return false;
    return !containsAny(event.title.value_or(""), absenceWords);
}

// On one line, so that whoever sends an invitation adds no lines of their own to the briefing.
std::string oneLine(std::string_view text) {
    return text::replacingAll(text::withPlainNewlines(text), "\n", " ");
}

std::string scheduleLine(const CalendarEvent& event, const LocalCalendar& calendar) {
    const std::string title = event.title ? oneLine(*event.title) : "Untitled";
    if (event.allDay) return "- **All day** " + title;
    const Instant start = event.start.value_or(event.end.value_or(Instant{}));
    std::string line = "- **" + calendar.format(start, timePattern) + "–" +
                       calendar.format(event.end.value_or(start), timePattern) + "** " + title;
    if (const auto link = joinURL(event)) {
        line += " · [Join](" + *link + ")";
    } else if (event.location && !event.location->empty()) {
        line += " · " + std::string(text::lines(*event.location).front());
    }
    return line;
}

}  // namespace

CalendarFallback::CalendarFallback(CalendarStore& store, const UserDefaults& defaults, const Clock& clock)
    : store_(store),
      defaults_(defaults),
      clock_(clock),
      authorized_(store.access() == CalendarAccess::full),
      changes_(store.observeChanges([this] {
          if (onChange) onChange();
      })),
      self_(std::make_shared<CalendarFallback*>(this)) {}

void CalendarFallback::ensureAccess(std::function<void(bool granted)> done) {
    const CalendarAccess access = store_.access();
    if (access != CalendarAccess::notDetermined) {
        authorized_ = access == CalendarAccess::full;
        done(authorized_);
        return;
    }
    waiting_.push_back(std::move(done));
    if (waiting_.size() > 1) return;
    store_.requestFullAccess([weak = std::weak_ptr(self_)](bool granted) {
        const auto self = weak.lock();
        if (!self) return;
        (*self)->authorized_ = granted;
        // Whoever asks again from here on gets an answer of their own.
        for (const auto& answer : std::exchange((*self)->waiting_, {}))
            answer(granted);
    });
}

bool CalendarFallback::isLoading() const {
    return authorized_ && !store_.loaded();
}

std::vector<CalendarEvent> CalendarFallback::todayEvents() const {
    if (!authorized_ || !store_.loaded()) return {};
    const LocalCalendar calendar(clock_);
    const Instant start = calendar.startOfDay(clock_.now());
    return store_.events(start, calendar.startOfDay(calendar.addingDays(start, 1)));
}

std::function<bool(const CalendarEvent& event)> CalendarFallback::todoRouting() const {
    if (!defaults_.read<bool>(todosEnabledKey).valueOr(true)) return [](const CalendarEvent&) { return false; };
    const auto identifiers = defaults_.read<std::vector<std::string>>(todoCalendarsKey).valueOr({});
    return [this, picked = std::unordered_set<std::string>(identifiers.begin(), identifiers.end())](
               const CalendarEvent& event) {
        const bool isPicked = event.calendar && picked.contains(event.calendar->identifier);
        if (!isPicked && !isTasksTitledCalendar(event.calendar) && !looksLikeTodo(event)) return false;
        return !isDismissedTodo || !isDismissedTodo(event.title.value_or(""));
    };
}

std::vector<std::string> CalendarFallback::todayEventTitles() const {
    std::vector<std::string> titles;
    for (const auto& event : todayEvents()) {
        if (event.title) titles.emplace_back(text::trimWhitespace(*event.title));
    }
    return titles;
}

std::vector<std::string> CalendarFallback::todayCalendarTodoTitles() const {
    std::vector<std::string> titles;
    const auto isTodo = todoRouting();
    for (const auto& event : todayEvents()) {
        if (event.title && isTodo(event)) titles.emplace_back(text::trimWhitespace(*event.title));
    }
    return titles;
}

std::optional<Briefing> CalendarFallback::todayBriefing() const {
    if (!authorized_ || !store_.loaded()) return std::nullopt;
    auto events = todayEvents();
    std::stable_sort(events.begin(), events.end(), [](const CalendarEvent& a, const CalendarEvent& b) {
        return a.start.value_or(Instant::distantPast()) < b.start.value_or(Instant::distantPast());
    });

    const LocalCalendar calendar(clock_);
    std::string markdown = "### 📅 Today's Schedule\n";
    if (events.empty()) markdown += "- **Clear day.** Nothing on the calendar.\n";
    const auto isTodo = todoRouting();
    for (const auto& event : events) {
        if (!isTodo(event)) markdown += scheduleLine(event, calendar) + "\n";
    }
    markdown +=
        "\n### 💡 Tip\n- This is your calendar view: no brief arrived today. Connect an AI in Settings and this becomes "
        "a full morning brief.";
    const Instant now = clock_.now();
    return Briefing{std::string(briefingID), calendar.startOfDay(now), "Today — " + calendar.format(now, "EEEE d MMM"),
                    std::move(markdown)};
}

void CalendarFallback::addEvent(const std::string& title, Instant start, Seconds duration,
                                std::function<void(std::optional<std::string> identifier)> done) {
    if (!authorized_) {
        done(std::nullopt);
        return;
    }
    const Seconds length = duration > shortestDuration ? duration : defaultDuration;
    store_.add({title, start, start + length}, [done = std::move(done)](std::optional<std::string> identifier) {
        if (identifier && identifier->empty()) identifier.reset();
        done(std::move(identifier));
    });
}

}  // namespace sunpane
