#include "calendar/MeetingWatcher.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/SimulatedCalendar.h"
#include "support/SimulatedNotifications.h"
#include "support/SimulatedPlatform.h"
#include "support/SimulatedUserDefaults.h"

namespace sunpane {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using testing::timedEvent;

struct MeetingWatcherTest : ::testing::Test {
    testing::SimulatedPlatform platform;
    testing::SimulatedUserDefaults defaults;
    testing::SimulatedCalendar store;
    testing::SimulatedNotificationCenter center{platform.runLoop};
    ReminderScheduler reminders{center, platform.clock};
    CalendarFallback fallback{store, defaults, platform.clock};
    std::optional<MeetingWatcher> watcher;
    const Instant start = platform.clock.now();

    void SetUp() override {
        defaults.set("calendarTodosEnabled", false);
        watcher.emplace(MeetingWatcher::Collaborators{store, fallback, reminders, platform.clock, platform.runLoop});
        platform.time.runPending();
    }
    std::string nextTitle() const { return watcher->next() ? watcher->next()->title : ""; }
    void refresh(bool mayPrompt = false) {
        watcher->refresh(mayPrompt);
        platform.time.runPending();
    }
};

TEST_F(MeetingWatcherTest, PrefersLinksThenGuestsThenTheEarliest) {
    CalendarEvent soon = timedEvent("Soon", start + 3600);
    CalendarEvent invited = timedEvent("Invited", start + 7200);
    invited.hasAttendees = true;
    CalendarEvent linked = timedEvent("Linked", start + 3 * 86400.0);
    linked.notes = "https://zoom.us/j/1";
    CalendarEvent allDay = timedEvent("All day", start, 86400);
    allDay.allDay = true;
    allDay.url = "https://zoom.us/j/2";
    store.all = {linked, allDay, invited, soon};
    refresh();
    EXPECT_EQ(watcher->next(), (Meeting{"Linked", *linked.start, *linked.end, "https://zoom.us/j/1"}));
    store.all = {allDay, invited, soon};
    refresh();
    EXPECT_EQ(watcher->next(), (Meeting{"Invited", *invited.start, *invited.end, std::nullopt}));
    soon.title.reset();
    CalendarEvent sameTime = timedEvent("Same time, listed later", start + 3600);
    store.all = {allDay, soon, sameTime};
    refresh();
    EXPECT_EQ(nextTitle(), "Untitled");
    store.all = {allDay};
    refresh();
    EXPECT_EQ(watcher->next(), std::nullopt);
}

TEST_F(MeetingWatcherTest, AMeetingCountsUntilItEndsAndFourteenDaysAhead) {
    store.all = {timedEvent("Running", start - 3600, 3601), timedEvent("Far", start + 14 * 86400.0 - 1)};
    refresh();
    EXPECT_EQ(nextTitle(), "Running");
    platform.time.advance(1);
    EXPECT_EQ(nextTitle(), "Running");  // until somebody looks again
    refresh();
    EXPECT_EQ(nextTitle(), "Far");
    store.all = {timedEvent("Too far", platform.clock.now() + 14 * 86400.0)};
    refresh();
    EXPECT_EQ(nextTitle(), "");
}

TEST_F(MeetingWatcherTest, TasksAreNoMeetings) {
    defaults.set("calendarTodosEnabled", true);
    store.all = {timedEvent("Call mum", start + 3600), timedEvent("Longer", start + 7200, 3600)};
    refresh();
    EXPECT_EQ(nextTitle(), "Longer");
    EXPECT_THAT(center.identifiers(), ElementsAre("meeting-event-Longer"));
}

TEST_F(MeetingWatcherTest, KeepsAlertsForTheNextDayAndAHalf) {
    store.all = {timedEvent("30 hours", start + 30 * 3600.0), timedEvent("36 hours", start + 36 * 3600.0),
                 timedEvent("10 minutes", start + 600), timedEvent("20 minutes", start + 1200)};
    refresh();
    EXPECT_THAT(center.identifiers(), ElementsAre("meeting-event-20 minutes", "meeting-event-30 hours"));
    platform.time.advance(60);
    EXPECT_THAT(center.identifiers(),
                ElementsAre("meeting-event-20 minutes", "meeting-event-30 hours", "meeting-event-36 hours"));
    store.all.clear();
    store.change();
    platform.time.runPending();
    EXPECT_THAT(center.identifiers(), IsEmpty());
}

TEST_F(MeetingWatcherTest, AlertsAreNamedAfterTheEvent) {
    CalendarEvent event = timedEvent("Stand-up", Instant::fromUnix(1731760200));
    EXPECT_EQ(alertFor(event), (MeetingAlert{"event-Stand-up", "Stand-up", *event.start, std::nullopt}));
    event.identifier.clear();
    EXPECT_EQ(alertFor(event).id, "Stand-up-1731760200.0");
    event.start = Instant::fromUnix(1731760200.5);
    event.title.reset();
    EXPECT_EQ(alertFor(event).id, "?-1731760200.5");
    EXPECT_EQ(alertFor(event).title, "Meeting");
}

TEST_F(MeetingWatcherTest, LooksAgainEveryMinuteAndOnceForABurstOfChanges) {
    store.all = {timedEvent("A", start + 3600)};
    platform.time.advance(59.9);
    EXPECT_EQ(nextTitle(), "");
    platform.time.advance(0.1);
    EXPECT_EQ(nextTitle(), "A");
    int announcements = 0;
    const auto subscription = watcher->onWillChange([&] {
        ++announcements;
        EXPECT_EQ(nextTitle(), "A");
    });
    const int additions = center.additions;
    for (int i = 0; i < 10; ++i)
        store.change();
    platform.time.runPending();
    EXPECT_EQ(center.additions, additions + 1);
    EXPECT_EQ(announcements, 0);  // nothing is different
    store.all = {timedEvent("B", start + 1800)};
    store.change();
    platform.time.runPending();
    EXPECT_EQ(nextTitle(), "B");
    EXPECT_EQ(announcements, 1);
}

TEST_F(MeetingWatcherTest, OnlyOpeningThePanelAsksForAccess) {
    store.all = {timedEvent("A", start + 3600)};
    refresh();
    for (const auto refused : {CalendarAccess::restricted, CalendarAccess::denied, CalendarAccess::writeOnly}) {
        store.status = refused;
        platform.time.advance(60);
        EXPECT_EQ(nextTitle(), "A");  // the timer alone changes nothing
        watcher->setActive(false);
        platform.time.runPending();
        EXPECT_EQ(nextTitle(), "A");
        watcher->setActive(true);
        platform.time.runPending();
        EXPECT_EQ(nextTitle(), "");
        EXPECT_THAT(center.identifiers(), ElementsAre("meeting-event-A"));  // alerts are left as they are
        store.status = CalendarAccess::full;
        refresh();
        EXPECT_EQ(nextTitle(), "A");
    }
    store.status = CalendarAccess::notDetermined;
    platform.time.advance(60);
    EXPECT_EQ(store.questions, 0);
    watcher->setActive(true);
    watcher->setActive(true);
    platform.time.runPending();
    watcher->setActive(true);
    platform.time.runPending();
    EXPECT_EQ(store.questions, 1);
    store.all = {timedEvent("B", start + 3600)};
    store.answer(true);
    EXPECT_EQ(nextTitle(), "B");
}

TEST_F(MeetingWatcherTest, ChangesNothingWhileTheCalendarsAreBeingRead) {
    store.all = {timedEvent("A", start + 3600)};
    refresh();
    store.isLoaded = false;
    platform.time.advance(120);
    refresh(true);
    EXPECT_EQ(nextTitle(), "A");
    EXPECT_THAT(center.identifiers(), ElementsAre("meeting-event-A"));
    store.isLoaded = true;
    store.all.clear();
    store.change();
    platform.time.runPending();
    EXPECT_EQ(nextTitle(), "");
    EXPECT_THAT(center.identifiers(), IsEmpty());
}

TEST_F(MeetingWatcherTest, TakesNoAlertOfACalendarBackThatIsMissing) {
    store.all = {timedEvent("Slow server", start + 3600), timedEvent("Slow server moved close", start + 3600),
                 timedEvent("Cancelled", start + 3600)};
    refresh();
    store.missing = {"event-Slow", "event-Away"};
    store.all = {timedEvent("New", start + 7200), timedEvent("Slow server moved close", start + 600)};
    refresh();
    EXPECT_THAT(center.identifiers(), ElementsAre("meeting-event-New", "meeting-event-Slow server"));
    store.missing.clear();
    refresh();
    EXPECT_THAT(center.identifiers(), ElementsAre("meeting-event-New"));
}

TEST_F(MeetingWatcherTest, LeavesNothingRunningWhenItGoes) {
    store.status = CalendarAccess::notDetermined;
    watcher->refresh(true);
    store.change();
    watcher.reset();
    store.answer(true);
    store.change();
    platform.time.advance(120);
    EXPECT_EQ(platform.time.pendingCount(), 0U);
}

}  // namespace
}  // namespace sunpane
