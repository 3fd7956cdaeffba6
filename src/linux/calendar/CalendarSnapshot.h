#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "linux/calendar/IcsExpansion.h"
#include "platform/CalendarStore.h"

namespace sunpane {

/// What was read of all calendars at one moment, for one span of time. Never changes once built; any thread.
class CalendarSnapshot {
public:
    /// What one file, or one calendar of the service, holds in the span. The occurrences point into the content.
    struct Part {
        std::size_t calendar = 0;
        std::shared_ptr<const IcsContent> content;
        std::shared_ptr<const std::vector<IcsOccurrence>> occurrences;
    };

    /// `Part::calendar` counts through `calendars`. For `unread` see `CalendarStore::unread`.
    CalendarSnapshot(TimeSpan span, std::vector<CalendarInfo> calendars, std::vector<Part> parts,
                     std::vector<std::string> unread = {});

    TimeSpan span() const { return span_; }
    const std::vector<std::string>& unread() const { return unread_; }
    const std::vector<CalendarInfo>& calendars() const { return calendars_; }

    /// What overlaps [from, to), by start; events with the same start in the order of calendars and identifiers. Takes
    /// time for what is found and for what is still going on from earlier, not for all that there is.
    std::vector<CalendarEvent> events(Instant from, Instant to) const;

    /// Whether all that can be asked has the same answer in both.
    bool saysTheSameAs(const CalendarSnapshot& other) const;

private:
    struct Entry {
        const IcsOccurrence* occurrence;
        std::size_t calendar;
        /// The latest end of this entry and all before it.
        Instant latestEnd;
    };
    CalendarEvent toEvent(const Entry& entry) const;

    TimeSpan span_;
    std::vector<CalendarInfo> calendars_;
    std::vector<Part> parts_;
    std::vector<std::string> unread_;
    // By start.
    std::vector<Entry> entries_;
};

/// What the identifiers of all events of a calendar begin with.
std::string eventPrefix(const std::string& calendar);

/// An event's identifier among all calendars; empty for an event without a uid.
std::string eventIdentifier(const std::string& calendar, const std::string& uid, const std::string& recurrence);

}  // namespace sunpane
