#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "linux/calendar/IcsContent.h"

namespace sunpane {

/// Occurrences of one event past these are left out.
constexpr std::size_t maximumOccurrencesPerEvent = 10000;
/// Occurrences of one file past these are left out.
constexpr std::size_t maximumOccurrencesPerFile = 200000;

/// The time from `from` to before `to`.
struct TimeSpan {
    Instant from;
    Instant to;
    friend bool operator==(const TimeSpan&, const TimeSpan&) = default;
};

/// Whether an event overlaps a span of time. One that takes no time does so when it begins there.
constexpr bool overlaps(TimeSpan event, TimeSpan span) {
    return event.from < span.to && (event.to > span.from || event.from == span.from);
}

/// One time at which an event happens.
struct IcsOccurrence {
    TimeSpan time;
    /// Points into the content.
    const IcsEvent* event = nullptr;
    /// Tells it from the event's other occurrences, also after it was moved; empty when there can be no other.
    std::string recurrence;
};

/// What happens in a span of time, in no order. Cheap for events that began repeating long ago. What cannot be worked
/// out with bounded effort is left out: rules that repeat every second or minute on condition, and what a rule with a
/// count yields after its first 100,000 times.
std::vector<IcsOccurrence> expand(const IcsContent& content, TimeSpan span, const IcsZone& userZone,
                                  const StopFlag& stopped = neverStopped);

}  // namespace sunpane
