#include "linux/calendar/CalendarSnapshot.h"

#include <algorithm>
#include <tuple>
#include <utility>

namespace sunpane {

CalendarSnapshot::CalendarSnapshot(TimeSpan span, std::vector<CalendarInfo> calendars, std::vector<Part> parts,
                                   std::vector<std::string> unread)
    : span_(span), calendars_(std::move(calendars)), parts_(std::move(parts)), unread_(std::move(unread)) {
    for (const auto& part : parts_) {
        for (const auto& occurrence : *part.occurrences)
            entries_.push_back({&occurrence, part.calendar, {}});
    }
    std::stable_sort(entries_.begin(), entries_.end(), [](const Entry& a, const Entry& b) {
        const auto key = [](const Entry& entry) {
            return std::tie(entry.occurrence->time.from.sinceReference, entry.calendar, entry.occurrence->event->uid,
                            entry.occurrence->recurrence);
        };
        return key(a) < key(b);
    });
    Instant latestEnd = Instant::distantPast();
    for (auto& entry : entries_)
        latestEnd = entry.latestEnd = std::max(latestEnd, entry.occurrence->time.to);
}

std::vector<CalendarEvent> CalendarSnapshot::events(Instant from, Instant to) const {
    std::vector<CalendarEvent> found;
    // An event that ends where the span begins counts when it takes no time, so equal ends are looked at.
    auto entry = std::lower_bound(entries_.begin(), entries_.end(), from,
                                  [](const Entry& each, Instant moment) { return each.latestEnd < moment; });
    for (; entry != entries_.end() && entry->occurrence->time.from < to; ++entry) {
        if (overlaps(entry->occurrence->time, {from, to})) found.push_back(toEvent(*entry));
    }
    return found;
}

bool CalendarSnapshot::saysTheSameAs(const CalendarSnapshot& other) const {
    if (span_ != other.span_ || unread_ != other.unread_ || calendars_ != other.calendars_) return false;
    return std::equal(entries_.begin(), entries_.end(), other.entries_.begin(), other.entries_.end(),
                      [&](const Entry& mine, const Entry& others) {
                          if (mine.occurrence == others.occurrence && mine.calendar == others.calendar) return true;
                          return toEvent(mine) == other.toEvent(others);
                      });
}

CalendarEvent CalendarSnapshot::toEvent(const Entry& entry) const {
    const IcsEvent& event = *entry.occurrence->event;
    const CalendarInfo& calendar = calendars_[entry.calendar];
    return {.identifier = eventIdentifier(calendar.identifier, event.uid, entry.occurrence->recurrence),
            .title = event.title,
            .start = entry.occurrence->time.from,
            .end = entry.occurrence->time.to,
            .allDay = event.start.isDay,
            .hasAttendees = event.hasAttendees,
            .url = event.url,
            .location = event.location,
            .notes = event.notes,
            .calendar = calendar};
}

std::string eventPrefix(const std::string& calendar) {
    return calendar + ":";
}

std::string eventIdentifier(const std::string& calendar, const std::string& uid, const std::string& recurrence) {
    if (uid.empty()) return {};
    return eventPrefix(calendar) + uid + (recurrence.empty() ? "" : "/" + recurrence);
}

}  // namespace sunpane
