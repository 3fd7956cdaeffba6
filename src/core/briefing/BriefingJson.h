#pragma once

#include <string>

#include "base/Dates.h"
#include "core/briefing/Briefing.h"

namespace sunpane {

/// The briefing with all that is derived from it, as one JSON object on one line, for other programs. `date` is ISO
/// 8601 in the calendar's time zone; an absent tag is null.
std::string toJson(const Briefing& briefing, const LocalCalendar& calendar);

}  // namespace sunpane
