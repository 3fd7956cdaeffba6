#include "notch/ItemSwipeCoordinator.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/SimulatedDesktop.h"
#include "support/StoresFixture.h"

namespace sunpane {
namespace {

using enum ScrollPhase;

ScrollEvent event(ScrollPhase phase, double x = 0, double y = 0) {
    return {phase, none, x, y};
}

struct ScrollSwipeHubTest : ::testing::Test {
    testing::SimulatedPointer pointer;
    ScrollSwipeHub hub{pointer};
    std::string asked;

    ScrollSwipeHub::Handler handler(char name, bool consumes) {
        return [this, name, consumes](const ScrollEvent&) {
            asked += name;
            return consumes;
        };
    }
};

TEST_F(ScrollSwipeHubTest, AsksTheNewestFirstAndStopsAtTheOneThatConsumes) {
    EXPECT_FALSE(pointer.scroll(event(changed)));
    const auto a = hub.add(handler('a', false));
    auto b = hub.add(handler('b', true));
    auto c = hub.add(handler('c', false));
    EXPECT_TRUE(pointer.scroll(event(changed)));
    EXPECT_EQ(std::exchange(asked, ""), "cb");
    b.cancel();
    EXPECT_FALSE(pointer.scroll(event(changed)));
    EXPECT_EQ(std::exchange(asked, ""), "ca");
    c = hub.add(handler('d', true));
    EXPECT_TRUE(pointer.scroll(event(changed)));
    EXPECT_EQ(asked, "d");
}

TEST_F(ScrollSwipeHubTest, HandlersMayComeAndGoWhileTheyAreAsked) {
    const auto last = hub.add(handler('a', true));
    Subscription removed = hub.add(handler('b', true));
    Subscription added;
    Subscription itself;
    itself = hub.add([&](const ScrollEvent&) {
        asked += 'c';
        removed.cancel();
        added = hub.add(handler('d', true));
        itself.cancel();
        return false;
    });
    EXPECT_TRUE(pointer.scroll(event(began)));
    EXPECT_EQ(std::exchange(asked, ""), "ca");
    EXPECT_TRUE(pointer.scroll(event(changed)));
    EXPECT_EQ(asked, "d");
}

TEST_F(ScrollSwipeHubTest, ListensOnceAndTriesAgainWhereItWasRefused) {
    pointer.refusesScrollMonitors = true;
    const auto a = hub.add(handler('a', false));
    pointer.scroll(event(began));
    EXPECT_EQ(asked, "");
    pointer.refusesScrollMonitors = false;
    const auto b = hub.add(handler('b', false));
    const auto c = hub.add(handler('c', false));
    pointer.scroll(event(began));
    EXPECT_EQ(asked, "cba");
}

struct ItemSwipeCoordinatorTest : testing::StoresFixture {
    std::shared_ptr<ItemFlagStore> flags = std::make_shared<ItemFlagStore>(storeFiles, "/briefings");
    testing::SimulatedPointer pointer;
    ScrollSwipeHub hub{pointer};
    NotchUndo undo;
    std::optional<ItemSwipeCoordinator> swipes{std::in_place, hub, undo, flags};
    BriefingItem card{"**Alpha** report"};
    BriefingItem other{"Beta call"};

    // Which events were let through ('-') and which were swallowed ('x').
    std::string play(const std::vector<ScrollEvent>& events) {
        std::string swallowed;
        for (const auto& event : events)
            swallowed += pointer.scroll(event) ? 'x' : '-';
        return swallowed;
    }
    void swipe(double x) { play({event(began), event(changed, x), event(ended)}); }
    std::string state(const BriefingItem& item) const {
        return std::string(flags->isPrio(item.id()) ? "prio " : "") + (flags->isCleared(item.id()) ? "cleared " : "") +
               (flags->isHidden(item.id()) ? "hidden" : "");
    }
};

TEST_F(ItemSwipeCoordinatorTest, FingersDoNothingToACardThatTheMouseHolds) {
    swipes->pointerEntered(card);
    play({event(began), event(changed, 30)});
    swipes->dragTo(90);
    EXPECT_EQ(play({event(changed, -50), event(ended), event(began), event(changed, -200), event(ended)}), "-----");
    EXPECT_EQ(swipes->swipeX(), 90);
    swipes->finish(card);
    EXPECT_EQ(state(card), "prio ");
    swipes->dragTo(90);
    swipes->cancelDrag();
    swipe(-100);
    EXPECT_EQ(state(card), "cleared ") << "let go of, it is swiped again";
}

TEST_F(ItemSwipeCoordinatorTest, LocksTheAxisAndFollowsTheFingersSideways) {
    struct Case {
        const char* what;
        std::vector<ScrollEvent> changes;
        const char* swallowed;
        double swipeX;
    };
    const std::vector<Case> cases{
        {"sideways at once", {event(changed, 5, 1)}, "x", 5},
        {"4 is not enough, a little more is", {event(changed, 4)}, "x", 0},
        {"the card jumps to where the fingers are", {event(changed, 4), event(changed, 0.5)}, "xx", 4.5},
        {"to the left", {event(changed, -3), event(changed, -2, 1)}, "xx", -5},
        {"a lead of 3 is not enough", {event(changed, 5, 2)}, "x", 0},
        {"moves on, up or down too", {event(changed, 10), event(changed, -25, 90)}, "xx", -15},
        {"up or down", {event(changed, 1, 12), event(changed, 90), event(changed, 90)}, "---", 0},
        {"a lead of 10 is not enough", {event(changed, 1, -11)}, "x", 0},
        {"undecided", {event(changed, 2, 6)}, "x", 0},
        {"wheel clicks and what has no phase", {event(none, 90), event(changed, 2)}, "xx", 0},
    };
    swipes->pointerEntered(card);
    for (const auto& [what, changes, swallowed, swipeX] : cases) {
        EXPECT_EQ(play({event(began)}), "x") << what;
        EXPECT_EQ(play(changes), swallowed) << what;
        EXPECT_EQ(swipes->swipeX(), swipeX) << what;
        EXPECT_EQ(play({event(cancelled)}), "x") << what;
        EXPECT_EQ(swipes->swipeX(), 0) << what;
    }
    EXPECT_EQ(state(card), "");
}

TEST_F(ItemSwipeCoordinatorTest, ActsBeyondSeventyPoints) {
    swipes->pointerEntered(card);
    for (const double x : {70.0, -70.0, 12.0}) {
        swipe(x);
        EXPECT_EQ(state(card), "") << x;
        EXPECT_EQ(swipes->swipeX(), 0) << x;
    }
    EXPECT_FALSE(undo.undo());
    swipe(70.5);
    EXPECT_EQ(state(card), "prio ");
    swipe(70.5);
    EXPECT_EQ(state(card), "");
    swipe(-70.5);
    EXPECT_EQ(state(card), "cleared ");
    swipe(-70.5);
    EXPECT_EQ(state(card), "cleared hidden");
    EXPECT_EQ(state(other), "");
}

TEST_F(ItemSwipeCoordinatorTest, EachSwipeCanBeTakenBack) {
    swipes->pointerEntered(card);
    std::vector<std::string> states{state(card)};
    for (const double x : {100.0, -100.0, 100.0, -100.0, -100.0}) {
        swipe(x);
        states.push_back(state(card));
    }
    EXPECT_EQ(states, (std::vector<std::string>{"", "prio ", "cleared ", "prio ", "cleared ", "cleared hidden"}));
    while (states.size() > 1) {
        states.pop_back();
        EXPECT_TRUE(undo.undo());
        EXPECT_EQ(state(card), states.back()) << states.size();
    }
    EXPECT_FALSE(undo.undo());
}

TEST_F(ItemSwipeCoordinatorTest, MomentumAfterASwipeScrollsNothing) {
    const ScrollEvent momentum{none, changed, 30, 30};
    EXPECT_EQ(play({momentum}), "-");
    swipes->pointerEntered(card);
    EXPECT_EQ(play({momentum}), "-");
    EXPECT_EQ(play({event(began), event(changed, 20), momentum, event(ended), momentum}), "xxxxx");
    EXPECT_EQ(play({event(began), event(changed, 0, 20), momentum, event(ended), momentum}), "x--x-");
    EXPECT_EQ(play({event(began), event(changed, 2, 2), event(ended), momentum}), "xxx-");
    EXPECT_EQ(swipes->swipeX(), 0);
}

TEST_F(ItemSwipeCoordinatorTest, ActsOnTheCardUnderThePointerOnly) {
    EXPECT_EQ(play({event(began), event(changed, 100), event(ended)}), "---");
    swipes->pointerEntered(card);
    play({event(began), event(changed, 100)});
    swipes->pointerEntered(other);
    swipes->pointerLeft(card);  // another card took over before
    EXPECT_EQ(swipes->hoveredItem(), other);
    EXPECT_EQ(swipes->swipeX(), 100);
    swipes->pointerLeft(other);
    EXPECT_EQ(swipes->hoveredItem(), std::nullopt);
    EXPECT_EQ(swipes->swipeX(), 0);
    // Back on the card, the rest of that gesture decides nothing.
    swipes->pointerEntered(card);
    EXPECT_EQ(play({event(ended)}), "x");
    EXPECT_EQ(state(card) + state(other), "");
}

TEST_F(ItemSwipeCoordinatorTest, AnnouncesFirstAndMovesWithSprings) {
    std::vector<double> announced;
    const auto changes = swipes->onWillChange([&] { announced.push_back(swipes->swipeX()); });
    std::vector<Spring> springs;
    swipes->animate = [&](const Spring& spring, const ItemSwipeCoordinator::Change& change) {
        springs.push_back(spring);
        change();
    };
    swipes->pointerEntered(card);
    swipe(80);
    swipes->pointerLeft(card);
    EXPECT_EQ(announced, (std::vector<double>{0, 0, 80, 0}));
    EXPECT_EQ(springs, (std::vector<Spring>{{0.28, 0.7}, {0.32, 0.72}, {0.28, 0.7}}));
    EXPECT_EQ(state(card), "prio ");
}

TEST_F(ItemSwipeCoordinatorTest, OutlivesTheStoreAndLeavesTheHubWithItsColumn) {
    swipes->pointerEntered(card);
    swipe(-100);
    flags.reset();
    EXPECT_EQ(undo.size(), 1U);
    swipe(100);
    EXPECT_EQ(undo.size(), 1U);
    swipe(-100);
    EXPECT_EQ(undo.size(), 2U) << "a swipe to the left leaves an action, which does nothing";
    EXPECT_EQ(swipes->swipeX(), 0);
    EXPECT_TRUE(undo.undo());
    EXPECT_TRUE(undo.undo());
    swipes->uninstall();
    EXPECT_EQ(play({event(began)}), "-");
    swipes->pointerEntered(card);
    EXPECT_EQ(play({event(began)}), "x");
    swipes.reset();
    EXPECT_EQ(play({event(began)}), "-");
}

}  // namespace
}  // namespace sunpane
