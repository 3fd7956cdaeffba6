#pragma once

#include <map>
#include <string>
#include <string_view>

#include "linux/calendar/IcsContent.h"

namespace sunpane {

/// Finds time zones by the names and definitions that calendar files use, and remembers them. Use one on one thread.
class IcsZones {
public:
    /// How many names and definitions are remembered before all are forgotten.
    static constexpr std::size_t maximumRemembered = 1000;

    /// The zone of an IANA name, also behind a maker's prefix ("/example.org/Europe/Amsterdam"), or of a name from
    /// Windows ("W. Europe Standard Time"). Null when there is none.
    IcsZonePointer named(const std::string& name);

    /// The zone that the lines of a VTIMEZONE define. Null when they make no sense, or have the clocks change in a way
    /// that no clock does.
    IcsZonePointer defined(const std::string& lines);

    /// The user's zone, a name or rules as a clock gives them; an unknown one counts as UTC.
    IcsZonePointer userZone(const std::string& name);

    static IcsZonePointer utc();

private:
    using Zones = std::map<std::string, IcsZonePointer>;
    static IcsZonePointer remember(Zones& zones, const std::string& key, IcsZonePointer zone);

    Zones named_;
    Zones defined_;
};

}  // namespace sunpane
