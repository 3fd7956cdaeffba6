#include "reminders/TriggerMatch.h"

#include <gtest/gtest.h>

#include <sstream>

namespace sunpane {
namespace {

std::string text(const std::optional<CivilTime>& time) {
    if (!time) return "never";
    std::ostringstream out;
    out << time->day.year << '-' << time->day.month << '-' << time->day.day << ' ' << time->hour << ':' << time->minute
        << ':' << time->second;
    return out.str();
}

TEST(TriggerMatch, FindsTheNextMatchStrictlyAfterAMoment) {
    const CalendarTrigger daily{.hour = 8, .minute = 30, .repeats = true};
    const CalendarTrigger tuesdays{.weekday = 3, .hour = 8, .minute = 30, .repeats = true};
    const auto monthly = [](int day) { return CalendarTrigger{.day = day, .hour = 9, .minute = 0, .repeats = true}; };
    const auto only = [](std::optional<int> CalendarTrigger::*component, int value) {
        CalendarTrigger trigger;
        trigger.*component = value;
        return trigger;
    };
    const CalendarTrigger leapDays{.month = 2, .day = 29};
    const CalendarTrigger noDay{.year = 2026, .month = 2, .day = 30, .hour = 1};
    const CalendarTrigger noWeekday{.weekday = 0, .hour = 1};
    const CalendarTrigger once{.year = 2026, .month = 11, .day = 22, .hour = 9, .minute = 5};
    struct Case {
        CalendarTrigger trigger;
        CivilTime after;
        std::string next;
    };
    const std::vector<Case> cases = {
        {daily, {{2026, 11, 22}, 8, 29, 59}, "2026-11-22 8:30:0"},
        {daily, {{2026, 11, 22}, 8, 30, 0}, "2026-11-23 8:30:0"},
        {daily, {{2026, 12, 31}, 23, 0, 0}, "2027-1-1 8:30:0"},
        {tuesdays, {{2026, 11, 22}, 0, 0, 0}, "2026-11-24 8:30:0"},
        {tuesdays, {{2026, 11, 24}, 8, 30, 0}, "2026-12-1 8:30:0"},
        {monthly(31), {{2026, 11, 22}, 0, 0, 0}, "2026-12-31 9:0:0"},
        {monthly(31), {{2027, 1, 31}, 9, 0, 0}, "2027-3-31 9:0:0"},
        {monthly(30), {{2027, 1, 30}, 9, 0, 0}, "2027-3-30 9:0:0"},
        {monthly(29), {{2027, 1, 29}, 9, 0, 0}, "2027-3-29 9:0:0"},
        {monthly(29), {{2028, 1, 29}, 9, 0, 0}, "2028-2-29 9:0:0"},
        {once, {{2026, 11, 22}, 9, 4, 59}, "2026-11-22 9:5:0"},
        {once, {{2026, 11, 22}, 9, 5, 0}, "never"},
        {once, {{2020, 1, 1}, 0, 0, 0}, "2026-11-22 9:5:0"},
        {leapDays, {{2096, 3, 1}, 0, 0, 0}, "2104-2-29 0:0:0"},
        {noDay, {{2026, 1, 1}, 0, 0, 0}, "never"},
        // What is not set and larger than what is set may be anything; what is smaller is least.
        {only(&CalendarTrigger::minute, 15), {{2026, 11, 22}, 23, 15, 0}, "2026-11-23 0:15:0"},
        {only(&CalendarTrigger::second, 7), {{2026, 11, 22}, 23, 59, 7}, "2026-11-23 0:0:7"},
        {only(&CalendarTrigger::hour, 5), {{2026, 11, 22}, 5, 0, 0}, "2026-11-23 5:0:0"},
        {only(&CalendarTrigger::weekday, 1), {{2026, 11, 22}, 0, 0, 0}, "2026-11-29 0:0:0"},
        {only(&CalendarTrigger::year, 2027), {{2026, 11, 22}, 0, 0, 0}, "2027-1-1 0:0:0"},
        {only(&CalendarTrigger::month, 3), {{2026, 11, 22}, 0, 0, 0}, "2027-3-1 0:0:0"},
        {CalendarTrigger(), {{2026, 11, 22}, 0, 0, 0}, "never"},
        {only(&CalendarTrigger::hour, 24), {{2026, 11, 22}, 0, 0, 0}, "never"},
        {noWeekday, {{2026, 11, 22}, 0, 0, 0}, "never"},
    };
    for (const auto& [trigger, after, next] : cases)
        EXPECT_EQ(text(nextMatch(trigger, after)), next) << "after " << text(after);
}

}  // namespace
}  // namespace sunpane
