#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "base/Instant.h"

namespace sunpane {

/// Set from any thread to end work that nobody wants any more; what that yields then may be anything.
using StopFlag = std::atomic<bool>;
inline const StopFlag neverStopped{false};

/// How far some clock is ahead of UTC. Use one on one thread.
class IcsZone {
public:
    virtual ~IcsZone() = default;

    /// Seconds ahead of UTC at a moment, given in seconds since 1 January 1970 00:00:00 UTC.
    virtual int offsetAt(std::int64_t unixSeconds) const = 0;
};

using IcsZonePointer = std::shared_ptr<const IcsZone>;

/// A time as a calendar file writes it: a reading of some clock, or a day.
struct IcsTime {
    /// The reading as seconds since 1 January 1970 00:00:00 on that same clock.
    std::int64_t clockSeconds = 0;
    /// Only the day counts; `clockSeconds` is its midnight.
    bool isDay = false;
    /// Whose clock: absent means the user's, wherever he is.
    IcsZonePointer zone;

    /// A reading that the clocks skip counts as it would without the skip; of one that comes twice the first is meant.
    Instant instant(const IcsZone& userZone) const;
    /// The reading of this time's clock at an instant.
    std::int64_t clockSecondsAt(Instant instant, const IcsZone& userZone) const;
};

/// What repeats an event.
struct IcsRecurrence {
    /// RRULE values.
    std::vector<std::string> rules;
    struct Extra {
        IcsTime start;
        /// How long this one lasts (s), when it differs from the others.
        std::optional<Seconds> duration;
    };
    std::vector<Extra> extras;
    std::vector<IcsTime> excluded;
};

/// One VEVENT.
struct IcsEvent {
    std::string uid;
    std::optional<std::string> title;
    /// The event's own address, then those of its conferences, one on a line.
    std::optional<std::string> url;
    std::optional<std::string> location;
    std::optional<std::string> notes;
    bool hasAttendees = false;
    bool cancelled = false;
    int sequence = 0;
    IcsTime start;
    /// Either an end, or days and seconds after the start.
    std::optional<IcsTime> end;
    int durationDays = 0;
    std::int64_t durationSeconds = 0;
    /// Absent for an event that happens once.
    std::unique_ptr<const IcsRecurrence> recurrence;
    /// Set on an event that stands for one occurrence of the event of the same uid.
    std::optional<IcsTime> replaces;
    /// Whether it stands for all later occurrences too.
    bool replacesLater = false;
};

/// What one calendar file says.
struct IcsContent {
    std::optional<std::string> calendarName;
    std::vector<IcsEvent> events;
};

}  // namespace sunpane
