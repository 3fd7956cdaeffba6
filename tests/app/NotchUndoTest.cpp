#include "app/NotchUndo.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <vector>

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

}  // namespace
}  // namespace sunpane::testing
