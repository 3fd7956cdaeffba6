#include "reminders/ReminderScheduler.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/Dates.h"
#include "support/SimulatedNotifications.h"
#include "support/SimulatedPlatform.h"

namespace sunpane {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

struct ReminderSchedulerTest : ::testing::Test {
    testing::SimulatedPlatform platform;
    testing::SimulatedNotificationCenter center{platform.runLoop};
    ReminderScheduler scheduler{center, platform.clock};
    const Uuid todo = Uuid::parse("6f9619ff-8b86-d011-b42d-00c04fc964ff").value();
    const std::string identifier = "todo-6F9619FF-8B86-D011-B42D-00C04FC964FF";
    const Instant now = platform.clock.now();

    void settle() { platform.time.runPending(); }
    // Tuesday 24 November 2026, 08:30:45 in Amsterdam.
    Instant tuesday() const { return *LocalCalendar(platform.clock).parseIso8601("2026-11-24T08:30:45"); }
    MeetingAlert alert(const std::string& id, Seconds in, std::optional<std::string> link = std::nullopt) const {
        return {id, "Meeting " + id, now + in, std::move(link)};
    }
    void sync(std::vector<MeetingAlert> alerts) {
        scheduler.syncMeetingAlerts(std::move(alerts));
        settle();
    }
};

TEST_F(ReminderSchedulerTest, MakesTheTriggerOfEachRule) {
    struct Case {
        std::optional<std::string> rule;
        CalendarTrigger trigger;
    };
    const CalendarTrigger once{.year = 2026, .month = 11, .day = 24, .hour = 8, .minute = 30};
    const std::vector<Case> cases = {
        {"daily", {.hour = 8, .minute = 30, .repeats = true}},
        {"weekly", {.weekday = 3, .hour = 8, .minute = 30, .repeats = true}},
        {"monthly", {.day = 24, .hour = 8, .minute = 30, .repeats = true}},
        {std::nullopt, once},
        {"never", once},
        {"Daily", once},
    };
    for (const auto& [rule, trigger] : cases) {
        scheduler.schedule(todo, "Call mum", tuesday(), rule);
        settle();
        EXPECT_EQ(center.requests(), (std::vector{NotificationRequest{
                                         identifier, "Dawnly reminder", "Call mum", {}, trigger, {}, tuesday() - 45}}))
            << rule.value_or("no rule");
    }
}

TEST_F(ReminderSchedulerTest, TheLastCallForATodoCounts) {
    scheduler.schedule(todo, "A", tuesday(), std::nullopt);
    scheduler.schedule(todo, "B", tuesday() + 3600, std::nullopt);
    settle();
    ASSERT_THAT(center.identifiers(), ElementsAre(identifier));
    EXPECT_EQ(center.requests()[0].body, "B");
    // A cancellation is not overtaken by what was asked for before it.
    scheduler.schedule(todo, "C", tuesday(), std::nullopt);
    scheduler.cancel(todo);
    settle();
    EXPECT_THAT(center.identifiers(), IsEmpty());
}

TEST_F(ReminderSchedulerTest, AsksForPermissionOnlyWhenItWasNeverDecided) {
    center.status = NotificationAuthorization::notDetermined;
    scheduler.schedule(todo, "A", tuesday(), std::nullopt);
    settle();
    ASSERT_EQ(center.questions.size(), 1U);
    EXPECT_THAT(center.identifiers(), IsEmpty());
    center.questions[0](false);
    settle();
    EXPECT_THAT(center.identifiers(), ElementsAre(identifier));
    scheduler.cancel(todo);
    for (const auto status : {NotificationAuthorization::denied, NotificationAuthorization::authorized}) {
        center.status = status;
        scheduler.schedule(todo, "A", tuesday(), std::nullopt);
        settle();
        EXPECT_EQ(center.questions.size(), 1U);
        EXPECT_THAT(center.identifiers(), ElementsAre(identifier));
    }
}

TEST_F(ReminderSchedulerTest, MeetingAlertsComeFifteenMinutesBefore) {
    scheduler.schedule(todo, "A", tuesday(), std::nullopt);
    sync({alert("late", 900), alert("soon", 901), alert("link", 1200, "https://zoom.us/j/1")});
    EXPECT_THAT(center.identifiers(), ElementsAre("meeting-link", "meeting-soon", identifier));
    // 22 November 2026 00:00 UTC is now.
    EXPECT_EQ(center.byIdentifier.at("meeting-link"),
              (NotificationRequest{
                  "meeting-link",
                  "Meeting link",
                  "Starts in 15 minutes — tap to join",
                  {{"joinURL", "https://zoom.us/j/1"}},
                  {.timeZone = "UTC", .year = 2026, .month = 11, .day = 22, .hour = 0, .minute = 5, .second = 0},
                  now + 1200}));
    EXPECT_EQ(center.byIdentifier.at("meeting-soon").body, "Starts in 15 minutes");
    EXPECT_THAT(center.byIdentifier.at("meeting-soon").userInfo, IsEmpty());

    const int removals = center.removals;
    sync({alert("link", 1200), alert("soon", 901)});
    EXPECT_EQ(center.removals, removals);  // nothing to remove, nothing asked
    sync({alert("link", 1200)});
    EXPECT_THAT(center.identifiers(), ElementsAre("meeting-link", identifier));
    // Moved to where it is not announced any more.
    sync({alert("link", 600)});
    EXPECT_THAT(center.identifiers(), ElementsAre(identifier));
    sync({});
    EXPECT_THAT(center.identifiers(), ElementsAre(identifier));
}

TEST_F(ReminderSchedulerTest, AnAlertThatIsDueAndWaitsStaysAsItIs) {
    sync({alert("a", 1200)});
    platform.time.advance(400);
    sync({alert("a", 1200)});
    EXPECT_THAT(center.identifiers(), ElementsAre("meeting-a"));
}

TEST_F(ReminderSchedulerTest, OfOverlappingListsTheLastCounts) {
    scheduler.syncMeetingAlerts({alert("old", 3600)});
    scheduler.syncMeetingAlerts({alert("new", 3600)});
    settle();
    EXPECT_THAT(center.identifiers(), ElementsAre("meeting-new"));
}

}  // namespace
}  // namespace sunpane
