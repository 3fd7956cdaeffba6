#include "notch/NotchController.h"

#include <utility>

#include "base/AppIdentity.h"

namespace sunpane {

NotchController::NotchController(Collaborators collaborators)
    : with_(std::move(collaborators)), self_(std::make_shared<NotchController*>(this)) {}

void NotchController::show() {
    with_.viewModel.start();
    buildPanel();
    installStateReporter();
    // The change is announced before it takes effect, so it is looked at a moment later.
    modelChanges_ = with_.viewModel.onWillChange([this] {
        if (!with_.viewModel.expanded()) return;
        with_.runLoop.post([weak = std::weak_ptr(self_)] {
            if (const auto self = weak.lock()) (*self)->resignKeyIfFolded();
        });
    });
    screenChanges_ = with_.screens.onChange([this] {
        // The desktop settles in several steps; the last one counts.
        pendingRebuild_ = with_.runLoop.after(screenChangeDelay, [this] { rebuildIfDisplaced(); });
    });
}

std::optional<Screen> NotchController::chooseScreen() const {
    if (auto notched = with_.screens.notched()) return notched;
    return with_.screens.main();
}

void NotchController::buildPanel() {
    const auto screen = chooseScreen();
    if (!screen) return;
    const NotchMetrics metrics(*screen);
    panel_ = with_.windows.make(metrics.panelFrame(), metrics.notchSize, metrics.cardWidth, metrics.maxCardHeight);
    panel_->orderFrontRegardless();
    metrics_ = metrics;
    installMouseWatch();
}

void NotchController::rebuildIfDisplaced() {
    if (!chooseScreen()) return;
    if (panel_) panel_->orderOut();
    panel_.reset();
    buildPanel();
}

void NotchController::resignKeyIfFolded() {
    if (panel_ && !with_.viewModel.expanded()) panel_->resignKey();
}

void NotchController::installMouseWatch() {
    if (!mouseMonitors_.empty()) return;
    for (const auto add : {&EventMonitors::onGlobalPointerMoved, &EventMonitors::onLocalPointerMoved}) {
        auto monitor = (with_.monitors.*add)([this] { schedulePointerMoved(); });
        if (monitor) mouseMonitors_.push_back(std::move(monitor));
    }
    // Catches positions for which no event arrives, as while another program is full screen.
    pointerPollTimer_ = with_.runLoop.every(pointerPollInterval, [this] { pointerMoved(); });
}

void NotchController::schedulePointerMoved() {
    if (std::exchange(pointerMovedScheduled_, true)) return;
    with_.runLoop.post([weak = std::weak_ptr(self_)] {
        const auto self = weak.lock();
        if (!self) return;
        (*self)->pointerMovedScheduled_ = false;
        (*self)->pointerMoved();
    });
}

void NotchController::pointerMoved() {
    if (!metrics_ || !panel_) return;
    const Point pointer = with_.monitors.pointerLocation();
    if (lastPointer_ == pointer) return;

    const Rect zone = metrics_->hotZone();
    const bool inside = zone.contains(pointer) || (lastPointer_ && crossesTopEdgeInside(zone, *lastPointer_, pointer));
    lastPointer_ = pointer;

    NotchViewModel& model = with_.viewModel;
    const Instant now = with_.clock.now();
    if (inside) {
        if (!model.expanded() && now > model.suppressExpandUntil()) model.setExpanded(true);
        return;
    }
    const bool mayFold = model.expanded() && model.reminderUIOpen() == 0 && now > model.keepOpenUntil();
    if (mayFold && !panel_->frame().grownBy(foldMargin).contains(pointer)) model.setExpanded(false);
}

bool NotchController::crossesTopEdgeInside(const Rect& zone, Point from, Point to) const {
    // A fast flick jumps over the notch between two samples; what counts is where it passed the screen's top edge.
    const double top = metrics_->screenFrame.maxY();
    if ((to.y - top) * (from.y - top) >= 0 || to.y == from.y) return false;
    const double x = from.x + (top - from.y) / (to.y - from.y) * (to.x - from.x);
    return x >= zone.minX() && x <= zone.maxX();
}

void NotchController::installStateReporter() {
    reportRequests_ = with_.distributed.observe(std::string(appIdentifier) + ".report", [this] {
        with_.runLoop.post([weak = std::weak_ptr(self_)] {
            if (const auto self = weak.lock()) (*self)->with_.writeReport((*self)->report().toJson());
        });
    });
}

StateReport NotchController::report() const {
    const NotchViewModel& model = with_.viewModel;
    StateReport report;
    report.expanded = model.expanded();
    report.theme = with_.theme();
    report.panelFrame = panel_ ? panel_->frame() : Rect{};
    report.panelVisible = panel_ && panel_->isVisible();
    report.panelOnScreen = panel_ && panel_->isOnScreen();
    report.screenFrame = metrics_ ? metrics_->screenFrame : Rect{};
    report.briefings = static_cast<int>(model.briefings().size());
    report.suppressed = with_.clock.now() < model.suppressExpandUntil();
    report.pointer = with_.monitors.pointerLocation();
    report.inZone = metrics_ && metrics_->hotZone().contains(report.pointer);
    return report;
}

}  // namespace sunpane
