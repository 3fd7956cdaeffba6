#pragma once

#include <memory>

#include "base/LocalNotifications.h"
#include "views/SecondaryWindow.h"
#include "views/SettingsPresenter.h"

namespace sunpane {

/// The settings window. One instance, owned by the start-up code; main thread only.
class SettingsWindowController {
public:
    /// Everything outlives it.
    struct Collaborators {
        ViewEngine& engine;
        SettingsModel& model;
        CalendarStore& calendars;
        ThemeStore& theme;
        RunLoop& runLoop;
        LocalNotifications& notifications;
    };

    SettingsWindowController(const Collaborators& collaborators, SettingsPresenter::Actions actions);

    /// Folds the panel, which would lie over the window, and brings the window to the front.
    void show();

private:
    Collaborators with_;
    SettingsPresenter::Actions actions_;
    std::unique_ptr<SettingsPresenter> presenter_;
    SecondaryWindow window_;
    Subscription requests_;
};

}  // namespace sunpane
