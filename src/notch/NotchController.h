#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "app/NotchViewModel.h"
#include "base/Clock.h"
#include "base/LocalNotifications.h"
#include "base/RunLoop.h"
#include "notch/NotchMetrics.h"
#include "notch/PinnedSpace.h"
#include "notch/StateReport.h"
#include "platform/DistributedNotifications.h"
#include "platform/EventMonitors.h"
#include "platform/PanelWindow.h"
#include "platform/Screens.h"
#include "platform/WindowSpaces.h"
#include "platform/Workspace.h"

namespace sunpane {

/// Owns the one panel under the notch: puts it on the right screen and above every space, unfolds it when the pointer
/// reaches the notch or the hotkey is pressed, folds it when the user turns to something else, and answers requests for
/// the state report.
///
/// One instance, created by the start-up code; it lives as long as the process. Main thread only.
class NotchController {
public:
    /// How long the panel stays open for a todo to be written, wherever the pointer is.
    static constexpr Seconds keepOpenForCapture = 20;
    /// How long it stays open for a text that is being edited.
    static constexpr Seconds keepOpenForEditing = NotchViewModel::longestKeepOpen;
    static constexpr Seconds pointerPollInterval = 0.05;
    static constexpr Seconds spacePollInterval = 0.25;
    static constexpr Seconds screenChangeDelay = 0.6;
    static constexpr Seconds wakeDelay = 1.0;
    /// After a switch to another space the panel is made once more when the desktop has settled.
    static constexpr Seconds settledDelay = 0.8;
    /// How far (points) the pointer may stray from the open panel's window before it folds.
    static constexpr double foldMargin = 24;
    /// How near (points) to the notch the pointer is when the panel is expected to unfold soon.
    static constexpr double approachMargin = 160;

    struct Collaborators {
        Clock& clock;
        RunLoop& runLoop;
        Screens& screens;
        EventMonitors& monitors;
        PanelWindows& windows;
        Workspace& workspace;
        /// Null on a desktop that does not tell of its spaces.
        WindowSpaces* spaces;
        PinnedSpace& pinnedSpace;
        DistributedNotifications& distributed;
        LocalNotifications& notifications;
        NotchViewModel& viewModel;
        /// The current theme's name.
        std::function<std::string()> theme;
        /// Keeps the report's text where tools look for it; failing is its own affair.
        std::function<void(const std::string& json)> writeReport;
    };

    explicit NotchController(Collaborators collaborators);
    NotchController(const NotchController&) = delete;
    NotchController& operator=(const NotchController&) = delete;

    /// Starts the view model, builds the panel and begins to watch the pointer and the desktop. Called once.
    void show();

    StateReport report() const;

private:
    std::optional<Screen> chooseScreen() const;
    void buildPanel();
    void rebuildPanel();
    // Makes the panel anew now and, unless the user has opened it by then, once more when the desktop has settled.
    void rebuildForSpace();
    void handOverKeyboardWhenFolded();
    void watchNotifications();
    void watchSpaces();
    void watchFocus();
    void watchScreens();
    void installMouseWatch();
    void installStateReporter();
    void observe(const char* name, void (NotchController::*react)());
    void toggleQuickCapture();
    void takeKeyboardForEditing();
    void spaceCheck();
    void foldForFocusChange();
    void schedulePointerMoved();
    void pointerMoved();
    // Whether the panel, being open, may be folded without the user's asking.
    bool mayFold() const;
    bool crossesTopEdgeInside(const Rect& zone, Point from, Point to) const;

    Collaborators with_;
    std::unique_ptr<PanelWindow> panel_;
    std::optional<NotchMetrics> metrics_;
    std::optional<Point> lastPointer_;
    WindowSpaces::SpaceID lastSpace_ = 0;  // 0: none seen yet
    bool pointerMovedScheduled_ = false;

    std::vector<Subscription> mouseMonitors_;
    std::vector<Subscription> observers_;
    Subscription pointerPollTimer_;
    Subscription spacePollTimer_;
    Subscription rebuildAfterScreenChange_;
    Subscription rebuildAfterWake_;
    Subscription rebuildWhenSettled_;
    // Posted tasks hold this weakly and do nothing once the controller is gone.
    std::shared_ptr<NotchController*> self_;
};

}  // namespace sunpane
