#pragma once

#include <string>

#include "platform/CalendarStore.h"

namespace sunpane {

/// A calendar file (RFC 5545) with one new event. `now` is when it was made.
std::string writeIcs(const CalendarStore::NewEvent& event, const std::string& uid, Instant now);

}  // namespace sunpane
