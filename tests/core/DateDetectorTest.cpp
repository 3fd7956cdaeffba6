#include "core/DateDetector.h"

#include <gtest/gtest.h>

#include "base/Dates.h"
#include "support/SimulatedPlatform.h"

namespace sunpane {
namespace {

/// On Sunday 22 November 2026, 10:30, in Amsterdam.
struct SundayMorning : testing::SimulatedPlatform {
    explicit SundayMorning(const std::string& locale = "en_GB") {
        clock.localeName = locale;
        time.jumpWallClock(LocalCalendar(clock).instant({{2026, 11, 22}, 10, 30, 0}));
    }
    DateDetector detector{clock};
};

struct Case {
    const char* text;
    const char* found;  // "2026-11-23 15:00", with " +45" minutes when it says how long; empty for nothing
};

void expectAll(const std::string& locale, std::initializer_list<Case> cases) {
    SundayMorning morning(locale);
    for (const auto& c : cases) {
        const auto date = morning.detector.firstDate(c.text);
        std::string found;
        if (date) {
            found = LocalCalendar("Europe/Amsterdam", "en").format(date->date, "yyyy-MM-dd HH:mm");
            if (date->duration != 0) found += " +" + std::to_string(static_cast<int>(date->duration / 60));
        }
        EXPECT_EQ(found, c.found) << c.text;
    }
}

TEST(DateDetector, FindsDaysAndTimesInEverydayText) {
    expectAll("en_GB", {
                           {"Call Anna tomorrow at 3pm", "2026-11-23 15:00"},
                           {"Friday 14:00 review", "2026-11-27 14:00"},
                           {"Demo Fri 2:30 p.m.", "2026-11-27 14:30"},
                           {"Standup (Mon, 9:15)", "2026-11-23 09:15"},
                           {"Report due 16 Nov 09:30", "2026-11-16 09:30"},
                           {"2026-11-20 18:00 dinner", "2026-11-20 18:00"},
                           {"2026-12-01T08:15:00 deploy", "2026-12-01 08:15"},
                           {"see you next Monday", "2026-11-23 12:00"},
                           {"next Sunday", "2026-11-29 12:00"},
                           {"Sunday 11:00", "2026-11-22 11:00"},
                           {"Sunday 10:00", "2026-11-29 10:00"},
                           {"in 2 hours", "2026-11-22 12:30"},
                           {"back in half an hour", "2026-11-22 11:00"},
                           {"in 1.5 hours", "2026-11-22 12:00"},
                           {"in 3 days at 10:00", "2026-11-25 10:00"},
                           {"in a week", "2026-11-29 10:30"},
                           {"in 3 months", "2027-02-22 10:30"},
                           {"by 5 January", "2027-01-05 12:00"},
                           {"Nov 30th, 2026 at 8 pm", "2026-11-30 20:00"},
                           {"the 1st of December", "2026-12-01 12:00"},
                           {"Wed 25 Nov, 14:00", "2026-11-25 14:00"},
                           {"03/12/2026 9:00", "2026-12-03 09:00"},
                           {"15.12.2026", "2026-12-15 12:00"},
                           {"tonight at 8", "2026-11-22 20:00"},
                           {"tomorrow morning", "2026-11-23 09:00"},
                           {"this evening", "2026-11-22 19:00"},
                           {"Friday afternoon at 4", "2026-11-27 16:00"},
                           {"day after tomorrow 09:00", "2026-11-24 09:00"},
                           {"lunch at noon", "2026-11-22 12:00"},
                           {"half past 3 tomorrow", "2026-11-23 15:30"},
                           {"quarter to 1 tomorrow", "2026-11-23 12:45"},
                           {"quarter to 1 am tomorrow", "2026-11-23 00:45"},
                           {"**14:00** Review", "2026-11-22 14:00"},
                           {"3pm on Thursday", "2026-11-26 15:00"},
                           {"12am", "2026-11-22 00:00"},
                           {"12:30 pm", "2026-11-22 12:30"},
                           {"Meet tomorrow at 3, bring cake", "2026-11-23 15:00"},
                           {"first tomorrow, then Friday", "2026-11-23 12:00"},
                       });
}

TEST(DateDetector, FindsHowLong) {
    expectAll("en_GB", {
                           {"Meeting from 3 to 4:30", "2026-11-22 15:00 +90"},
                           {"14:00–14:45 Design review", "2026-11-22 14:00 +45"},
                           {"3-4pm tomorrow", "2026-11-23 15:00 +60"},
                           {"11-1pm Friday", "2026-11-27 11:00 +120"},
                           {"Friday from 10 to 4", "2026-11-27 10:00 +360"},
                           {"22:00 to 02:00", "2026-11-22 22:00 +240"},
                           {"between 9 and 10:30 tomorrow", "2026-11-23 09:00 +90"},
                           {"Run tomorrow at 7:00 for 45 minutes", "2026-11-23 07:00 +45"},
                           {"Focus for 2 hours tomorrow at 9:00", "2026-11-23 09:00 +120"},
                           {"Call at 16:00 (30 min)", "2026-11-22 16:00 +30"},
                           {"Workshop Friday 9:00 for 1.5 hours", "2026-11-27 09:00 +90"},
                           {"Walk for 45 minutes", ""},
                       });
}

TEST(DateDetector, KnowsTheNamesOfTheUsersLanguage) {
    expectAll("de_DE", {{"Zahnarzt Dienstag 14:30", "2026-11-24 14:30"},
                        {"Abgabe 3. Dezember", "2026-12-03 12:00"},
                        {"Morgen um 9 Uhr", "2026-11-23 09:00"},
                        {"übermorgen 18.30 Uhr", "2026-11-24 18:30"},
                        {"Di 8:00 bis 9:30", "2026-11-24 08:00 +90"},
                        {"so viel zu tun", ""},
                        {"Friday 14:00", "2026-11-27 14:00"}});
    expectAll(
        "nl_NL",
        {{"Do 14:00 overleg", "2026-11-26 14:00"}, {"do 5 things", ""}, {"3 maart om 10:00", "2027-03-03 10:00"}});
    expectAll("fr_FR", {{"mardi 14h30", "2026-11-24 14:30"}, {"le 3 décembre à 9:00", "2026-12-03 09:00"}});
    expectAll("el_GR", {{"Τρίτη 14:00", "2026-11-24 14:00"}});
    expectAll("en_US", {{"11/12/2026", "2026-11-12 12:00"}, {"25/12/2026", "2026-12-25 12:00"}});
}

TEST(DateDetector, SpringsOnNothingElse) {
    expectAll("en_GB", {
                           {"Update to 2.14.3 and 10.11.2026.4", ""},
                           {"v1.2.3, iOS 16.4, release 3-2", ""},
                           {"Costs $3.30, €16 or 14,50 EUR", ""},
                           {"Call +31 20 123 45 67 or 555-1234", ""},
                           {"0800 2026-1120 and 06-12345678", ""},
                           {"MAC aa:10:20:bb and 10:20:30:40", ""},
                           {"Ratio 16:9, 24/7, 3/4", ""},
                           {"25:00 and 14:60 and 9:5", ""},
                           {"31 Nov and 2026-02-30 and 32 December", ""},
                           {"PR #2026-11-20 and file-2026-11-20", ""},
                           {"The cat sat in the sun; you may march 5 miles", ""},
                           {"Look at 3 options, read 10 pages", ""},
                           {"5 may be enough", ""},
                           {"I am 3, in 5 steps", ""},
                           {"10% of 2026, room 14", ""},
                           {"http://x.y/2026/11/20", ""},
                           {"", ""},
                       });
}

TEST(DateDetector, ASkippedOrRepeatedHourIsTheFirstThereIs) {
    expectAll("en_GB", {{"28 March 2027 02:30", "2027-03-28 03:00"}, {"31 October 2027 02:30", "2027-10-31 02:30"}});
    SundayMorning morning;
    EXPECT_TRUE(morning.detector.firstDate(std::string(1990, 'x') + " 14:00"));
    EXPECT_FALSE(morning.detector.firstDate(std::string(2000, 'x') + " 14:00"));
}

}  // namespace
}  // namespace sunpane
