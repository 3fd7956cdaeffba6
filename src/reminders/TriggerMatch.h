#pragma once

#include <optional>

#include "base/Dates.h"
#include "platform/UserNotifications.h"

namespace sunpane {

/// The first moment after `after` at which a clock shows what `trigger` asks for, as that clock shows it. Absent when
/// there is none within the next 8 years, which is as far as two 29 Februaries can lie apart. Pure; any thread.
std::optional<CivilTime> nextMatch(const CalendarTrigger& trigger, const CivilTime& after);

/// Whether `time` is such a moment. Pure; any thread.
bool matches(const CalendarTrigger& trigger, const CivilTime& time);

/// Whether every component that is set lies within its range.
bool isValid(const CalendarTrigger& trigger);

}  // namespace sunpane
