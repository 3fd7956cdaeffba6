#include "notch/NotchController.h"

#include <utility>

#include "base/AppIdentity.h"
#include "base/NotificationNames.h"

namespace sunpane {

NotchController::NotchController(Collaborators collaborators)
    : with_(std::move(collaborators)), self_(std::make_shared<NotchController*>(this)) {}

void NotchController::show() {
    with_.viewModel.start();
    buildPanel();
    installStateReporter();
    watchNotifications();
    watchSpaces();
    watchFocus();
    watchScreens();
}

void NotchController::observe(const char* name, void (NotchController::*react)()) {
    observers_.push_back(with_.notifications.observe(name, [this, react](const auto&) { (this->*react)(); }));
}

void NotchController::watchNotifications() {
    observe(notification::quickCapture, &NotchController::toggleQuickCapture);
    observe(notification::makeNotchKey, &NotchController::takeKeyboardForEditing);
    // The change is announced before it takes effect, so it is looked at a moment later.
    observers_.push_back(with_.viewModel.onWillChange([this] {
        if (!with_.viewModel.expanded()) return;
        with_.runLoop.post([weak = std::weak_ptr(self_)] {
            if (const auto self = weak.lock()) (*self)->handOverKeyboardWhenFolded();
        });
    }));
}

void NotchController::watchSpaces() {
    if (with_.spaces == nullptr) return;
    // Catches the switches that the desktop does not announce.
    spacePollTimer_ = with_.runLoop.every(spacePollInterval, [this] { spaceCheck(); });
    observers_.push_back(with_.spaces->onActiveSpaceChanged([this] { spaceCheck(); }));
}

void NotchController::watchFocus() {
    observers_.push_back(with_.workspace.onApplicationActivated([this] { foldForFocusChange(); }));
    auto monitor = with_.monitors.onGlobalMouseDown([this] { foldForFocusChange(); });
    if (monitor) mouseMonitors_.push_back(std::move(monitor));
}

void NotchController::watchScreens() {
    observers_.push_back(with_.screens.onChange([this] {
        // The desktop settles in several steps; the last one counts.
        rebuildAfterScreenChange_ = with_.runLoop.after(screenChangeDelay, [this] { rebuildPanel(); });
    }));
    observers_.push_back(with_.workspace.observeWake(
        [this] { rebuildAfterWake_ = with_.runLoop.after(wakeDelay, [this] { rebuildPanel(); }); }));
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
    with_.pinnedSpace.pin(*panel_);
    metrics_ = metrics;
    installMouseWatch();
}

void NotchController::rebuildPanel() {
    if (!chooseScreen()) return;
    if (panel_) panel_->orderOut();
    panel_.reset();
    with_.pinnedSpace.reset();
    buildPanel();
}

void NotchController::rebuildForSpace() {
    rebuildPanel();
    rebuildWhenSettled_ = with_.runLoop.after(settledDelay, [this] {
        if (!with_.viewModel.expanded()) rebuildPanel();
    });
}

void NotchController::handOverKeyboardWhenFolded() {
    if (panel_ && !with_.viewModel.expanded()) panel_->resignKey();
}

void NotchController::installMouseWatch() {
    if (pointerPollTimer_) return;
    for (const auto add : {&EventMonitors::onGlobalPointerMoved, &EventMonitors::onLocalPointerMoved}) {
        auto monitor = (with_.monitors.*add)([this] { schedulePointerMoved(); });
        if (monitor) mouseMonitors_.push_back(std::move(monitor));
    }
    // Catches positions for which no event arrives, as while another program is full screen.
    pointerPollTimer_ = with_.runLoop.every(pointerPollInterval, [this] { pointerMoved(); });
}

void NotchController::toggleQuickCapture() {
    if (!panel_) return;
    NotchViewModel& model = with_.viewModel;
    if (model.expanded()) {
        model.setExpanded(false);
        return;
    }
    model.setKeepOpenUntil(with_.clock.now() + keepOpenForCapture);
    model.setSuppressExpandUntil(Instant::distantPast());
    model.setExpanded(true);
    panel_->orderFrontRegardless();
    panel_->makeKey();
    with_.notifications.post(notification::quickCaptureFocus);
}

void NotchController::takeKeyboardForEditing() {
    if (!panel_) return;
    with_.viewModel.setKeepOpenUntil(with_.clock.now() + keepOpenForEditing);
    panel_->orderFrontRegardless();
    panel_->makeKey();
}

bool NotchController::mayFold() const {
    const NotchViewModel& model = with_.viewModel;
    return model.expanded() && model.reminderUIOpen() == 0 && !model.isKeptOpen();
}

void NotchController::foldForFocusChange() {
    if (mayFold()) with_.notifications.post(notification::collapseNotch);
}

void NotchController::spaceCheck() {
    const auto space = with_.spaces->activeSpace();
    if (space == 0 || space == lastSpace_) return;
    // Other kinds are passing states of the desktop, such as an overview of all spaces.
    const auto type = with_.spaces->type(space);
    if (type && *type != WindowSpaces::ordinary && *type != WindowSpaces::fullScreen) return;

    const auto previous = std::exchange(lastSpace_, space);
    const bool expanded = with_.viewModel.expanded();
    if (metrics_ && metrics_->isNearNotch(with_.monitors.pointerLocation())) {
        // The user is at the panel: what is open stays open.
        if (!expanded) rebuildForSpace();
        return;
    }
    if (previous == 0 || !panel_) return;
    if (expanded) with_.notifications.post(notification::collapseNotch);
    rebuildForSpace();
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
    if (inside) {
        if (!model.expanded() && !model.isExpandSuppressed()) model.setExpanded(true);
        return;
    }
    if (!model.expanded() && zone.grownBy(approachMargin).contains(pointer)) panel_->prepare();
    if (mayFold() && !panel_->frame().grownBy(foldMargin).contains(pointer)) model.setExpanded(false);
}

bool NotchController::crossesTopEdgeInside(const Rect& zone, Point from, Point to) const {
    // A fast flick jumps over the notch between two samples; what counts is where it passed the screen's top edge.
    const double top = metrics_->screenFrame.maxY();
    if ((to.y - top) * (from.y - top) >= 0 || to.y == from.y) return false;
    const double x = from.x + (top - from.y) / (to.y - from.y) * (to.x - from.x);
    return x >= zone.minX() && x <= zone.maxX();
}

void NotchController::installStateReporter() {
    observers_.push_back(with_.distributed.observe(std::string(appIdentifier) + ".report", [this] {
        with_.runLoop.post([weak = std::weak_ptr(self_)] {
            if (const auto self = weak.lock()) (*self)->with_.writeReport((*self)->report().toJson());
        });
    }));
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
    // Hovering waits for this very moment to pass; who asks is told that it has come.
    report.suppressed = model.isExpandSuppressed() && with_.clock.now() < model.suppressExpandUntil();
    report.pointer = with_.monitors.pointerLocation();
    report.inZone = metrics_ && metrics_->hotZone().contains(report.pointer);
    if (with_.spaces != nullptr) {
        report.spaceID = with_.spaces->activeSpace();
        report.spaceType = with_.spaces->type(report.spaceID).value_or(WindowSpaces::ordinary);
    }
    return report;
}

}  // namespace sunpane
