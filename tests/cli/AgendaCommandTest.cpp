#include "cli/AgendaCommand.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/stores/TodoFile.h"
#include "support/CommandFixture.h"
#include "support/SimulatedCalendar.h"

namespace sunpane::cli {
namespace {

using ::testing::HasSubstr;

struct AgendaCommandTest : testing::CommandFixture {
    std::vector<CalendarEvent> all;
    bool canBeRead = true;
    std::function<CalendarAccess()> calendarAccess;

    AgendaCommandTest() {
        defaults.set("briefingsFolderPath", std::string("/briefings"));
        CalendarEvent call = testing::timedEvent("Call\x1B \u009B", at("2026-11-22T09:00"), 3600);
        call.calendar = CalendarInfo{"work", "Work", false};
        call.notes = "https://zoom.us/j/1";
        CalendarEvent holiday = testing::timedEvent("", at("2026-11-22"), 86400);
        holiday.allDay = true;
        holiday.title.reset();
        all = {call, holiday, testing::timedEvent("Water plants", at("2026-11-22T10:00")),
               testing::timedEvent("Dentist", at("2026-11-23T10:00"), 3600)};
    }
    Instant at(const std::string& text) const { return LocalCalendar(platform.clock).parseIso8601(text).value(); }
    int run(std::vector<std::string> arguments) {
        Environment surroundings = environment();
        surroundings.openCalendars = [this](const Clock&) {
            auto store = std::make_unique<testing::SimulatedCalendar>();
            store->all = all;
            store->isLoaded = canBeRead;
            return store;
        };
        surroundings.calendarAccess = calendarAccess;
        return runIn(std::move(surroundings), arguments);
    }
};

TEST_F(AgendaCommandTest, TellsProgramsEverything) {
    EXPECT_EQ(run({"agenda", "--json"}), success);
    EXPECT_EQ(
        out.str(),
        R"({"access":"full","events":[{"title":"Call\u001b \u009b","start":"2026-11-22T09:00:00+01:00",)"
        R"("end":"2026-11-22T10:00:00+01:00","allDay":false,"calendar":"Work","joinURL":"https://zoom.us/j/1",)"
        R"("routedToTodos":false},{"title":null,"start":"2026-11-22T00:00:00+01:00",)"
        R"("end":"2026-11-23T00:00:00+01:00","allDay":true,"calendar":null,"joinURL":null,"routedToTodos":false},)"
        R"({"title":"Water plants","start":"2026-11-22T10:00:00+01:00","end":"2026-11-22T10:30:00+01:00",)"
        R"("allDay":false,"calendar":null,"joinURL":null,"routedToTodos":true}],)"
        R"("next":{"title":"Call\u001b \u009b","start":"2026-11-22T09:00:00+01:00",)"
        R"("end":"2026-11-22T10:00:00+01:00","joinURL":"https://zoom.us/j/1"},)"
        R"("todayEventTitles":["Call\u001b \u009b","Water plants"],"todayCalendarTodoTitles":["Water plants"],)"
        R"("fallback":"### 📅 Today's Schedule\n- **All day** Untitled\n- **09:00–10:00** Call\u001b \u009b · )"
        R"([Join](https://zoom.us/j/1)\n\n### 💡 Tip\n- This is your calendar view: no brief arrived today. )"
        R"(Connect an AI in Settings and this becomes a full morning brief."})"
        "\n");
    all.clear();
    EXPECT_EQ(run({"agenda", "--json", "--at", "2026-11-23T12:00:00Z"}), success);
    EXPECT_THAT(out.str(), HasSubstr(R"("events":[],"next":null,"todayEventTitles":[],"todayCalendarTodoTitles":[],)"));
}

TEST_F(AgendaCommandTest, TellsPeopleOnALineEach) {
    EXPECT_EQ(run({"agenda"}), success);
    EXPECT_EQ(out.str().find('\x1B'), std::string::npos);
    EXPECT_THAT(out.str(), HasSubstr("  10:00–10:30  Water plants (todo)\n"));
    EXPECT_THAT(out.str(), HasSubstr("Next: Sun 22 Nov, 09:00  Call"));
    EXPECT_EQ(run({"agenda", "--at", "2026-11-22T12:00"}), success);
    EXPECT_THAT(out.str(), HasSubstr("Next: Mon 23 Nov, 10:00  Dentist\n"));
}

TEST_F(AgendaCommandTest, TellsWhatTheUserAnsweredAndReadsAllTheSame) {
    calendarAccess = [] { return CalendarAccess::denied; };
    EXPECT_EQ(run({"agenda", "--json"}), success);
    EXPECT_THAT(out.str(), HasSubstr(R"({"access":"denied","events":[{"title":"Call)"));
}

TEST_F(AgendaCommandTest, ALinkWritesNothingButTextToTheTerminal) {
    CalendarEvent call = testing::timedEvent("Call", at("2026-11-22T09:00"), 3600);
    for (const char* hostile : {"https://zoom.us/\u009B31m", "https://zoom.us/\u202Egpj.exe"}) {
        call.notes = hostile;
        all = {call};
        EXPECT_EQ(run({"agenda"}), success);
        EXPECT_EQ(out.str().find("\u009B"), std::string::npos);
        EXPECT_EQ(out.str().find("\u202E"), std::string::npos);
        EXPECT_THAT(out.str(), HasSubstr("Call"));
    }
}

TEST_F(AgendaCommandTest, KnowsWhatTheUserDismissed) {
    TodoState state;
    state.dismissed = {"water plants"};
    disk.makeFolder("/briefings");
    disk.writeExternally("/briefings/todos.json", encodeTodos(state));
    EXPECT_EQ(run({"agenda", "--json"}), success);
    EXPECT_THAT(out.str(), HasSubstr(R"("todayCalendarTodoTitles":[])"));
}

TEST_F(AgendaCommandTest, FailsWithoutCalendarsOrAMoment) {
    for (const auto& arguments : std::vector<std::vector<std::string>>{
             {"agenda", "--at"}, {"agenda", "--at", "noon"}, {"agenda", "--at", "2026-02-30"}, {"agenda", "today"}}) {
        EXPECT_EQ(run(arguments), failure);
        EXPECT_THAT(err.str(), HasSubstr("usage: dawnlyctl agenda"));
    }
    canBeRead = false;
    EXPECT_EQ(run({"agenda"}), failure);
    EXPECT_EQ(out.str(), "");
}

}  // namespace
}  // namespace sunpane::cli
