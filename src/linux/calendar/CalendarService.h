#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/CalendarStore.h"

namespace sunpane {

/// A service that keeps calendars for many programs. Calls return at once; answers arrive on a thread of the service's
/// own, in any order, late or never when the service hangs.
class CalendarService {
public:
    /// What the identifiers of its calendars begin with, and no others.
    static constexpr const char* identifierPrefix = "eds:";

    struct Calendar {
        CalendarInfo info;
        /// All events and their time zones as one iCalendar text. Absent when they could not be read this time.
        std::optional<std::string> text;
        /// Whether its changes will be told of. One that cannot be watched has to be read again without being told.
        bool isWatched = true;
    };

    /// What became of a new event.
    struct Added {
        enum class Outcome {
            added,
            /// There is no calendar to write to; another store may be tried.
            noCalendar,
            /// Nobody knows whether it was written.
            failed,
        };
        Outcome outcome = Outcome::failed;
        /// Set when it was added.
        std::string calendarIdentifier;
        std::string uid;
    };

    virtual ~CalendarService() = default;

    /// Reads all calendars. Nothing when there is no such service.
    virtual void read(std::function<void(std::optional<std::vector<Calendar>>)> done) = 0;

    /// Set from any thread once nobody waits any more for what it belongs to.
    using CancelFlag = std::shared_ptr<const std::atomic<bool>>;

    /// Writes an event, given as iCalendar text with one VEVENT, to the user's default calendar. One whose turn comes
    /// after `cancelled` was set is not written.
    virtual void add(const std::string& text, CancelFlag cancelled, std::function<void(Added)> done) = 0;
};

/// Makes the connection to a service; `changed` is called on any thread after its calendars changed, and never once
/// the service is destroyed. Null when this machine has none.
using CalendarServiceMaker = std::function<std::unique_ptr<CalendarService>(std::function<void()> changed)>;

}  // namespace sunpane
