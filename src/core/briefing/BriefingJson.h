#pragma once

#include <string>
#include <string_view>

#include "base/Dates.h"
#include "core/briefing/Briefing.h"

namespace sunpane {

/// The briefing with all that is derived from it, as one JSON object on one line, for other programs. `date` is ISO
/// 8601 in the calendar's time zone; an absent tag is null.
std::string toJson(const Briefing& briefing, const LocalCalendar& calendar);

/// The same with the two forms of the date as the caller has them already.
std::string toJson(const Briefing& briefing, std::string_view date, std::string_view dateLabel);

}  // namespace sunpane
