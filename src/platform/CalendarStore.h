#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "base/Instant.h"
#include "base/Subscription.h"

namespace sunpane {

/// What the user lets the program do with the calendars.
enum class CalendarAccess { notDetermined, restricted, denied, writeOnly, full };

struct CalendarInfo {
    /// Stable across starts.
    std::string identifier;
    std::string title;
    /// Whether it only lists birthdays.
    bool birthdays = false;
    friend bool operator==(const CalendarInfo&, const CalendarInfo&) = default;
};

/// One event, or one occurrence of a recurring event. All texts are valid UTF-8.
struct CalendarEvent {
    /// Stable across starts and distinct for each occurrence; empty when the calendar gives none.
    std::string identifier;
    std::optional<std::string> title;
    std::optional<Instant> start;
    /// The first instant after the event.
    std::optional<Instant> end;
    bool allDay = false;
    bool hasAttendees = false;
    /// The event's own address, then those of its conferences, one on a line.
    std::optional<std::string> url;
    std::optional<std::string> location;
    std::optional<std::string> notes;
    std::optional<CalendarInfo> calendar;
    friend bool operator==(const CalendarEvent&, const CalendarEvent&) = default;
};

/// The user's calendars. Main thread only. Answers at once from what was read; reading happens in the background, so a
/// slow or hanging calendar service stalls nobody.
class CalendarStore {
public:
    virtual ~CalendarStore() = default;

    virtual CalendarAccess access() const = 0;

    /// Asks the user for full access and calls back on the main thread with the answer; a request that fails counts as
    /// a refusal. Only for a state of `notDetermined`.
    virtual void requestFullAccess(std::function<void(bool granted)> answer) = 0;

    /// Whether the calendars were read since access was granted. Until then `events` answers nothing; the change that
    /// is announced at the end of the first reading tells when.
    virtual bool loaded() const = 0;

    /// What the identifiers of events begin with for which `events` cannot answer yet: their calendars have never been
    /// read since access was granted, as when a server is slow to start, so one that is missing need not be gone. Only
    /// once `loaded`; a store that reads all or nothing has none.
    virtual std::vector<std::string> unread() const { return {}; }

    /// All events of all calendars that overlap [from, to), in an order that stays the same while nothing changes.
    /// Empty without full access.
    virtual std::vector<CalendarEvent> events(Instant from, Instant to) const = 0;

    /// Every calendar, for the user to pick from.
    virtual std::vector<CalendarInfo> calendars() const = 0;

    struct NewEvent {
        std::string title;
        Instant start;
        Instant end;
    };

    /// Writes an event to the default calendar and calls back on the main thread with its identifier, or with nothing
    /// when it could not be written.
    virtual void add(const NewEvent& event, std::function<void(std::optional<std::string> identifier)> done) = 0;

    /// Calls `handler` on the main thread after the calendars changed.
    [[nodiscard]] virtual Subscription observeChanges(std::function<void()> handler) = 0;
};

}  // namespace sunpane
