#include "notch/ItemSwipeCoordinator.h"

#include <cmath>
#include <utility>

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
        active_ = false;
        swipeX_ = 0;
    });
}

bool ItemSwipeCoordinator::handle(const ScrollEvent& event) {
    if (!hoveredItem_) return false;
    if (event.momentumPhase != ScrollPhase::none) return active_ || coasting_;
    switch (event.phase) {
        case ScrollPhase::began:
            rejected_ = active_ = coasting_ = false;
            pendX_ = pendY_ = 0;
            setSwipeX(0);
            return true;
        case ScrollPhase::changed:
            return change(event);
        case ScrollPhase::ended:
        case ScrollPhase::cancelled:
            end();
            return true;
        case ScrollPhase::none:
            break;
    }
    return true;
}

bool ItemSwipeCoordinator::change(const ScrollEvent& event) {
    if (rejected_) return false;
    if (active_) {
        setSwipeX(swipeX_ + event.deltaX);
        return true;
    }
    pendX_ += event.deltaX;
    pendY_ += event.deltaY;
    const double ax = std::abs(pendX_);
    const double ay = std::abs(pendY_);
    if (ax > ay + swipeLead && ax > swipeStart) {
        active_ = true;
        setSwipeX(pendX_);
    } else if (ay > ax + scrollLead) {
        rejected_ = true;
        return false;
    }
    return true;
}

void ItemSwipeCoordinator::end() {
    coasting_ = std::exchange(active_, false);
    if (coasting_) {
        // A copy: acting on the card may take it from under the pointer.
        const BriefingItem item = *hoveredItem_;
        run(finishAnimation, [this, &item] { finish(item); });
    }
    rejected_ = false;
}

void ItemSwipeCoordinator::finish(const BriefingItem& item) {
    const auto flags = flags_.lock();
    if (swipeX_ > decisionDistance && flags) {
        undo_.push(restoring(item, *flags));
        flags->togglePrio(item);
    } else if (swipeX_ < -decisionDistance && flags) {
        undo_.push(restoring(item, *flags));
        flags->isCleared(item.id()) ? flags->hide(item) : flags->toggleCleared(item);
    }
    setSwipeX(0);
}

NotchUndo::Action ItemSwipeCoordinator::restoring(const BriefingItem& item, const ItemFlagStore& flags) const {
    return [weak = flags_, item, wasPrio = flags.isPrio(item.id()), wasCleared = flags.isCleared(item.id()),
            wasHidden = flags.isHidden(item.id())] {
        const auto store = weak.lock();
        if (!store) return;
        const auto key = item.id();
        if (!wasHidden && store->isHidden(key)) store->unhide(item);
        if (!wasCleared && store->isCleared(key)) store->unclear(item);
        // Each of the next two takes the other flag off, so the one that is to be on comes last.
        if (wasPrio != store->isPrio(key)) store->togglePrio(item);
        if (wasCleared && !store->isCleared(key)) store->toggleCleared(item);
    };
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
