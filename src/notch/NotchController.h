#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "app/NotchViewModel.h"
#include "base/Clock.h"
#include "base/RunLoop.h"
#include "notch/NotchMetrics.h"
#include "notch/StateReport.h"
#include "platform/DistributedNotifications.h"
#include "platform/EventMonitors.h"
#include "platform/PanelWindow.h"
#include "platform/Screens.h"

namespace sunpane {

/// Owns the one panel under the notch: puts it on the right screen, unfolds it when the pointer reaches the notch and
/// folds it when the pointer leaves, and answers requests for the state report.
///
/// One instance, created by the start-up code; it lives as long as the process. Main thread only.
class NotchController {
public:
    struct Collaborators {
        Clock& clock;
        RunLoop& runLoop;
        Screens& screens;
        EventMonitors& monitors;
        PanelWindows& windows;
        DistributedNotifications& distributed;
        NotchViewModel& viewModel;
        /// The current theme's name.
        std::function<std::string()> theme;
        /// Keeps the report's text where tools look for it; failing is its own affair.
        std::function<void(const std::string& json)> writeReport;
    };

    explicit NotchController(Collaborators collaborators);
    NotchController(const NotchController&) = delete;
    NotchController& operator=(const NotchController&) = delete;

    /// Starts the view model, builds the panel and begins to watch the pointer. Called once.
    void show();

    StateReport report() const;

private:
    static constexpr Seconds pointerPollInterval = 0.05;
    static constexpr Seconds screenChangeDelay = 0.6;
    /// How far (points) the pointer may stray from the open panel's window before it folds.
    static constexpr double foldMargin = 24;

    std::optional<Screen> chooseScreen() const;
    void buildPanel();
    void rebuildIfDisplaced();
    void resignKeyIfFolded();
    void installMouseWatch();
    void installStateReporter();
    void schedulePointerMoved();
    void pointerMoved();
    bool crossesTopEdgeInside(const Rect& zone, Point from, Point to) const;

    Collaborators with_;
    std::unique_ptr<PanelWindow> panel_;
    std::optional<NotchMetrics> metrics_;
    std::optional<Point> lastPointer_;
    bool pointerMovedScheduled_ = false;

    std::vector<Subscription> mouseMonitors_;
    Subscription pointerPollTimer_;
    Subscription modelChanges_;
    Subscription screenChanges_;
    Subscription pendingRebuild_;
    Subscription reportRequests_;
    // Posted tasks hold this weakly and do nothing once the controller is gone.
    std::shared_ptr<NotchController*> self_;
};

}  // namespace sunpane
