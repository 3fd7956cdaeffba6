#pragma once

#include <functional>
#include <memory>
#include <optional>

#include "app/NotchUndo.h"
#include "base/Observable.h"
#include "base/Spring.h"
#include "core/briefing/Briefing.h"
#include "core/stores/ItemFlagStore.h"
#include "notch/ScrollSwipeHub.h"
#include "notch/SwipeRecognizer.h"

namespace sunpane {

/// Recognises a sideways swipe with two fingers over a briefing card: to the right it flags the card as a priority, to
/// the left it clears the card, or hides one that is cleared already. What it did can be taken back.
///
/// One for each briefing column, owned by what shows the column; main thread only. Announces changes of `hoveredItem`
/// and `swipeX`.
class ItemSwipeCoordinator : public Observable {
public:
    /// A swipe counts when the card was moved further than this (points) at its end.
    static constexpr double decisionDistance = 70;
    static constexpr Spring hoverAnimation{0.28, 0.7};
    static constexpr Spring finishAnimation{0.32, 0.72};

    using Change = std::function<void()>;
    using Animate = std::function<void(const Spring& spring, const Change& change)>;

    /// Without the store what the user decides is dropped.
    ItemSwipeCoordinator(ScrollSwipeHub& hub, NotchUndo& undo, std::weak_ptr<ItemFlagStore> flags);

    /// Begins to listen for scrolling, unless it does so already.
    void install();
    /// Stops listening, as when the column goes.
    void uninstall() { registration_.cancel(); }

    /// The pointer came to rest on a card, or left it. One card may be entered before the last one is left.
    void pointerEntered(const BriefingItem& item);
    void pointerLeft(const BriefingItem& item);

    /// Takes a scroll event; whether it is consumed.
    bool handle(const ScrollEvent& event);

    /// Moves the hovered card to `x` points from its place, as a drag with the mouse does. Until it is let go of, two
    /// fingers do nothing to it.
    void dragTo(double x);
    /// Lets go of the card, which goes back.
    void cancelDrag();

    /// Acts on a card that was moved by `swipeX`, and lets go of it.
    void finish(const BriefingItem& item);

    /// The card under the pointer, on which swipes act.
    const std::optional<BriefingItem>& hoveredItem() const { return hoveredItem_; }
    /// How far (points) the hovered card is moved; positive to the right.
    double swipeX() const { return swipeX_; }

    enum class Outcome { marked, unmarked, cleared, removed };
    /// Told what became of a card that was swiped far enough, by whatever moved it; the user interface sets it.
    std::function<void(Outcome)> onOutcome;

    /// Runs a change so that it shows with the spring; the user interface sets it. Without it changes just happen.
    Animate animate;

private:
    void decide(const BriefingItem& item);
    void tell(Outcome outcome) const;
    void setSwipeX(double x);
    void run(const Spring& spring, const Change& change);

    ScrollSwipeHub& hub_;
    NotchUndo& undo_;
    std::weak_ptr<ItemFlagStore> flags_;
    std::optional<BriefingItem> hoveredItem_;
    double swipeX_ = 0;
    bool isDragged_ = false;
    SwipeRecognizer gesture_;
    Subscription registration_;
};

}  // namespace sunpane
