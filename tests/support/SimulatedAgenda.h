#pragma once

#include "calendar/CalendarFallback.h"
#include "calendar/MeetingWatcher.h"
#include "reminders/ReminderScheduler.h"
#include "support/SimulatedCalendar.h"
#include "support/SimulatedNotifications.h"
#include "support/SimulatedPlatform.h"

namespace sunpane::testing {

/// What the view model needs of calendars and reminders, on simulated ones. The user has refused access, which keeps
/// tests of other things free of schedules, until the test says otherwise.
struct SimulatedAgenda {
    SimulatedAgenda(SimulatedPlatform& onPlatform, const UserDefaults& withDefaults)
        : platform(onPlatform), defaults(withDefaults) {
        store.status = CalendarAccess::denied;
    }

    SimulatedPlatform& platform;
    const UserDefaults& defaults;
    SimulatedCalendar store;
    SimulatedNotificationCenter center{platform.runLoop};
    ReminderScheduler reminders{center, platform.clock};
    CalendarFallback fallback{store, defaults, platform.clock};
    MeetingWatcher meetings{{store, fallback, reminders, platform.clock, platform.runLoop}};
};

}  // namespace sunpane::testing
