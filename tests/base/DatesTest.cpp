#include "base/Dates.h"

#include <gtest/gtest.h>

#include <limits>

namespace sunpane {
namespace {

TEST(Dates, StartOfDayFollowsTheZoneAcrossDaylightSaving) {
    struct Case {
        const char* zone;
        CivilDay day;
        const char* start;  // UTC
    };
    const Case cases[] = {
        {"UTC", {2026, 11, 16}, "2026-11-16T00:00:00Z"},
        {"Europe/Amsterdam", {2026, 11, 16}, "2026-11-15T23:00:00Z"},
        {"Europe/Amsterdam", {2026, 3, 29}, "2026-03-28T23:00:00Z"},  // clocks go forward at 02:00
        {"Europe/Amsterdam", {2026, 3, 30}, "2026-03-29T22:00:00Z"},
        {"Asia/Kolkata", {2026, 1, 1}, "2025-12-31T18:30:00Z"},
        {"Africa/Cairo", {2026, 4, 24}, "2026-04-23T22:00:00Z"},    // midnight is skipped: 00:00 becomes 01:00
        {"America/Havana", {2025, 11, 2}, "2025-11-02T04:00:00Z"},  // 00:00 to 01:00 happens twice
        {"Pacific/Apia", {2011, 12, 31}, "2011-12-30T10:00:00Z"},   // the 30th does not exist there
    };
    for (const auto& c : cases) {
        const LocalCalendar calendar(c.zone, "en_US");
        const auto start = calendar.startOfDay(c.day);
        ASSERT_TRUE(start) << c.zone;
        EXPECT_EQ(iso8601Utc(*start), c.start) << c.zone;
        EXPECT_EQ(calendar.day(*start), c.day) << c.zone;
        EXPECT_EQ(calendar.startOfDay(*start + 3600), *start) << c.zone;
    }
}

// A calendar remembers what it was asked for last, which must not show.
TEST(Dates, StartOfDayDoesNotDependOnWhatWasAskedBefore) {
    for (const char* zone : {"Europe/Amsterdam", "Pacific/Apia", "Africa/Cairo", "Asia/Manila", "America/Sao_Paulo"}) {
        const LocalCalendar reused(zone, "en_US");
        for (int year : {1844, 1845, 1995, 2011, 2012, 2026, 2050, 2018}) {
            for (int dayOfYear = 0; dayOfYear < 372; ++dayOfYear) {
                const CivilDay day{year, dayOfYear / 31 + 1, dayOfYear % 31 + 1};
                ASSERT_EQ(reused.startOfDay(day), LocalCalendar(zone, "en_US").startOfDay(day))
                    << zone << ' ' << day.year << '-' << day.month << '-' << day.day;
            }
        }
    }
}

TEST(Dates, DaysThatDoNotExistAreAbsent) {
    const LocalCalendar calendar("Europe/Amsterdam", "en_US");
    for (const CivilDay day :
         {CivilDay{2026, 13, 1}, {2026, 0, 1}, {2026, 2, 29}, {2026, 11, 31}, {2026, 4, 0}, {0, 1, 1}}) {
        EXPECT_FALSE(calendar.startOfDay(day)) << day.year << '-' << day.month << '-' << day.day;
    }
    EXPECT_TRUE(calendar.startOfDay(CivilDay{2028, 2, 29}));
}

TEST(Dates, InstantsBeyondAllCalendarsCountAsTheFarthest) {
    const LocalCalendar calendar("Europe/Amsterdam", "en_US");
    for (const double far : {1e14, 1e300, std::numeric_limits<double>::max()}) {
        EXPECT_EQ(calendar.civilTime(Instant{far}), calendar.civilTime(Instant{1e13})) << far;
        EXPECT_EQ(calendar.day(Instant{-far}), calendar.day(Instant{-1e13})) << far;
        EXPECT_EQ(calendar.format(Instant{far}, "yyyy-MM-dd"), "275760-09-13") << far;
        EXPECT_EQ(calendar.day(Instant{far}), (CivilDay{275760, 9, 13})) << far;
    }
}

TEST(Dates, AddingDaysKeepsTheTimeOfDay) {
    const LocalCalendar calendar("Europe/Amsterdam", "en_US");
    const Instant noon = calendar.settingTime(*calendar.startOfDay(CivilDay{2026, 10, 20}), 12, 0);
    EXPECT_EQ(calendar.iso8601(noon), "2026-10-20T12:00:00+02:00");
    EXPECT_EQ(calendar.iso8601(calendar.addingDays(noon, 10)), "2026-10-30T12:00:00+01:00");
    EXPECT_EQ(calendar.iso8601(calendar.addingDays(noon, -30)), "2026-09-20T12:00:00+02:00");
    // 02:30 does not exist on the day the clocks go forward.
    const Instant night = calendar.settingTime(*calendar.startOfDay(CivilDay{2026, 3, 28}), 2, 30);
    EXPECT_EQ(calendar.iso8601(calendar.addingDays(night, 1)), "2026-03-29T03:30:00+02:00");
}

TEST(Dates, PatternsFollowLocaleAndDayStringsDoNot) {
    const Instant instant = Instant::fromUnix(1794787200);  // 2026-11-16 00:00 UTC
    EXPECT_EQ(instant.sinceReference, 816480000);
    EXPECT_EQ(LocalCalendar("UTC", "nl_NL").format(instant, "EEEE d MMM"), "maandag 16 nov");
    EXPECT_EQ(LocalCalendar("UTC", "nl_NL").format(instant, "EEEE d MMM", "en_US"), "Monday 16 Nov");
    EXPECT_EQ(LocalCalendar("UTC", "fa_IR").dayString(instant), "2026-11-16");
    EXPECT_EQ(LocalCalendar("America/New_York", "en_US").dayString(instant), "2026-11-15");
}

}  // namespace
}  // namespace sunpane
