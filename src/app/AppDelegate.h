#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "app/LoginItem.h"
#include "base/Clock.h"
#include "base/LocalNotifications.h"
#include "base/RunLoop.h"
#include "calendar/CalendarFallback.h"
#include "platform/Alerts.h"
#include "platform/ApplicationBundle.h"
#include "platform/CalendarStore.h"
#include "platform/DistributedNotifications.h"
#include "platform/FileSystem.h"
#include "platform/UserDefaults.h"
#include "platform/WindowSpaces.h"
#include "platform/Workspace.h"

namespace sunpane {

/// Why a program at `bundlePath` should be moved, in words for the user; nothing when it is in its place, or is not
/// installed at all. `applicationFolders` each end with a slash.
std::optional<std::string> reasonToMove(std::string_view bundlePath,
                                        const std::vector<std::string>& applicationFolders);

/// Brings the program up in a fixed order: whatever may ask the user something comes after the panel is there.
///
/// One instance, owned by the start-up code and alive until the process ends; main thread only.
class AppDelegate {
public:
    /// So long (s) does this copy stay after the installed one was asked to open.
    static constexpr Seconds relaunchDelay = 0.8;

    /// Everything outlives it.
    struct Collaborators {
        const Clock& clock;
        RunLoop& runLoop;
        UserDefaults& defaults;
        LocalNotifications& notifications;
        DistributedNotifications& distributed;
        FileSystem& files;
        Workspace& workspace;
        /// Null on a desktop that does not tell of its spaces.
        WindowSpaces* spaces;
        ApplicationBundle& bundle;
        LoginItem& loginItem;
        Alerts& alerts;
        CalendarStore& calendars;
        CalendarFallback& calendar;
    };
    /// What the parts above this folder do when it is their turn.
    struct Steps {
        std::function<void()> startHotkeys;
        std::function<void()> showPanel;
        std::function<void()> showTour;
        /// Lets the user change what the program may do with the calendars.
        std::function<void()> openCalendarPrivacy;
    };

    AppDelegate(const Collaborators& collaborators, Steps steps);

    /// Call once, when this is the only copy that runs.
    void applicationDidFinishLaunching();

private:
    void offerMoveToApplications(std::function<void()> otherwise);
    void moveToApplications(const std::function<void()>& otherwise);
    void finishLaunching();
    void showCalendarRequestSwallowedAlert();

    Collaborators with_;
    Steps steps_;
    Subscription expandRequests_;
    Subscription spaceChanges_;
    Subscription relaunch_;
    std::shared_ptr<AppDelegate*> self_;
};

}  // namespace sunpane
