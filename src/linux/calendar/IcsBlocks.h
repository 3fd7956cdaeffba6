#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "linux/calendar/IcsContent.h"

namespace sunpane {

/// A calendar file cut into the parts that matter, each of which can be parsed by itself.
struct IcsBlocks {
    struct Event {
        /// A VEVENT with the properties that the program uses, and without its alarms.
        std::string lines;
        bool hasAttendees = false;
    };
    std::optional<std::string> calendarName;
    std::vector<Event> events;
    /// VTIMEZONE blocks by their TZID.
    std::map<std::string, std::string> zones;
};

/// Cuts in one pass over the text, whatever it holds; a part that does not end is left out.
IcsBlocks splitIcs(std::string_view text, const StopFlag& stopped = neverStopped);

}  // namespace sunpane
