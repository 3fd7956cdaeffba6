#include "app/NotchUndo.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <vector>

#include "app/UndoKey.h"
#include "support/SimulatedDesktop.h"

namespace sunpane::testing {
namespace {

TEST(NotchUndo, TakesBackTheLatestFiftyActionsNewestFirst) {
    NotchUndo undo;
    EXPECT_FALSE(undo.undo());
    std::vector<int> undone;
    for (int i = 1; i <= 51; ++i)
        undo.push([&, i] { undone.push_back(i); });
    while (undo.undo()) {
    }
    ASSERT_EQ(undone.size(), 50U);
    EXPECT_EQ(undone.front(), 51);
    EXPECT_EQ(undone.back(), 2);
}

TEST(NotchUndo, RunsActionsInsideTheAnimationAndSurvivesTheirPushing) {
    NotchUndo undo;
    bool animating = false;
    bool ranInside = false;
    undo.animate = [&](const Spring& spring, const NotchUndo::Action& action) {
        EXPECT_EQ(spring, (Spring{0.32, 0.76}));
        animating = true;
        action();
        animating = false;
    };
    undo.push([&] {
        ranInside = animating;
        undo.push([] {});
    });
    EXPECT_TRUE(undo.undo());
    EXPECT_TRUE(ranInside);
    EXPECT_TRUE(undo.undo());
    EXPECT_FALSE(undo.undo());
}

TEST(UndoKey, TakesControlAndCommandZWhenThereIsSomethingToTakeBack) {
    struct Case {
        const char* what;
        KeyEvent key;
        bool taken;
    };
    const KeyEvent controlZ{.characters = "z", .control = true};
    const KeyEvent commandZ{.characters = "z", .command = true};
    const Case cases[] = {
        {"Control+Z", controlZ, true},
        {"Command+Z", commandZ, true},
        {"Z", {.characters = "z"}, false},
        {"Control+Y", {.characters = "y", .control = true}, false},
        {"Shift+Control+Z", {.characters = "z", .control = true, .shift = true}, false},
        {"Control+Z while typing", {.characters = "z", .control = true, .inTextField = true}, false},
    };
    SimulatedPointer keyboard;
    NotchUndo undo;
    const UndoKey key(keyboard, undo);
    int undone = 0;
    undo.push([&] { ++undone; });
    for (const auto& [what, event, taken] : cases) {
        const int before = undone;
        EXPECT_EQ(keyboard.press(event), taken) << what;
        EXPECT_EQ(undone - before, taken ? 1 : 0) << what;
        if (taken) undo.push([&] { ++undone; });
    }
    EXPECT_TRUE(keyboard.press(controlZ));
    EXPECT_FALSE(keyboard.press(controlZ)) << "nothing is left";
}

}  // namespace
}  // namespace sunpane::testing
