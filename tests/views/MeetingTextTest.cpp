#include "views/MeetingText.h"

#include <gtest/gtest.h>

namespace sunpane {
namespace {

const LocalCalendar amsterdam("Europe/Amsterdam", "en_US");

// On Sunday 22 November 2026, local time.
Instant at(int hour, int minute, int daysLater = 0) {
    const Instant day = *amsterdam.startOfDay(CivilDay{2026, 11, 22});
    return amsterdam.addingDays(amsterdam.settingTime(day, hour, minute), daysLater);
}

TEST(MeetingText, TheTimeLineSaysWhenAndHowFarOff) {
    struct Case {
        Instant start;
        Instant end;
        const char* line;
    };
    const Instant now = at(13, 48);
    const Case cases[] = {
        {at(14, 0), at(14, 45), "14:00–14:45 · in 12 min"},
        {at(13, 48) + 1, at(14, 0), "13:48–14:00 · in 1 min"},
        {at(14, 48), at(15, 0), "14:48–15:00 · in 60 min"},
        {at(16, 0), at(17, 0), "16:00–17:00 · in 2 h 12 min"},
        {at(16, 48), at(17, 0), "16:48–17:00 · in 3 h"},
        {at(13, 48), at(14, 0), "13:48–14:00 · now"},
        {at(9, 0, 1), at(9, 30, 1), "Tomorrow 09:00–09:30 · in 19 h 12 min"},
        {at(14, 0, 1), at(14, 30, 1), "Tomorrow 14:00–14:30"},
        {at(14, 0, 2), at(14, 30, 2), "Tue 24 Nov 14:00–14:30"},
        {at(23, 0, -1), at(15, 0), "Sat 21 Nov 23:00–15:00 · now"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(meeting_text::timeLine({"Review", c.start, c.end, {}}, now, amsterdam), c.line);
}

TEST(MeetingText, AMeetingIsImminentFromAQuarterBeforeToTwoHoursAfterItsStart) {
    const Instant start = at(14, 0);
    EXPECT_FALSE(meeting_text::isImminent(start, start - 900));
    EXPECT_TRUE(meeting_text::isImminent(start, start - 899));
    EXPECT_TRUE(meeting_text::isImminent(start, start + 7199));
    EXPECT_FALSE(meeting_text::isImminent(start, start + 7200));
}

TEST(MeetingText, CardsShowTheJoinLinkAsAButtonOnly) {
    struct Case {
        const char* markdown;
        const char* shown;
    };
    const Case cases[] = {
        {"**14:00** Review · [Join](https://zoom.us/j/1)", "**14:00** Review"},
        {"A·[Join](x) B ·[Join](y)· [Join](z)", "A B"},
        {"A  · [Join](x)", "A "},
        {"A · [Join]() and · [join](x) and · [Join](open", "A · [Join]() and · [join](x) and · [Join](open"},
        {"A · Room 4", "A · Room 4"},
        {"[Join](https://zoom.us/j/1)", "[Join](https://zoom.us/j/1)"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(meeting_text::displayMarkdown(c.markdown), c.shown);
}

TEST(MeetingText, ACardsMeetingIsJudgedByTheFirstTimeInIt) {
    const std::string link = " [Join](https://meet.google.com/abc)";
    struct Case {
        const char* text;
        bool imminent;
    };
    const Case cases[] = {{"14:00 Review, was 09:00", true},
                          {"09:00, moved to 14:00", false},
                          {"Review", false},
                          {"9:5 then 14:00", true},
                          {"25:00 and 14:00", false},
                          {"114:00", true},
                          {"at 14:0", false},
                          {"١٤:٠٠", true}};
    for (const auto& c : cases) {
        const auto info = meeting_text::joinInfo(c.text + link, at(13, 50), amsterdam);
        ASSERT_TRUE(info) << c.text;
        EXPECT_EQ(info->url, "https://meet.google.com/abc");
        EXPECT_EQ(info->imminent, c.imminent) << c.text;
    }
    EXPECT_FALSE(meeting_text::joinInfo("14:00 https://example.org/abc", at(13, 50), amsterdam));
}

}  // namespace
}  // namespace sunpane
