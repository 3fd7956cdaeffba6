#include "app/TodoReminders.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "app/NotificationResponses.h"
#include "app/TodoActions.h"
#include "base/Dates.h"
#include "base/NotificationNames.h"
#include "support/SimulatedDesktop.h"
#include "support/SimulatedNotifications.h"
#include "support/StoresFixture.h"

namespace sunpane {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

struct TodoRemindersTest : testing::StoresFixture {
    TodoStore todos{storeFiles, "/briefings"};
    testing::SimulatedNotificationCenter center{platform.runLoop};
    ReminderScheduler scheduler{center, platform.clock};
    NotchUndo undo;
    std::optional<TodoReminders> reminders;

    void start() {
        reminders.emplace(TodoReminders::Collaborators{todos, scheduler, center, platform.clock, platform.runLoop});
        settle();
    }
    void settle() { platform.time.runPending(); }
    Uuid add(const std::string& text) {
        todos.add(text);
        return todos.todos().back().id;
    }
    std::vector<std::string> bodies() const {
        std::vector<std::string> result;
        for (const auto& request : center.requests())
            result.push_back(request.body);
        return result;
    }
};

TEST_F(TodoRemindersTest, FollowsWhateverHappensToATodo) {
    start();
    const Uuid id = add("Call mum");
    const Instant date = platform.clock.now() + 3600;
    settle();
    EXPECT_THAT(center.identifiers(), IsEmpty());
    todos.setReminder(id, date, std::nullopt);
    settle();
    EXPECT_THAT(center.identifiers(), ElementsAre("todo-" + id.toString()));
    todos.rename(id, "Call dad");
    settle();
    EXPECT_THAT(bodies(), ElementsAre("Call dad"));
    todos.setReminder(id, date + 60, "daily");
    settle();
    EXPECT_TRUE(center.requests().front().trigger.repeats);
    // A change of something else tells the centre nothing.
    const int additions = center.additions;
    todos.togglePrio(id);
    add("Other");
    settle();
    EXPECT_EQ(center.additions, additions);
    todos.toggle(id);
    settle();
    EXPECT_THAT(center.identifiers(), IsEmpty());
    todos.toggle(id);
    settle();
    EXPECT_THAT(bodies(), ElementsAre("Call dad"));
    todos.setReminder(id, std::nullopt, std::nullopt);
    settle();
    EXPECT_THAT(center.identifiers(), IsEmpty());
}

TEST_F(TodoRemindersTest, DeletingTakesTheReminderAlongAndUndoBringsItBack) {
    start();
    add("First");
    const Uuid id = add("Call mum");
    add("Last");
    todos.setReminder(id, platform.clock.now() + 3600, std::nullopt);
    settle();
    const Todo before = todos.todos().at(1);
    todo_actions::removeWithUndo(todos, Uuid::random(), undo);
    EXPECT_FALSE(undo.undo());
    todo_actions::removeWithUndo(todos, id, undo);
    settle();
    EXPECT_THAT(center.identifiers(), IsEmpty());
    EXPECT_TRUE(todos.isDismissed("call mum"));
    EXPECT_TRUE(undo.undo());
    settle();
    EXPECT_THAT(bodies(), ElementsAre("Call mum"));
    EXPECT_EQ(todos.todos().at(1), before) << "where it was and as it was";
    EXPECT_FALSE(todos.isDismissed("call mum"));
}

TEST_F(TodoRemindersTest, TickingClearsTheReminderForGood) {
    start();
    const Uuid id = add("Call mum");
    todos.setReminder(id, platform.clock.now() + 3600, "weekly");
    todo_actions::toggle(todos, id);
    settle();
    EXPECT_THAT(center.identifiers(), IsEmpty());
    todo_actions::toggle(todos, id);
    settle();
    EXPECT_FALSE(todos.todos().front().done);
    EXPECT_EQ(todos.todos().front().remindAt, std::nullopt);
    EXPECT_EQ(todos.todos().front().remindRepeat, std::nullopt);
    EXPECT_THAT(center.identifiers(), IsEmpty());
}

TEST_F(TodoRemindersTest, AtTheStartOnlyWhatIsWrongIsPutRight) {
    const Instant date = platform.clock.now() + 3600;
    const Uuid right = add("Right");
    const Uuid missing = add("Missing");
    const Uuid changed = add("Changed");
    const Uuid done = add("Done");
    for (const Uuid& id : {right, missing, changed, done})
        todos.setReminder(id, date, std::nullopt);
    todos.toggle(done);
    const auto add = [&](const Uuid& id, const std::string& text) {
        center.add(ReminderScheduler::todoRequest(id, text, date, std::nullopt, platform.clock));
    };
    add(right, "Right");
    add(changed, "Before");
    add(done, "Done");
    add(Uuid::random(), "Gone");
    NotificationRequest meeting;
    meeting.identifier = "meeting-1";
    meeting.body = "Meeting";
    center.add(meeting);
    center.additions = 0;
    start();
    EXPECT_THAT(bodies(), ::testing::UnorderedElementsAre("Right", "Missing", "Changed", "Meeting"));
    EXPECT_EQ(center.additions, 2);
}

TEST_F(TodoRemindersTest, InAnotherZoneAReminderKeepsTheTimeThatItWasSetFor) {
    const LocalCalendar home(platform.clock);
    const Uuid daily = add("Daily");
    const Uuid once = add("Once");
    start();
    todos.setReminder(daily, home.parseIso8601("2026-11-22T09:00:30"), "daily");
    todos.setReminder(once, home.parseIso8601("2026-11-25T18:00:00"), std::nullopt);
    settle();
    const auto triggers = [&] {
        std::vector<CalendarTrigger> result;
        for (const Uuid& id : {daily, once})
            result.push_back(center.byIdentifier.at("todo-" + id.toString()).trigger);
        return result;
    };
    const auto before = triggers();
    EXPECT_EQ(before[0], (CalendarTrigger{.hour = 9, .minute = 0, .repeats = true}));
    center.additions = 0;
    platform.clock.zone = "America/New_York";
    start();
    EXPECT_EQ(center.additions, 0);
    todos.rename(daily, "Every day");
    settle();
    EXPECT_EQ(center.byIdentifier.at("todo-" + daily.toString()).body, "Every day");
    EXPECT_EQ(triggers(), before);
    // Another rule or moment is read from the clock that the user looks at.
    todos.setReminder(daily, home.parseIso8601("2026-11-22T09:00:00"), "weekly");
    todos.setReminder(once, home.parseIso8601("2026-11-25T18:01:00"), std::nullopt);
    settle();
    EXPECT_EQ(triggers()[0], (CalendarTrigger{.weekday = 1, .hour = 3, .minute = 0, .repeats = true}));
    EXPECT_EQ(triggers()[1].hour, 12);
}

TEST_F(TodoRemindersTest, AListThatCouldNotBeReadCancelsNothing) {
    const auto pending = ReminderScheduler::todoRequest(Uuid::random(), "Call", platform.clock.now() + 3600,
                                                        std::nullopt, platform.clock);
    center.add(pending);
    start();
    EXPECT_THAT(center.identifiers(), ElementsAre(pending.identifier));
}

TEST(NotificationResponsesTest, AClickOpensTheMeetingOrRevealsTheTodo) {
    testing::SimulatedPlatform platform;
    testing::SimulatedNotificationCenter center{platform.runLoop};
    LocalNotifications notifications;
    testing::SimulatedWorkspace workspace;
    std::vector<std::string> revealed;
    const auto subscription = notifications.observe(
        notification::revealTodo, [&](const auto& object) { revealed.push_back(object.value_or("no object")); });
    {
        const NotificationResponses responses(center, notifications, workspace);
        center.respond({"meeting-1", {{"joinURL", "https://zoom.us/j/1"}}});
        EXPECT_THAT(workspace.opened, ElementsAre("https://zoom.us/j/1"));
        EXPECT_THAT(revealed, IsEmpty());
        center.respond({"meeting-1", {}});
        center.respond({"meeting-1", {{"joinURL", "file:///etc/passwd"}}});
        center.respond({"meeting-1", {{"joinURL", ""}}});
        center.respond({"todo-6F9619FF-8B86-D011-B42D-00C04FC964FF", {{"joinURL", "https://zoom.us/j/1"}}});
        center.respond({"other", {}});
    }
    EXPECT_EQ(workspace.opened.size(), 1U);
    EXPECT_THAT(revealed, ElementsAre("no object", "no object", "no object", "6F9619FF-8B86-D011-B42D-00C04FC964FF"));
    EXPECT_FALSE(center.respond);
}

}  // namespace
}  // namespace sunpane
