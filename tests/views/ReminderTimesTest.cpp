#include "views/ReminderTimes.h"

#include <gtest/gtest.h>

namespace sunpane::reminder_times {
namespace {

const LocalCalendar amsterdam("Europe/Amsterdam", "en_GB");

Instant at(int year, int month, int day, int hour, int minute = 0) {
    return amsterdam.instant({{year, month, day}, hour, minute, 0});
}

TEST(ReminderTimes, TheOptionsFollowTheClock) {
    const Instant now = at(2026, 11, 22, 22, 40);
    EXPECT_EQ(timeOf(inOneHour, now, amsterdam), now + 3600);
    EXPECT_EQ(timeOf(inThreeHours, now, amsterdam), now + 10800);
    EXPECT_EQ(timeOf(tomorrowAtNine, now, amsterdam), at(2026, 11, 23, 9));
    EXPECT_EQ(timeOf(custom, now, amsterdam), std::nullopt);
    // The night in which an hour is skipped is shorter, the one in which it comes twice longer.
    EXPECT_EQ(*timeOf(tomorrowAtNine, at(2027, 3, 27, 9), amsterdam) - at(2027, 3, 27, 9), 23 * 3600);
    EXPECT_EQ(*timeOf(tomorrowAtNine, at(2026, 10, 24, 9), amsterdam) - at(2026, 10, 24, 9), 25 * 3600);
    // Hours pass whatever the clock does.
    EXPECT_EQ(*timeOf(inThreeHours, at(2027, 3, 28, 1), amsterdam), at(2027, 3, 28, 5));
    // In Apia 30 December 2011 did not take place, in São Paulo midnight of 4 November 2018 did not.
    const LocalCalendar apia("Pacific/Apia", "en");
    EXPECT_EQ(timeOf(tomorrowAtNine, apia.instant({{2011, 12, 29}, 12, 0, 0}), apia),
              apia.instant({{2011, 12, 31}, 9, 0, 0}));
    const LocalCalendar saoPaulo("America/Sao_Paulo", "pt_BR");
    EXPECT_EQ(timeOf(tomorrowAtNine, saoPaulo.instant({{2018, 11, 3}, 23, 0, 0}), saoPaulo),
              saoPaulo.instant({{2018, 11, 4}, 9, 0, 0}));
}

TEST(ReminderTimes, ASuggestionIsTheNextFullHourThatLeavesTime) {
    EXPECT_EQ(suggestion(at(2026, 11, 22, 14, 30), amsterdam), at(2026, 11, 22, 15));
    EXPECT_EQ(suggestion(at(2026, 11, 22, 14, 31), amsterdam), at(2026, 11, 22, 16));
    EXPECT_EQ(suggestion(at(2026, 11, 22, 23, 45), amsterdam), at(2026, 11, 23, 1));
    // From within the hour that comes twice.
    const Instant second = at(2026, 10, 25, 3) - 1800;
    EXPECT_EQ(suggestion(second, amsterdam), at(2026, 10, 25, 3));
    EXPECT_GE(suggestion(second - 60, amsterdam) - (second - 60), 1800);
}

TEST(ReminderTimes, StepsCarryOverAndNeverGetStuck) {
    struct Case {
        Instant from;
        Part part;
        int steps;
        Instant to;
    };
    const Case cases[] = {
        {at(2026, 12, 31, 9), Part::day, 1, at(2027, 1, 1, 9)},
        {at(2027, 1, 31, 9), Part::month, 1, at(2027, 2, 28, 9)},
        {at(2027, 1, 31, 9), Part::month, -1, at(2026, 12, 31, 9)},
        {at(2028, 2, 29, 9), Part::year, 1, at(2029, 2, 28, 9)},
        {at(2026, 11, 22, 23), Part::hour, 1, at(2026, 11, 23, 0)},
        {at(2026, 11, 22, 9, 55), Part::minute, 1, at(2026, 11, 22, 10)},
        {at(2026, 11, 22, 9, 2), Part::minute, 1, at(2026, 11, 22, 9, 5)},
        {at(2026, 11, 22, 9, 2), Part::minute, -1, at(2026, 11, 22, 9)},
        {at(2027, 3, 28, 1), Part::hour, 1, at(2027, 3, 28, 3)},
        {at(2027, 3, 28, 3), Part::hour, -1, at(2027, 3, 28, 1)},
        {at(2199, 12, 31, 9), Part::day, 1, at(2199, 12, 31, 9)},
        {at(2000, 1, 1, 9), Part::year, -1, at(2000, 1, 1, 9)},
    };
    for (const auto& c : cases)
        EXPECT_EQ(amsterdam.iso8601(stepped(c.from, c.part, c.steps, amsterdam)), amsterdam.iso8601(c.to));
}

TEST(ReminderTimes, TypedPartsReplaceTheirs) {
    const Instant time = at(2027, 2, 10, 9, 5);
    EXPECT_EQ(withPart(time, Part::day, 31, amsterdam), at(2027, 2, 28, 9, 5));
    EXPECT_EQ(withPart(at(2027, 1, 31, 9), Part::month, 4, amsterdam), at(2027, 4, 30, 9));
    EXPECT_EQ(withPart(time, Part::hour, 0, amsterdam), at(2027, 2, 10, 0, 5));
    EXPECT_EQ(withPart(time, Part::minute, 59, amsterdam), at(2027, 2, 10, 9, 59));
    EXPECT_EQ(withPart(time, Part::year, 2028, amsterdam), at(2028, 2, 10, 9, 5));
    for (const Part part : parts) {
        const auto [least, most] = rangeOf(part);
        for (const int value : {least, part == Part::day ? 28 : most}) {  // February
            const auto changed = withPart(time, part, value, amsterdam);
            ASSERT_TRUE(changed);
            EXPECT_EQ(partValue(*changed, part, amsterdam), value);
        }
    }
    for (const auto& [part, value] : {std::pair{Part::day, 0},
                                      {Part::day, 32},
                                      {Part::month, 13},
                                      {Part::hour, 24},
                                      {Part::minute, 60},
                                      {Part::year, 1999},
                                      {Part::year, 2200}})
        EXPECT_EQ(withPart(time, part, value, amsterdam), std::nullopt) << value;
}

}  // namespace
}  // namespace sunpane::reminder_times
