#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "NotchControllerFixture.h"
#include "base/NotificationNames.h"
#include "notch/HotkeyManager.h"

// How the panel answers the rest of the desktop: the hotkey, other programs, spaces, sleep.
namespace sunpane {
namespace {

using ::testing::ElementsAre;

struct NotchDesktopTest : NotchControllerTest {
    int focused = 0;
    Subscription focusRequests;

    void start() {
        show();
        focusRequests = notifications.observe(notification::quickCaptureFocus, [this](const auto&) { ++focused; });
    }
    void post(const char* name) {
        notifications.post(name);
        platform.time.runPending();
    }
    // Settles what `act` made due.
    template <class Act>
    void after(Act act) {
        act();
        platform.time.runPending();
    }
    void open() {
        moveTo(atNotch);
        ASSERT_TRUE(model->expanded());
    }
};

TEST_F(NotchDesktopTest, TheHotkeyOpensThePanelForATodoWhereverThePointerIs) {
    start();
    post(notification::collapseNotch);  // hovering would not open it now
    post(notification::quickCapture);
    EXPECT_TRUE(model->expanded());
    EXPECT_TRUE(windows.last->key);
    EXPECT_EQ(focused, 1);
    EXPECT_FALSE(askForReport()["suppressed"]);

    platform.time.advance(19.9);
    moveTo({101, 100});
    EXPECT_TRUE(model->expanded());
    workspace.activateAnother();
    pointer.pressElsewhere();
    platform.time.runPending();
    EXPECT_TRUE(model->expanded());
    platform.time.advance(0.2);
    moveTo({102, 100});
    EXPECT_FALSE(model->expanded());
    EXPECT_FALSE(windows.last->key);
}

TEST_F(NotchDesktopTest, TheHotkeyFoldsAnOpenPanelAtOnce) {
    start();
    post(notification::quickCapture);
    model->setReminderUIOpen(1);
    post(notification::quickCapture);
    EXPECT_FALSE(model->expanded());
    EXPECT_EQ(focused, 1);
    EXPECT_FALSE(askForReport()["suppressed"]);  // so that hovering opens it again
    EXPECT_FALSE(windows.last->key);
}

TEST_F(NotchDesktopTest, EditingTakesTheKeyboardAndKeepsThePanelOpen) {
    start();
    open();
    post(notification::makeNotchKey);
    EXPECT_TRUE(windows.last->key);
    platform.time.advance(29.9);
    moveTo(farAway);
    EXPECT_TRUE(model->expanded());
    platform.time.advance(0.2);
    moveTo({101, 100});
    EXPECT_FALSE(model->expanded());
}

TEST_F(NotchDesktopTest, AClockThatIsSetBackNeitherHoldsThePanelOpenNorShut) {
    start();
    post(notification::quickCapture);
    platform.time.jumpWallClock(platform.clock.now() - 3600);
    moveTo({101, 100});
    EXPECT_FALSE(model->expanded());
    post(notification::collapseNotch);
    platform.time.jumpWallClock(platform.clock.now() - 3600);
    EXPECT_FALSE(askForReport()["suppressed"]);
    open();
}

TEST_F(NotchDesktopTest, TurningToAnotherProgramFoldsUnlessAMenuIsOpenOrItMustStay) {
    const std::function<void()> turns[] = {[this] { workspace.activateAnother(); },
                                           [this] { pointer.pressElsewhere(); }};
    start();
    for (const auto& turn : turns) {
        open();
        model->setReminderUIOpen(1);
        after(turn);
        EXPECT_TRUE(model->expanded());
        model->setReminderUIOpen(0);
        model->setKeepOpenUntil(platform.clock.now() + 1);
        platform.time.advance(1);
        after(turn);
        EXPECT_TRUE(model->expanded());  // the moment itself still counts
        platform.time.advance(0.01);
        after(turn);
        EXPECT_FALSE(model->expanded());
        EXPECT_EQ(model->suppressExpandUntil(), platform.clock.now() + 1.2);
        EXPECT_TRUE(askForReport()["suppressed"]);
        after(turn);
        platform.time.advance(1.21);
        model->setSuppressExpandUntil(platform.clock.now());
        EXPECT_FALSE(askForReport()["suppressed"]) << "the moment itself";
        platform.time.advance(0.01);
        moveTo(farAway);
    }
}

TEST_F(NotchDesktopTest, ASwitchOfSpacesFoldsAndBuildsAnewTwice) {
    start();
    platform.time.advance(0.3);  // the first space is seen
    EXPECT_EQ(windows.made, 1);
    open();
    moveTo({720, 500});  // in the panel, away from the notch
    spaces.switchTo(2);
    platform.time.runPending();
    EXPECT_FALSE(model->expanded());
    EXPECT_EQ(windows.made, 2);
    platform.time.advance(0.79);
    EXPECT_EQ(windows.made, 2);
    platform.time.advance(0.02);
    EXPECT_EQ(windows.made, 3);
    platform.time.advance(10);
    EXPECT_EQ(windows.made, 3);

    // Without an announcement the poll sees it; a panel opened meanwhile is left alone.
    spaces.switchTo(3, false);
    platform.time.advance(0.3);
    EXPECT_EQ(windows.made, 4);
    open();
    platform.time.advance(1);
    EXPECT_EQ(windows.made, 4);
}

TEST_F(NotchDesktopTest, NearTheNotchASwitchLeavesAnOpenPanelAlone) {
    // Nearer than 400 points to the middle, and less than 120 below the top.
    struct Case {
        Point pointer;
        bool near;
    };
    const Case cases[] = {
        {{720, 781}, true}, {{720, 780}, false}, {{1119, 850}, true}, {{1120, 850}, false}, {{321, 850}, true}};
    start();
    platform.time.advance(0.3);
    WindowSpaces::SpaceID space = 2;
    for (const auto& c : cases) {
        SCOPED_TRACE(c.pointer.x);
        model->setExpanded(true);
        model->setKeepOpenUntil(Instant::distantPast());
        moveTo(c.pointer);
        EXPECT_TRUE(model->expanded());
        const int before = windows.made;
        spaces.switchTo(space++);
        platform.time.advance(1);
        EXPECT_EQ(model->expanded(), c.near);
        EXPECT_EQ(windows.made, c.near ? before : before + 2);
        model->setExpanded(false);
        platform.time.advance(2);
    }
}

TEST_F(NotchDesktopTest, TheFirstSpaceAndPassingStatesOfTheDesktopChangeNothing) {
    spaces.active = 0;
    start();
    platform.time.advance(1);
    spaces.activeType = 2;
    spaces.switchTo(5);
    platform.time.advance(1);
    spaces.activeType = WindowSpaces::fullScreen;
    spaces.switchTo(5);  // only now is it taken for the first
    platform.time.advance(1);
    EXPECT_EQ(windows.made, 1);
    const auto json = askForReport();
    EXPECT_EQ(json["spaceID"], 5);
    EXPECT_EQ(json["spaceType"], 4);

    spaces.activeType = 3;
    spaces.switchTo(6);
    platform.time.advance(1);
    EXPECT_EQ(windows.made, 1);
    spaces.activeType = std::nullopt;  // a desktop that tells no types
    platform.time.advance(1);
    EXPECT_EQ(windows.made, 3);
    EXPECT_EQ(askForReport()["spaceType"], 0);
}

TEST_F(NotchDesktopTest, TheFirstSpaceBuildsAnewWhenTheUserIsAtTheNotch) {
    pointer.location = {900, 850};  // near it, but not on it
    start();
    platform.time.advance(2);
    EXPECT_EQ(windows.made, 3);
    EXPECT_FALSE(model->expanded());
}

TEST_F(NotchDesktopTest, WakingBuildsAnewASecondLater) {
    start();
    workspace.wake();
    platform.time.advance(0.99);
    EXPECT_EQ(windows.made, 1);
    open();
    platform.time.advance(0.02);
    EXPECT_EQ(windows.made, 2);
    EXPECT_TRUE(model->expanded());
    EXPECT_TRUE(windows.last->visible);
}

TEST_F(NotchDesktopTest, WithoutAPanelTheHotkeyWaitsForAScreen) {
    screens.screens.clear();
    start();
    post(notification::quickCapture);
    post(notification::makeNotchKey);
    spaces.switchTo(2);
    spaces.switchTo(3);
    platform.time.advance(2);
    EXPECT_FALSE(model->expanded());
    EXPECT_EQ(windows.made, 0);
    screens.change({Screen{Rect{0, 0, 1440, 900}, 0, {}, {}}});
    platform.time.advance(1);
    EXPECT_EQ(windows.made, 1);
    post(notification::quickCapture);
    EXPECT_TRUE(model->expanded());
    post(notification::quickCapture);
    open();  // the pointer is watched, too
}

TEST_F(NotchDesktopTest, EveryPanelIsPinnedToASpaceOfItsOwn) {
    start();
    EXPECT_THAT(lines, ElementsAre("PinnedSpace: space 101 at level 500", "PinnedSpace: window 1 -> space 101"));
    EXPECT_EQ(spaces.shown, 101U);
    defaults.set("pinnedSpaceLevel", std::int64_t{3000000000});
    workspace.wake();
    platform.time.advance(1);
    EXPECT_EQ(pinned.generation(), 1);
    EXPECT_THAT(spaces.levels, ElementsAre(std::pair(WindowSpaces::SpaceID{102}, 2147483647)));
    EXPECT_EQ(spaces.windows.at(2), 102U);
}

TEST_F(NotchDesktopTest, ASpaceIsSharedUntilItIsGivenUp) {
    const std::pair<UserDefaults::Value, std::int32_t> levels[] = {{std::int64_t{0}, 500},
                                                                   {std::int64_t{-3000000000}, -2147483648},
                                                                   {std::int64_t{7}, 7},
                                                                   {std::string("high"), 500}};
    const auto window = windows.make({}, {}, 0, 0);
    pinned.reset();
    EXPECT_EQ(pinned.generation(), 0);
    for (const auto& [set, level] : levels) {
        defaults.set("pinnedSpaceLevel", set);
        EXPECT_TRUE(pinned.pin(*window));
        EXPECT_TRUE(pinned.pin(*windows.make({}, {}, 0, 0)));
        EXPECT_THAT(spaces.levels, ElementsAre(std::pair(spaces.lastPrivate, level)));
        const int before = pinned.generation();
        pinned.reset();
        pinned.reset();
        EXPECT_EQ(pinned.generation(), before + 1);
        EXPECT_TRUE(spaces.levels.empty());
    }
    spaces.hasPrivate = false;
    lines.clear();
    EXPECT_FALSE(pinned.pin(*window));
    EXPECT_FALSE(PinnedSpace(nullptr, defaults, nullptr).pin(*window));
    pinned.reset();
    EXPECT_EQ(pinned.generation(), 4);
    EXPECT_TRUE(lines.empty());
}

TEST_F(NotchDesktopTest, TheHotkeyIsRegisteredOnceWhileItIsWanted) {
    testing::SimulatedHotkeys keys;
    HotkeyManager manager(&keys, defaults, notifications);
    start();
    manager.registerAnew();
    manager.registerAnew();
    EXPECT_EQ(keys.registrations, 1);
    after([&] { keys.press(); });
    EXPECT_TRUE(model->expanded());
    after([&] { keys.press(); });
    EXPECT_FALSE(model->expanded());

    defaults.set("quickCaptureEnabled", false);
    manager.registerAnew();
    EXPECT_EQ(keys.registrations, 0);
    defaults.set("quickCaptureEnabled", std::string("no"));  // not a setting at all
    manager.registerAnew();
    EXPECT_EQ(keys.registrations, 1);

    keys.ownedByAnother = true;
    manager.registerAnew();
    EXPECT_EQ(keys.registrations, 0);
    HotkeyManager(nullptr, defaults, notifications).registerAnew();
}

}  // namespace
}  // namespace sunpane
