#include "notch/ItemSwipeCoordinator.h"

#include <utility>

#include "app/CardActions.h"

namespace sunpane {

ItemSwipeCoordinator::ItemSwipeCoordinator(ScrollSwipeHub& hub, NotchUndo& undo, std::weak_ptr<ItemFlagStore> flags)
    : hub_(hub), undo_(undo), flags_(std::move(flags)) {}

void ItemSwipeCoordinator::install() {
    if (registration_) return;
    registration_ = hub_.add([this](const ScrollEvent& event) { return handle(event); });
}

void ItemSwipeCoordinator::pointerEntered(const BriefingItem& item) {
    install();
    run(hoverAnimation, [this, &item] {
        announceChange();
        hoveredItem_ = item;
    });
}

void ItemSwipeCoordinator::pointerLeft(const BriefingItem& item) {
    if (!hoveredItem_ || hoveredItem_->id() != item.id()) return;
    run(hoverAnimation, [this] {
        announceChange();
        hoveredItem_.reset();
        gesture_.release();
        isDragged_ = false;
        swipeX_ = 0;
    });
}

bool ItemSwipeCoordinator::handle(const ScrollEvent& event) {
    if (!hoveredItem_ || isDragged_) return false;
    const auto step = gesture_.take(event);
    if (step == SwipeRecognizer::Step::passed) return false;
    setSwipeX(gesture_.offset());
    // A copy: acting on the card may take it from under the pointer.
    if (step == SwipeRecognizer::Step::finished) finish(BriefingItem(*hoveredItem_));
    return true;
}

void ItemSwipeCoordinator::dragTo(double x) {
    if (!std::exchange(isDragged_, true)) gesture_.release();
    setSwipeX(x);
}

void ItemSwipeCoordinator::cancelDrag() {
    isDragged_ = false;
    run(finishAnimation, [this] { setSwipeX(0); });
}

void ItemSwipeCoordinator::finish(const BriefingItem& item) {
    isDragged_ = false;
    run(finishAnimation, [this, &item] { decide(item); });
    gesture_.release();
}

void ItemSwipeCoordinator::decide(const BriefingItem& item) {
    const auto flags = flags_.lock();
    if (swipeX_ > decisionDistance && flags) {
        card_actions::flagWithUndo(
            flags_, [&] { flags->togglePrio(item); }, undo_);
        tell(flags->isPrio(item.id()) ? Outcome::marked : Outcome::unmarked);
    } else if (swipeX_ < -decisionDistance) {
        card_actions::flagWithUndo(
            flags_, [&] { flags->isCleared(item.id()) ? flags->hide(item) : flags->toggleCleared(item); }, undo_);
        if (flags) tell(flags->isHidden(item.id()) ? Outcome::removed : Outcome::cleared);
    }
    setSwipeX(0);
}

void ItemSwipeCoordinator::tell(Outcome outcome) const {
    if (onOutcome) onOutcome(outcome);
}

void ItemSwipeCoordinator::setSwipeX(double x) {
    if (swipeX_ == x) return;
    announceChange();
    swipeX_ = x;
}

void ItemSwipeCoordinator::run(const Spring& spring, const Change& change) {
    if (animate) {
        animate(spring, change);
    } else {
        change();
    }
}

}  // namespace sunpane
