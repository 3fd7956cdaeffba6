#include "views/TodoRules.h"

#include <gtest/gtest.h>

#include "base/Dates.h"
#include "support/SimulatedPlatform.h"

namespace sunpane::todo_rules {
namespace {

TEST(TodoRules, ADragIsVerticalUnlessItGoesFurtherSideways) {
    EXPECT_EQ(dragAxis(4, 4), Axis::vertical);
    EXPECT_EQ(dragAxis(-3, -5), Axis::vertical);
    EXPECT_EQ(dragAxis(-6, 5.9), Axis::horizontal);
}

TEST(TodoRules, ADraggedRowMovesByWholeRowsWithinTheList) {
    struct Case {
        std::size_t start;
        double dy;
        std::size_t index;
    };
    const Case cases[] = {{2, 13.9, 2}, {2, 14, 3},    {2, -14, 1},   {2, -13.9, 2}, {2, 42, 4},
                          {2, 56, 4},   {2, -5000, 0}, {4, 1e300, 9}, {9, -27.9, 8}, {0, 28 * 4.49, 4}};
    for (const auto& c : cases)
        EXPECT_EQ(dropIndex(c.start, c.dy, 10), c.index) << c.start << " by " << c.dy;
    EXPECT_EQ(dropIndex(0, 100, 1), 0U);
}

TEST(TodoRules, AListScrollsFasterTheNearerToItsEndsARowIsDragged) {
    struct Case {
        double y, dy, speed;
    };
    const Case cases[] = {{150, 50, 0},   {268, 50, 0}, {284, 50, 240}, {300, 50, 480},
                          {900, 50, 480}, {32, -50, 0}, {8, -50, -360}, {-70, -50, -480},
                          {284, -6, 0},   {8, 6, 0},    {300, 0, 0}};
    for (const auto& c : cases)
        EXPECT_DOUBLE_EQ(scrollSpeed(c.y, 300, c.dy), c.speed) << c.y << " by " << c.dy;
    EXPECT_DOUBLE_EQ(scrollSpeed(15, 30, 5), 0);  // a low list has a middle, too
    EXPECT_DOUBLE_EQ(scrollSpeed(25, 30, 5), 240);
}

TEST(TodoRules, ARowStaysAmongItsOwnKind) {
    std::vector<Todo> todos;
    for (const char kind : std::string("PPooodd")) {
        Todo todo = Todo::make("x", {});
        todo.prio = kind == 'P';
        todo.done = kind == 'd';
        todos.push_back(todo);
    }
    todos[5].prio = true;  // among the done ones a priority is nothing special
    struct Case {
        std::size_t from, target, landing;
    };
    const Case cases[] = {{0, 1, 1}, {1, 6, 1}, {2, 0, 2}, {3, 4, 4}, {4, 6, 4}, {6, 0, 5}, {5, 6, 6}};
    for (const auto& c : cases)
        EXPECT_EQ(landingIndex(todos, c.from, c.target), c.landing) << c.from << " to " << c.target;
}

TEST(TodoRules, SaysWhenItRemindsAndWhatGoesIntoTheCalendar) {
    testing::SimulatedPlatform platform;
    platform.clock.localeName = "de_DE";
    const LocalCalendar calendar(platform.clock);
    Todo todo = Todo::make("x", {});
    EXPECT_EQ(reminderTooltip(todo, platform.clock), "");
    const Instant date = calendar.instant({{2026, 11, 29}, 15, 5, 0});
    todo.remindAt = date;
    EXPECT_EQ(reminderTooltip(todo, platform.clock), "Reminder: 29.11.2026, 15:05");
    todo.remindRepeat = "weekly";
    EXPECT_EQ(reminderTooltip(todo, platform.clock), "Reminder: 29.11.2026, 15:05 · repeats weekly");
    platform.clock.localeName = "en_GB";
    EXPECT_EQ(addToCalendarHelp(date, platform.clock), "Add to Calendar — Sun 29 Nov, 15:05");
}

}  // namespace
}  // namespace sunpane::todo_rules
