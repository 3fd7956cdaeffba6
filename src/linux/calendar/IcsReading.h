#pragma once

#include <cstddef>
#include <string_view>

#include "linux/calendar/IcsContent.h"
#include "linux/calendar/IcsZones.h"

namespace sunpane {

/// Longer properties (bytes, folded) are left out, and an event whose times are left out is no event.
constexpr std::size_t maximumPropertyLength = std::size_t{1} << 20;
/// Events of one file past these are left out.
constexpr std::size_t maximumEventsPerFile = 200000;
/// Exceptions and extra dates of one event past these are left out.
constexpr std::size_t maximumDatesPerEvent = 10000;

/// Addresses of conferences of one event past these are left out.
constexpr std::size_t maximumConferencesPerEvent = 16;

/// Reads iCalendar text (RFC 5545), as much of it as makes sense: an event that cannot be read leaves the others
/// alone. Never fails. Of several events with the same identity the newest counts.
IcsContent readIcs(std::string_view text, IcsZones& zones, const StopFlag& stopped = neverStopped);

}  // namespace sunpane
