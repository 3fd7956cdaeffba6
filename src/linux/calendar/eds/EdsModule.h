#pragma once

#include "linux/calendar/CalendarService.h"

namespace sunpane {

/// The name under which the module for Evolution Data Server exports its maker.
constexpr const char* edsModuleEntry = "sunpaneMakeEdsCalendars";
using EdsModuleEntry = CalendarService* (*)(const std::function<void()>* changed);

/// Makes connections to Evolution Data Server. Its client library, which many machines lack, is in a module of ours
/// that is loaded when a connection is made; where that fails there is no service.
CalendarServiceMaker edsCalendars();

}  // namespace sunpane
