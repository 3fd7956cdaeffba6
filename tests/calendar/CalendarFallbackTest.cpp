#include "calendar/CalendarFallback.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/Dates.h"
#include "calendar/MeetingWatcher.h"
#include "support/SimulatedCalendar.h"
#include "support/SimulatedPlatform.h"
#include "support/SimulatedUserDefaults.h"

namespace sunpane {
namespace {

using ::testing::ElementsAre;
using testing::timedEvent;

const std::string tip =
    "\n### 💡 Tip\n- This is your calendar view: no brief arrived today. Connect an AI in Settings and this becomes a "
    "full morning brief.";

struct CalendarFallbackTest : ::testing::Test {
    testing::SimulatedPlatform platform;  // Sunday 22 November 2026, 01:00 in Amsterdam
    testing::SimulatedUserDefaults defaults;
    testing::SimulatedCalendar store;
    CalendarFallback fallback{store, defaults, platform.clock};

    Instant today(int hour, int minute = 0) const {
        return LocalCalendar(platform.clock).settingTime(platform.clock.now(), hour, minute);
    }
    CalendarEvent meeting(const std::string& title, Instant start, Seconds length = 3600) const {
        CalendarEvent event = timedEvent(title, start, length);
        event.hasAttendees = true;
        return event;
    }
    std::string schedule() const { return fallback.todayBriefing().value().markdown; }
};

TEST_F(CalendarFallbackTest, WritesTheDayAsABriefing) {
    CalendarEvent lunch = meeting("Lunch", today(12, 30));
    lunch.location = "Room 4\nBuilding B";
    CalendarEvent call = meeting("Call", today(9));
    call.location = "Room 5";
    call.notes = "Join https://zoom.us/j/1 (link)";
    CalendarEvent holiday = timedEvent("Holiday", today(0), 86400);
    holiday.allDay = true;
    CalendarEvent untitled = meeting("", today(23), 7200);
    untitled.title.reset();
    CalendarEvent tricky = meeting("One\r\n### Two\n- [ ] Three", today(15));
    store.all = {lunch, call, holiday, untitled, tricky, meeting("Tomorrow", today(0) + 86400)};
    const auto briefing = fallback.todayBriefing();
    ASSERT_TRUE(briefing);
    EXPECT_EQ(briefing->id, "calendar-fallback");
    EXPECT_EQ(briefing->title, "Today — Sunday 22 Nov");
    EXPECT_EQ(briefing->date, today(0));
    EXPECT_EQ(briefing->markdown,
              "### 📅 Today's Schedule\n"
              "- **All day** Holiday\n"
              "- **09:00–10:00** Call · [Join](https://zoom.us/j/1)\n"
              "- **12:30–13:30** Lunch · Room 4\n"
              "- **15:00–16:00** One  ### Two - [ ] Three\n"
              "- **23:00–01:00** Untitled\n" +
                  tip);
    EXPECT_EQ(briefing->sections().size(), 2U);
    EXPECT_TRUE(briefing->actionItems().empty());
    platform.clock.localeName = "nl_NL";
    EXPECT_EQ(fallback.todayBriefing()->title, "Today — zondag 22 nov");
}

TEST_F(CalendarFallbackTest, AnEmptyDayIsClearAndADayOfTasksHasNoSchedule) {
    EXPECT_EQ(schedule(), "### 📅 Today's Schedule\n- **Clear day.** Nothing on the calendar.\n" + tip);
    store.all = {timedEvent("Call mum", today(9)), timedEvent("Water plants", today(10))};
    EXPECT_EQ(schedule(), "### 📅 Today's Schedule\n" + tip);
    EXPECT_EQ(fallback.todayBriefing()->sections().size(), 1U);
}

TEST_F(CalendarFallbackTest, TellsTasksFromEvents) {
    struct Case {
        const char* what;
        bool isTask;
        std::function<void(CalendarEvent&)> change;
    };
    const auto inCalendar = [](const char* title) {
        return [title](CalendarEvent& event) {
            event.hasAttendees = true;
            event.calendar = CalendarInfo{"id", title, false};
        };
    };
    const std::vector<Case> cases = {
        {"45 minutes", true, [](auto& event) { event.end = *event.start + 2700; }},
        {"a second more", false, [](auto& event) { event.end = *event.start + 2701; }},
        {"guests", false, [](auto& event) { event.hasAttendees = true; }},
        {"a place", false, [](auto& event) { event.location = "Room 4"; }},
        {"a place of spaces", true, [](auto& event) { event.location = " \t"; }},
        {"all day", false, [](auto& event) { event.allDay = true; }},
        {"a birthday", false,
         [](auto& event) {
             event.calendar = CalendarInfo{"id", "Birthdays", true};
         }},
        {"no end", false, [](auto& event) { event.end.reset(); }},
        {"OOO", false, [](auto& event) { event.title = "OOO this morning"; }},
        {"Out of office", false, [](auto& event) { event.title = "Jo Out Of Office"; }},
        {"no title", true, [](auto& event) { event.title.reset(); }},
        {"calendar Tasks", true, inCalendar("My TASKS")},
        {"calendar Mijn taken", true, inCalendar("Mijn taken")},
        {"calendar To-Do", true, inCalendar("To-Do")},
        {"calendar Herinneringen", true, inCalendar("Herinneringen")},
        {"calendar Work", false, inCalendar("Work")},
        {"picked calendar", true,
         [](auto& event) {
             event.allDay = true;
             event.calendar = CalendarInfo{"picked", "Work", false};
         }},
    };
    defaults.set("todoCalendarIDs", std::vector<std::string>{"other", "picked"});
    for (const auto& [what, isTask, change] : cases) {
        CalendarEvent event = timedEvent("Call mum", today(9));
        change(event);
        EXPECT_EQ(fallback.routesToTodos(event), isTask) << what;
        fallback.isDismissedTodo = [&](const std::string& title) { return title == event.title.value_or(""); };
        EXPECT_FALSE(fallback.routesToTodos(event)) << what;
        fallback.isDismissedTodo = nullptr;
    }
    const CalendarEvent task = timedEvent("Call mum", today(9));
    defaults.set("calendarTodosEnabled", std::string("no"));  // not a value of the right type
    EXPECT_TRUE(fallback.routesToTodos(task));
    defaults.set("calendarTodosEnabled", false);
    EXPECT_FALSE(fallback.routesToTodos(task));
}

TEST_F(CalendarFallbackTest, APassOverManyEventsReadsTheSettingsOnce) {
    defaults.set("todoCalendarIDs", std::vector<std::string>{"picked"});
    for (int i = 0; i < 1000; ++i)
        store.all.push_back(i % 2 == 0 ? timedEvent("Task", today(9)) : meeting("Call", today(9)));
    const auto readsOf = [&](const auto& pass) {
        defaults.reads = 0;
        pass();
        return defaults.reads;
    };
    constexpr int settings = 2;
    EXPECT_EQ(readsOf([&] { schedule(); }), settings);
    EXPECT_EQ(readsOf([&] { EXPECT_EQ(fallback.todayCalendarTodoTitles().size(), 500U); }), settings);
    EXPECT_EQ(readsOf([&] { EXPECT_EQ(upcomingMeetings(store, fallback, today(8)).size(), 500U); }), settings);
}

TEST_F(CalendarFallbackTest, ADismissedTaskIsAnEventAgain) {
    CalendarEvent untitled = timedEvent("x", today(11));
    untitled.title.reset();
    store.all = {timedEvent(" Water plants ", today(10)), meeting("Call", today(9)), untitled,
                 timedEvent("  ", today(8))};
    EXPECT_THAT(fallback.todayEventTitles(), ElementsAre("Water plants", "Call", ""));
    EXPECT_THAT(fallback.todayCalendarTodoTitles(), ElementsAre("Water plants", ""));
    fallback.isDismissedTodo = [](const std::string& title) { return title == " Water plants "; };
    EXPECT_THAT(fallback.todayCalendarTodoTitles(), ElementsAre(""));
    EXPECT_NE(schedule().find("- **10:00–10:30**  Water plants \n"), std::string::npos);
}

TEST_F(CalendarFallbackTest, TodayIsOneDayOfTheUsersClock) {
    // The clocks go back on this day, which has 25 hours.
    platform.time.jumpWallClock(LocalCalendar(platform.clock).startOfDay(CivilDay{2026, 10, 25}).value() + 7200);
    store.all = {meeting("Ends at midnight", today(0) - 3600), meeting("Into today", today(0) - 3600, 3601),
                 meeting("Last minute", today(23, 59)), meeting("Next day", today(0) + 25 * 3600.0)};
    EXPECT_THAT(fallback.todayEventTitles(), ElementsAre("Into today", "Last minute"));
}

TEST_F(CalendarFallbackTest, AsksOnceForEveryoneWhoWaits) {
    store.status = CalendarAccess::notDetermined;
    std::vector<bool> answers;
    const auto ask = [&] { fallback.ensureAccess([&](bool granted) { answers.push_back(granted); }); };
    ask();
    ask();
    EXPECT_EQ(store.questions, 1);
    EXPECT_THAT(answers, ElementsAre());
    store.answer(true);
    EXPECT_THAT(answers, ElementsAre(true, true));
    ask();
    EXPECT_THAT(answers, ElementsAre(true, true, true));
    EXPECT_EQ(store.questions, 1);
    EXPECT_TRUE(fallback.todayBriefing());
    for (const auto refused : {CalendarAccess::restricted, CalendarAccess::denied, CalendarAccess::writeOnly}) {
        store.status = refused;
        answers.clear();
        ask();
        EXPECT_THAT(answers, ElementsAre(false));
        EXPECT_FALSE(fallback.todayBriefing());
    }
    // The question may be put again in the settings, by then by another.
    store.status = CalendarAccess::notDetermined;
    answers.clear();
    ask();
    store.answer(false);
    EXPECT_THAT(answers, ElementsAre(false));
    EXPECT_EQ(store.questions, 2);

    // Nobody is told anything before the user was, however many wait.
    store.status = CalendarAccess::notDetermined;
    answers.clear();
    for (int i = 0; i < 100; ++i)
        ask();
    EXPECT_THAT(answers, ElementsAre());
    store.answer(true);
    EXPECT_EQ(answers, std::vector<bool>(100, true));
}

TEST_F(CalendarFallbackTest, SaysNothingBeforeTheCalendarsWereRead) {
    store.all = {timedEvent("Call", today(9))};
    store.isLoaded = false;
    EXPECT_TRUE(fallback.isLoading());
    EXPECT_FALSE(fallback.todayBriefing());
    EXPECT_TRUE(fallback.todayEventTitles().empty());
    int changes = 0;
    fallback.onChange = [&] { ++changes; };
    store.isLoaded = true;
    store.change();
    EXPECT_EQ(changes, 1);
    EXPECT_FALSE(fallback.isLoading());
    EXPECT_TRUE(fallback.todayBriefing());
}

TEST_F(CalendarFallbackTest, AddsEventsOfAnHourUnlessTheLengthIsKnown) {
    std::vector<std::optional<std::string>> identifiers;
    const auto add = [&](Seconds duration) {
        fallback.addEvent("Dentist", today(9), duration, [&](auto identifier) { identifiers.push_back(identifier); });
    };
    for (const Seconds duration : {0.0, 60.0, 61.0, 5400.0})
        add(duration);
    std::vector<Seconds> lengths;
    for (const auto& event : store.added)
        lengths.push_back(event.end - event.start);
    EXPECT_THAT(lengths, ElementsAre(3600, 3600, 61, 5400));
    EXPECT_EQ(store.added[0].title, "Dentist");
    store.identifierOfNew = "";
    add(0);
    store.status = CalendarAccess::denied;
    fallback.ensureAccess([](bool) {});
    add(0);
    EXPECT_EQ(store.added.size(), 5U);
    EXPECT_THAT(identifiers,
                ElementsAre("new-event", "new-event", "new-event", "new-event", std::nullopt, std::nullopt));
}

}  // namespace
}  // namespace sunpane
