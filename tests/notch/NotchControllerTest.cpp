#include <gtest/gtest.h>

#include "NotchControllerFixture.h"

namespace sunpane {
namespace {

TEST_F(NotchControllerTest, UnfoldsAtTheNotchAndFoldsWellOutsideThePanel) {
    show();
    moveTo({649, 899});
    EXPECT_FALSE(model->expanded());
    moveTo({720, 873});
    EXPECT_FALSE(model->expanded());
    moveTo({650, 900});  // the very top row of the screen
    EXPECT_TRUE(model->expanded());
    moveTo({330 - 24, 500});
    EXPECT_TRUE(model->expanded());
    moveTo({330 - 24.5, 500});
    EXPECT_FALSE(model->expanded());
}

TEST_F(NotchControllerTest, HasThePanelMadeReadyWhenThePointerComesNear) {
    show();
    moveTo({720, 600});
    moveTo({300, 880});
    EXPECT_FALSE(windows.last->prepared);
    moveTo({600, 760});
    EXPECT_TRUE(windows.last->prepared);
    EXPECT_FALSE(model->expanded());
}

TEST_F(NotchControllerTest, SeesAPointerThatNoEventTellsOf) {
    show();
    pointer.location = atNotch;
    platform.time.advance(0.04);
    EXPECT_FALSE(model->expanded());
    platform.time.advance(0.02);
    EXPECT_TRUE(model->expanded());
}

TEST_F(NotchControllerTest, CatchesAFlickAcrossTheTopEdgeOntoAnotherScreen) {
    struct Case {
        Point from, to;
        bool opens;
    };
    const Case cases[] = {
        {{700, 860}, {740, 1100}, true},   // upward, passing the edge at x = 707
        {{740, 1100}, {700, 860}, true},   // and back down
        {{600, 860}, {640, 1100}, false},  // passes left of the zone
        {{600, 899}, {1300, 899}, false},  // along the edge without crossing it
    };
    for (const auto& c : cases) {
        SetUp();
        show();
        moveTo(c.from);
        moveTo(c.to);
        EXPECT_EQ(model->expanded(), c.opens) << c.from.x << ',' << c.from.y;
    }
}

TEST_F(NotchControllerTest, KeepsOpenAndKeepsShutForAsLongAsAsked) {
    show();
    notifications.post("revealTodo");
    platform.time.runPending();
    EXPECT_TRUE(model->expanded());
    moveTo(farAway);
    platform.time.advance(4.9);
    moveTo({101, 100});
    EXPECT_TRUE(model->expanded());
    platform.time.advance(0.2);
    EXPECT_TRUE(model->expanded());  // nothing happens until the pointer moves
    moveTo({102, 100});
    EXPECT_FALSE(model->expanded());

    moveTo(atNotch);
    EXPECT_TRUE(model->expanded());
    model->setReminderUIOpen(1);
    moveTo(farAway);
    EXPECT_TRUE(model->expanded());
    model->setReminderUIOpen(0);
    moveTo({101, 100});
    EXPECT_FALSE(model->expanded());

    notifications.post("collapseNotch");
    platform.time.advance(1.1);
    moveTo(atNotch);
    EXPECT_FALSE(model->expanded());
    platform.time.advance(0.2);
    EXPECT_FALSE(model->expanded());
    moveTo({721, 890});
    EXPECT_TRUE(model->expanded());
}

TEST_F(NotchControllerTest, FollowsTheScreens) {
    screens.screens.clear();
    show();
    EXPECT_EQ(windows.made, 0);
    EXPECT_EQ(askForReport()["panelFrame"], "{{0, 0}, {0, 0}}");
    moveTo(atNotch);
    EXPECT_FALSE(model->expanded());

    const Screen plain{Rect{0, 0, 1000, 800}, 0, {}, {}};
    screens.change({plain});
    platform.time.advance(0.5);
    screens.change({plain, {Rect{1000, 0, 1512, 982}, 38, {}, {}}});
    platform.time.advance(0.5);
    EXPECT_EQ(windows.made, 0);
    platform.time.advance(0.2);
    EXPECT_EQ(windows.made, 1);
    EXPECT_EQ(windows.lastNotch, (Size{200, 38}));  // the screen with the camera housing wins
    EXPECT_EQ(windows.last->frame().midX(), 1756);

    screens.change({});  // the panel stays until there is a screen again
    platform.time.advance(1);
    EXPECT_TRUE(windows.last->visible);
}

TEST_F(NotchControllerTest, ReportsItsState) {
    folder.write("2026-11-22.md", "# A\n- b\n");
    show();
    moveTo({720, 885.5});
    const auto json = askForReport();
    EXPECT_EQ(json.dump(), R"({"briefings":1,"expanded":true,"inZone":true,"panelFrame":"{{330, 79}, {780, 821}}",)"
                           R"("panelOnScreen":true,"panelVisible":true,"pointer":"{720, 885.5}",)"
                           R"("screenFrame":"{{0, 0}, {1440, 900}}","spaceID":1,"spaceType":0,"suppressed":false,)"
                           R"("theme":"glass"})");
}

}  // namespace
}  // namespace sunpane
