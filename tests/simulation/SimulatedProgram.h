#pragma once

#include <memory>
#include <string>

#include "app/AppDelegate.h"
#include "app/NotchUndo.h"
#include "app/NotchViewModel.h"
#include "app/NotificationResponses.h"
#include "app/TodoReminders.h"
#include "app/UndoKey.h"
#include "calendar/CalendarFallback.h"
#include "calendar/MeetingWatcher.h"
#include "notch/HotkeyManager.h"
#include "notch/ItemSwipeCoordinator.h"
#include "notch/NotchController.h"
#include "notch/PinnedSpace.h"
#include "notch/ScrollSwipeHub.h"
#include "reminders/PendingNotifications.h"
#include "reminders/ReminderScheduler.h"
#include "support/SimulatedApplication.h"
#include "support/SimulatedCalendar.h"
#include "support/SimulatedDesktop.h"
#include "support/SimulatedFileSystem.h"
#include "support/SimulatedFolderEvents.h"
#include "support/SimulatedNotifications.h"
#include "support/SimulatedPlatform.h"
#include "support/SimulatedPlayers.h"
#include "support/SimulatedUserDefaults.h"
#include "support/TemporaryFolder.h"

namespace sunpane::testing {

/// Everything around the program: the machine, the desktop and its services. It outlives each run of the program.
struct World {
    World() {
        disk.makeFolder("/state");
        for (const auto* folder : {&home, &other})
            disk.makeFolder(folder->path());
        defaults.set(FolderBriefingProvider::folderDefaultsKey, home.path());
        defaults.set("didCompleteOnboarding", true);
        defaults.set("didWriteWelcomeBrief", true);
    }

    SimulatedPlatform platform;
    SimulatedFileSystem disk{platform.clock};
    SimulatedCloudFiles cloud;
    SimulatedUserDefaults defaults;
    // Briefings are read from real files, the stores' files live in memory under the same names.
    TemporaryFolder home;
    TemporaryFolder other;
    SimulatedFolderEvents folderEvents;
    SimulatedScreens screens;
    SimulatedPointer pointer;
    SimulatedPanelWindows windows;
    SimulatedWorkspace workspace;
    SimulatedSpaces spaces;
    SimulatedHotkeys hotkeys;
    SimulatedBroadcasts broadcasts;
    SimulatedCalendar calendars;
    SimulatedNotificationService notificationService{platform.runLoop};
    SimulatedScripts scripts;
    SimulatedApplications applications;
    SimulatedAudio audio;
    SimulatedMediaCommands mediaCommands;
    SimulatedArtwork covers;
    SimulatedBundle bundle;
    SimulatedLoginService loginService;
    SimulatedAlerts alerts;
    std::string report;
};

/// One run of the program: all of its logic, wired as the real one is.
struct Program {
    explicit Program(World& around) : world(around) {}

    void start() {
        delegate.applicationDidFinishLaunching();
        wakes = world.workspace.observeWake([this] {
            center.wallClockChanged();
            meetings.refresh(false);
        });
        swipes.install();
    }

    World& world;
    Clock& clock = world.platform.clock;
    RunLoop& runLoop = world.platform.runLoop;
    LocalNotifications notifications;
    StoreFiles storeFiles{{world.disk, world.cloud, clock, runLoop, world.platform.queues, [](Seconds) {}}, "/state"};
    PendingNotifications center{{world.notificationService, clock, runLoop, world.disk, world.platform.queues},
                                "/state/notifications.json"};
    ReminderScheduler reminders{center, clock};
    CalendarFallback calendar{world.calendars, world.defaults, clock};
    MeetingWatcher meetings{{world.calendars, calendar, reminders, clock, runLoop}};
    SimulatedWorkQueue scriptQueue{world.platform.time, NowPlaying::queueLabel};
    NowPlaying nowPlaying{
        {runLoop, scriptQueue, world.scripts, world.applications, world.audio, world.mediaCommands, world.covers}};
    NotchViewModel model{{clock,
                          runLoop,
                          notifications,
                          world.defaults,
                          {clock, world.platform.queues, world.folderEvents, world.cloud},
                          storeFiles,
                          calendar,
                          meetings,
                          nowPlaying}};
    TodoReminders todoReminders{{model.todoStore(), reminders, center, clock, runLoop}};
    NotificationResponses responses{center, notifications, world.workspace};
    NotchUndo undo;
    ScrollSwipeHub scrollSwipes{world.pointer};
    UndoKey undoKey{world.pointer, undo};
    ItemSwipeCoordinator swipes{scrollSwipes, undo, model.weakFlagStore()};
    HotkeyManager hotkey{&world.hotkeys, world.defaults, notifications};
    PinnedSpace pinned{&world.spaces, world.defaults, [](const std::string&) {}};
    NotchController controller{{clock, runLoop, world.screens, world.pointer, world.windows, world.workspace,
                                &world.spaces, pinned, world.broadcasts, notifications, model,
                                [] { return std::string("glass"); },
                                [this](const std::string& json) { world.report = json; }}};
    LoginItem loginItem{world.bundle, world.loginService, world.defaults};
    AppDelegate delegate{{clock, runLoop, world.defaults, notifications, world.broadcasts, world.disk, world.workspace,
                          &world.spaces, world.bundle, loginItem, world.alerts, world.calendars, calendar},
                         {[this] { hotkey.registerAnew(); }, [this] { controller.show(); }, [] {}, [] {}}};
    Subscription wakes;
};

}  // namespace sunpane::testing
