#include <gmock/gmock.h>

#include <algorithm>
#include <chrono>
#include <string>
#include <vector>

#include "base/Dates.h"
#include "linux/calendar/CalendarSnapshot.h"
#include "linux/calendar/IcsExpansion.h"
#include "linux/calendar/IcsReading.h"
#include "linux/calendar/IcsWriting.h"

namespace sunpane {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr const char* amsterdam = "Europe/Amsterdam";

std::string file(const std::string& lines) {
    return "BEGIN:VCALENDAR\r\nVERSION:2.0\r\n" + lines + "END:VCALENDAR\r\n";
}

// "UID:e" and "SUMMARY:T" go without saying.
std::string event(const std::string& lines) {
    return "BEGIN:VEVENT\nUID:e\nSUMMARY:T\n" + lines + "END:VEVENT\n";
}

Instant at(const std::string& text) {
    const auto number = [&](std::size_t from, std::size_t count) { return std::stoi(text.substr(from, count)); };
    const auto day = std::chrono::sys_days(std::chrono::year(number(0, 4)) / number(5, 2) / number(8, 2));
    return Instant::fromUnix(static_cast<double>(day.time_since_epoch().count()) * 86400.0 + number(11, 2) * 3600.0 +
                             number(14, 2) * 60.0);
}

/// What `text` yields for a user in `zone`, by start: "local start +minutes title [recurrence]".
std::vector<std::string> happenings(const std::string& text, const std::string& from, const std::string& to,
                                    const std::string& zone = amsterdam) {
    IcsZones zones;
    const IcsContent content = readIcs(text, zones);
    auto found = expand(content, {at(from), at(to)}, *zones.userZone(zone));
    std::sort(found.begin(), found.end(), [](const auto& a, const auto& b) { return a.time.from < b.time.from; });
    const LocalCalendar calendar(zone, "en_US");
    std::vector<std::string> lines;
    for (const auto& each : found) {
        lines.push_back(calendar.format(each.time.from, "yyyy-MM-dd HH:mm") + " +" +
                        std::to_string(static_cast<int>((each.time.to - each.time.from) / 60)) + " " +
                        each.event->title.value_or("-") + (each.recurrence.empty() ? "" : " " + each.recurrence));
    }
    return lines;
}

std::vector<std::string> inNovember(const std::string& text) {
    return happenings(text, "2026-11-01T00:00", "2026-12-01T00:00");
}

TEST(IcsTest, PlacesEventsInTime) {
    struct Case {
        const char* what;
        const char* lines;
        std::vector<std::string> expected;
    };
    const Case cases[] = {
        {"UTC", "DTSTART:20261122T080000Z\nDTEND:20261122T090000Z\n", {"2026-11-22 09:00 +60 T"}},
        {"the user's clock", "DTSTART:20261122T080000\nDTEND:20261122T090000\n", {"2026-11-22 08:00 +60 T"}},
        {"another zone",
         "DTSTART;TZID=America/New_York:20261122T080000\nDTEND;TZID=America/New_York:20261122T090000\n",
         {"2026-11-22 14:00 +60 T"}},
        {"two zones",
         "DTSTART;TZID=Europe/London:20261122T080000\nDTEND;TZID=Asia/Tokyo:20261123T020000\n",
         {"2026-11-22 09:00 +540 T"}},
        {"a maker's prefix",
         "DTSTART;TZID=/example.org/2020_1/America/New_York:20261122T080000\n",
         {"2026-11-22 14:00 +0 T"}},
        {"Windows", "DTSTART;TZID=\"Eastern Standard Time\":20261122T080000\n", {"2026-11-22 14:00 +0 T"}},
        {"no such zone", "DTSTART;TZID=Moon/Tycho:20261122T080000\nDURATION:PT1H\n", {"2026-11-22 08:00 +60 T"}},
        {"all day", "DTSTART;VALUE=DATE:20261122\n", {"2026-11-22 00:00 +1440 T"}},
        {"some days", "DTSTART;VALUE=DATE:20261122\nDTEND;VALUE=DATE:20261125\n", {"2026-11-22 00:00 +4320 T"}},
        {"a day that ends where it begins",
         "DTSTART;VALUE=DATE:20261122\nDTEND;VALUE=DATE:20261122\n",
         {"2026-11-22 00:00 +1440 T"}},
        {"across midnight", "DTSTART:20261122T230000\nDTEND:20261123T010000\n", {"2026-11-22 23:00 +120 T"}},
        {"begun before", "DTSTART:20261031T100000\nDTEND:20261101T100000\n", {"2026-10-31 10:00 +1440 T"}},
        {"ended before", "DTSTART:20261031T100000\nDTEND:20261101T010000\n", {}},
        {"ends before it begins", "DTSTART:20261122T100000\nDTEND:20261122T090000\n", {"2026-11-22 10:00 +0 T"}},
        {"cancelled", "DTSTART:20261122T100000\nSTATUS:CANCELLED\n", {}},
        {"no start", "DTEND:20261122T100000\n", {}},
        {"nonsense for a start", "DTSTART:tomorrow\n", {}},
        {"a number for a title", "DTSTART:20261122T100000\nSUMMARY;VALUE=INTEGER:5\n", {"2026-11-22 10:00 +0 5"}},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(each.what);
        EXPECT_EQ(inNovember(file(event(each.lines))), each.expected);
    }
}

TEST(IcsTest, FollowsTheClockThroughItsChanges) {
    // The night of 28 March 2026 skips 02:00 to 03:00, that of 25 October has it twice.
    const auto inMarch = [](const std::string& lines) {
        return happenings(file(event(lines)), "2026-03-27T00:00", "2026-03-31T00:00");
    };
    EXPECT_THAT(inMarch("DTSTART:20260329T023000\n"), ElementsAre("2026-03-29 03:30 +0 T"));
    EXPECT_THAT(inMarch("DTSTART;VALUE=DATE:20260329\n"), ElementsAre("2026-03-29 00:00 +1380 T"));
    EXPECT_THAT(inMarch("DTSTART:20260328T120000\nDURATION:P1D\n"), ElementsAre("2026-03-28 12:00 +1380 T"));
    EXPECT_THAT(inMarch("DTSTART:20260328T120000\nDURATION:PT24H\n"), ElementsAre("2026-03-28 12:00 +1440 T"));
    EXPECT_THAT(inMarch("DTSTART;TZID=Europe/Amsterdam:20260328T090000\nRRULE:FREQ=DAILY;COUNT=2\n"),
                ElementsAre("2026-03-28 09:00 +0 T 20260328T080000Z", "2026-03-29 09:00 +0 T 20260329T070000Z"));
    IcsZones zones;
    const auto twice = readIcs(file(event("DTSTART;TZID=Europe/Amsterdam:20261025T023000\n")), zones);
    EXPECT_EQ(twice.events[0].start.instant(*zones.userZone("UTC")), at("2026-10-25T00:30"));
}

TEST(IcsTest, RepeatsEvents) {
    struct Case {
        const char* what;
        const char* lines;
        std::vector<std::string> expected;
    };
    const Case cases[] = {
        {"without end, from long ago",
         "DTSTART:19700105T090000\nDURATION:PT30M\nRRULE:FREQ=MONTHLY;BYDAY=2MO\n",
         {"2026-11-09 09:00 +30 T 20261109T090000"}},
        {"every so many weeks",
         "DTSTART;TZID=Europe/Amsterdam:20260105T090000\nRRULE:FREQ=WEEKLY;INTERVAL=22\n",
         {"2026-11-09 09:00 +0 T 20261109T080000Z"}},
        {"a count, with the exceptions counted",
         "DTSTART:20261129T090000\nRRULE:FREQ=DAILY;COUNT=3\nEXDATE:20261129T090000\n",
         {"2026-11-30 09:00 +0 T 20261130T090000"}},
        {"an end in UTC, which it still reaches",
         "DTSTART;TZID=America/New_York:20261101T200000\nRRULE:FREQ=DAILY;UNTIL=20261103T010000Z\n",
         {"2026-11-02 02:00 +0 T 20261102T010000Z", "2026-11-03 02:00 +0 T 20261103T010000Z"}},
        {"an end on a day",
         "DTSTART:20261101T200000\nRRULE:FREQ=DAILY;UNTIL=20261102\n",
         {"2026-11-01 20:00 +0 T 20261101T200000", "2026-11-02 20:00 +0 T 20261102T200000"}},
        {"exceptions in one line, by day and in another zone",
         "DTSTART;TZID=Europe/Amsterdam:20261127T090000\nRRULE:FREQ=DAILY\n"
         "EXDATE;TZID=Europe/London:20261127T080000,20261129T080000\nEXDATE;VALUE=DATE:20261128\n",
         {"2026-11-30 09:00 +0 T 20261130T080000Z"}},
        {"extra dates, one of them longer and one there already",
         "DTSTART:20261102T090000\nDURATION:PT1H\nRRULE:FREQ=YEARLY\nRDATE:20261102T090000,20261105T100000\n"
         "RDATE;VALUE=PERIOD:20261106T100000/PT3H\n",
         {"2026-11-02 09:00 +60 T 20261102T090000", "2026-11-05 10:00 +60 T 20261105T100000",
          "2026-11-06 10:00 +180 T 20261106T100000"}},
        {"days", "DTSTART;VALUE=DATE:20261130\nRRULE:FREQ=WEEKLY\n", {"2026-11-30 00:00 +1440 T 20261130"}},
        {"a start that its rule does not name",
         "DTSTART:20261128T090000\nRRULE:FREQ=WEEKLY;BYDAY=MO\n",
         {"2026-11-28 09:00 +0 T 20261128T090000", "2026-11-30 09:00 +0 T 20261130T090000"}},
        {"only where there is such a day", "DTSTART:20260131T090000\nRRULE:FREQ=MONTHLY\n", {}},
        {"still going on",
         "DTSTART:20200131T090000\nDURATION:P2D\nRRULE:FREQ=MONTHLY;BYMONTHDAY=-1\n",
         {"2026-10-31 09:00 +2880 T 20261031T090000", "2026-11-30 09:00 +2880 T 20261130T090000"}},
        {"a rule that makes no sense", "DTSTART:20261128T090000\nRRULE:FREQ=OFTEN\n", {"2026-11-28 09:00 +0 T"}},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(each.what);
        EXPECT_EQ(inNovember(file(event(each.lines))), each.expected);
    }
}

TEST(IcsTest, ReplacesOccurrencesThatWereMovedOrCancelled) {
    const std::string series = event("DTSTART;TZID=Europe/Amsterdam:20261126T090000\nRRULE:FREQ=DAILY;COUNT=4\n");
    const auto change = [](const std::string& lines) { return "BEGIN:VEVENT\nUID:e\n" + lines + "END:VEVENT\n"; };
    EXPECT_THAT(
        inNovember(file(change("RECURRENCE-ID:20261126T080000Z\nSUMMARY:moved\nDTSTART:20261130T120000Z\n") + series +
                        change("RECURRENCE-ID;TZID=Europe/Amsterdam:20261128T090000\nDTSTART:20261128T090000\n"
                               "STATUS:CANCELLED\n"))),
        ElementsAre("2026-11-27 09:00 +0 T 20261127T080000Z", "2026-11-29 09:00 +0 T 20261129T080000Z",
                    "2026-11-30 13:00 +0 moved 20261126T080000Z"));
    EXPECT_THAT(inNovember(file(change("RECURRENCE-ID:20261126T080000Z\nSUMMARY:alone\nDTSTART:20261126T080000Z\n"))),
                ElementsAre("2026-11-26 09:00 +0 alone 20261126T080000Z"));
    EXPECT_THAT(inNovember(file(event("SEQUENCE:2\nDTSTART:20261102T090000\n") + event("DTSTART:20261103T090000\n"))),
                ElementsAre("2026-11-02 09:00 +0 T"));
}

TEST(IcsTest, ReplacesATimedOccurrenceByItsDay) {
    // Two of them begin on one day, and one begins on another day in UTC.
    const std::string series =
        event("DTSTART;TZID=Europe/Amsterdam:20261127T003000\nRRULE:FREQ=DAILY;COUNT=3\nRDATE:20261127T003000Z\n");
    EXPECT_THAT(inNovember(file(series + event("RECURRENCE-ID;VALUE=DATE:20261128\nDTSTART:20261128T140000\n"))),
                ElementsAre("2026-11-27 00:30 +0 T 20261126T233000Z", "2026-11-27 01:30 +0 T 20261127T003000Z",
                            "2026-11-28 14:00 +0 T 20261128", "2026-11-29 00:30 +0 T 20261128T233000Z"));
}

TEST(IcsTest, ReplacesAllOccurrencesFromOneOn) {
    const auto change = [](const std::string& title, const std::string& lines) {
        return "BEGIN:VEVENT\nUID:e\nSUMMARY:" + title + "\n" + lines + "END:VEVENT\n";
    };
    const std::string timed =
        event("DTSTART;TZID=Europe/Amsterdam:20261126T090000\nDURATION:PT1H\nRRULE:FREQ=DAILY;COUNT=5\n");
    const std::string later = change("later",
                                     "RECURRENCE-ID;RANGE=THISANDFUTURE:20261127T080000Z\n"
                                     "DTSTART;TZID=Europe/Amsterdam:20261127T143000\nDURATION:PT30M\n");
    const std::string first = "2026-11-26 09:00 +60 T 20261126T080000Z";
    const std::string second = "2026-11-27 14:30 +30 later 20261127T080000Z";
    struct Case {
        const char* what;
        std::string text;
        std::vector<std::string> expected;
    };
    const Case cases[] = {
        {"until the end, one of them moved by itself and one left out",
         timed + later + change("single", "RECURRENCE-ID:20261128T080000Z\nDTSTART:20261128T170000\n") +
             change("gone", "RECURRENCE-ID:20261129T080000Z\nDTSTART:20261129T170000\nSTATUS:CANCELLED\n"),
         {first, second, "2026-11-28 17:00 +0 single 20261128T080000Z", "2026-11-30 14:30 +30 later 20261130T080000Z"}},
        {"until they change again, whichever the file names first",
         change("cancelled",
                "RECURRENCE-ID;RANGE=THISANDFUTURE:20261129T080000Z\nDTSTART:20261129T090000\n"
                "STATUS:CANCELLED\n") +
             later + timed,
         {first, second, "2026-11-28 14:30 +30 later 20261128T080000Z"}},
        {"by day, to another zone",
         timed + change("day",
                        "RECURRENCE-ID;VALUE=DATE;RANGE=THISANDFUTURE:20261129\n"
                        "DTSTART;TZID=America/New_York:20261129T050000\n"),
         {first, "2026-11-27 09:00 +60 T 20261127T080000Z", "2026-11-28 09:00 +60 T 20261128T080000Z",
          "2026-11-29 11:00 +0 day 20261129", "2026-11-30 11:00 +0 day 20261130T080000Z"}},
        {"days that move into the month",
         event("DTSTART;VALUE=DATE:20260907\nRRULE:FREQ=MONTHLY;BYMONTHDAY=7\n") +
             change("moved",
                    "RECURRENCE-ID;VALUE=DATE;RANGE=THISANDFUTURE:20261007\nDTSTART;VALUE=DATE:20261103\n"
                    "DTEND;VALUE=DATE:20261105\n"),
         {"2026-11-03 00:00 +2880 moved 20261007"}},
        {"earlier, from beyond the month",
         event("DTSTART;VALUE=DATE:20260907\nRRULE:FREQ=MONTHLY;BYMONTHDAY=7\n") +
             change("moved", "RECURRENCE-ID;VALUE=DATE;RANGE=THISANDFUTURE:20261007\nDTSTART;VALUE=DATE:20260927\n"),
         {"2026-11-27 00:00 +1440 moved 20261207"}},
        {"timed ones that fill their days",
         timed + change("day", "RECURRENCE-ID;RANGE=THISANDFUTURE:20261129T080000Z\nDTSTART;VALUE=DATE:20261129\n"),
         {first, "2026-11-27 09:00 +60 T 20261127T080000Z", "2026-11-28 09:00 +60 T 20261128T080000Z",
          "2026-11-29 00:00 +1440 day 20261129T080000Z", "2026-11-30 00:00 +1440 day 20261130T080000Z"}},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(each.what);
        EXPECT_EQ(inNovember(file(each.text)), each.expected);
    }
    // The hour that summer time ends with is no part of the difference.
    EXPECT_THAT(
        happenings(file(event("DTSTART;TZID=Europe/Amsterdam:20261023T090000\nRRULE:FREQ=DAILY;COUNT=4\n") +
                        change("later",
                               "RECURRENCE-ID;RANGE=THISANDFUTURE:20261024T070000Z\n"
                               "DTSTART;TZID=Europe/Amsterdam:20261024T100000\n")),
                   "2026-10-25T00:00", "2026-11-01T00:00"),
        ElementsAre("2026-10-25 10:00 +0 later 20261025T080000Z", "2026-10-26 10:00 +0 later 20261026T080000Z"));
}

TEST(IcsTest, UsesTheZonesThatAFileDefines) {
    const std::string zone =
        "BEGIN:VTIMEZONE\r\nTZID:Office\r\nBEGIN:STANDARD\r\nDTSTART:20001029T030000\r\n"
        "RRULE:FREQ=YEARLY;BYMONTH=10;BYDAY=-1SU\r\nTZOFFSETFROM:+0400\r\nTZOFFSETTO:+0300\r\nTZNAME:O\r\n"
        "END:STANDARD\r\nBEGIN:DAYLIGHT\r\nDTSTART:20000326T020000\r\nRRULE:FREQ=YEARLY;BYMONTH=3;BYDAY=-1SU\r\n"
        "TZOFFSETFROM:+0300\r\nTZOFFSETTO:+0400\r\nTZNAME:OS\r\nEND:DAYLIGHT\r\nEND:VTIMEZONE\r\n";
    const std::string lines = "DTSTART;TZID=Office:20261024T120000\nRRULE:FREQ=DAILY;COUNT=2\n";
    const auto expected =
        ElementsAre("2026-10-24 10:00 +0 T 20261024T080000Z", "2026-10-25 10:00 +0 T 20261025T090000Z");
    EXPECT_THAT(happenings(file(zone + event(lines)), "2026-10-01T00:00", "2026-11-01T00:00"), expected);
    EXPECT_THAT(happenings(file(event(lines) + zone), "2026-10-01T00:00", "2026-11-01T00:00"), expected);
    // A zone without rules is no zone, so the user's clock counts.
    EXPECT_THAT(inNovember(file("BEGIN:VTIMEZONE\r\nTZID:Empty\r\nEND:VTIMEZONE\r\n" +
                                event("DTSTART;TZID=Empty:20261122T080000\n"))),
                ElementsAre("2026-11-22 08:00 +0 T"));
}

TEST(IcsTest, ReadsWhatAnEventSays) {
    IcsZones zones;
    const std::string said = event(
        "DTSTART:20261122T100000\nLOCATION:Room 4\\nBuilding B\nDESCRIPTION:One\\; two\\, \n three \xFF\n"
        "URL:https://example.org/a?b=1,2;c\nATTENDEE;CN=\"A: B\":mailto:a@example.org\n"
        "BEGIN:VALARM\nSUMMARY:alarm\nDESCRIPTION:alarm\nTRIGGER:-PT15M\nEND:VALARM\n");
    const auto content = readIcs("\xEF\xBB\xBF" + file("X-WR-CALNAME:Work\\, and\r\n  play\r\n" + said +
                                                       "BEGIN:VTODO\nUID:todo\nSUMMARY:no event\nEND:VTODO\n"),
                                 zones);
    EXPECT_EQ(content.calendarName, "Work, and play");
    ASSERT_EQ(content.events.size(), 1U);
    EXPECT_EQ(content.events[0].title, "T");
    EXPECT_EQ(content.events[0].location, "Room 4\nBuilding B");
    EXPECT_EQ(content.events[0].notes, "One; two, three \xEF\xBF\xBD");
    EXPECT_EQ(content.events[0].url, "https://example.org/a?b=1,2;c");
    EXPECT_TRUE(content.events[0].hasAttendees);
    // A later version takes its place.
    const auto later = readIcs(file(said + event("DTSTART:20261122T100000\nSEQUENCE:1\nSUMMARY:\n"
                                                 "X-GOOGLE-CONFERENCE:https://meet.example.org/x\n")),
                               zones);
    ASSERT_EQ(later.events.size(), 1U);
    EXPECT_EQ(later.events[0].url, "https://meet.example.org/x");
}

TEST(IcsTest, FindsTheMeetingAmongAllAddresses) {
    IcsZones zones;
    const auto url = [&](const std::string& lines) {
        return readIcs(file(event("DTSTART:20261122T100000\n" + lines)), zones).events.at(0).url.value_or("-");
    };
    EXPECT_EQ(url("CONFERENCE;VALUE=URI:tel:+31-20-1\nCONFERENCE;VALUE=URI:https://meet.example.org/a\n"
                  "URL:https://example.org/page\n"),
              "https://example.org/page\ntel:+31-20-1\nhttps://meet.example.org/a");
    EXPECT_EQ(url("CONFERENCE;VALUE=URI:tel:+31-20-1\nX-GOOGLE-CONFERENCE:https://meet.example.org/a\n"),
              "tel:+31-20-1\nhttps://meet.example.org/a");
    EXPECT_EQ(url("URL:https://example.org/page\n"), "https://example.org/page");
    std::string many;
    for (int i = 0; i < 1000; ++i)
        many += "CONFERENCE;VALUE=URI:tel:1\n";
    EXPECT_LT(url(many).size(), 1000U);
}

TEST(IcsTest, KeepsTheGoodEventsOfABrokenFile) {
    const std::string good = event("DTSTART:20261122T100000\n");
    const std::vector<std::string> one{"2026-11-22 10:00 +0 T"};
    std::string deep = "BEGIN:VEVENT\nUID:deep\n";
    for (int i = 0; i < 100000; ++i)
        deep += "BEGIN:VALARM\n";
    const std::string cases[] = {
        good,  // no calendar around it
        file(good) + file("BEGIN:VEVENT\nUID:open"),
        file("BEGIN:VEVENT\nUID:open\nDTSTART:20261121T100000\n" + good),
        file("BEGIN:VEVENT\nUID:open\nDTSTART:20261121T100000\nBEGIN:VALARM\n" + good),
        file("BEGIN:VTIMEZONE\nTZID:open\nBEGIN:STANDARD\n" + good),
        file("BEGIN:VEVENT\nUID:other\nEND:VEVENT\n" + good),
        file("END:VEVENT\nEND:VALARM\nEND:VCALENDAR\n" + good),
        file("BEGIN:VEVENT\nUID:x\nDTSTART:20261341T990000\nEND:VEVENT\n" + good),
        file(deep + "END:VEVENT\n" + good),
        file("BEGIN:VEVENT\nUID:x\nBEGIN:VALARM\nDTSTART:20261122T100000\nEND:VEVENT\n" + good),
        file(std::string("X-\0Y:\0\n", 7) + good),
        file(event("DTSTART:20261122T100000\nDESCRIPTION:" + std::string(maximumPropertyLength, 'x') + "\n")),
    };
    for (const auto& each : cases)
        EXPECT_EQ(inNovember(each), one) << each.substr(0, 200);
    EXPECT_THAT(inNovember(""), IsEmpty());
    EXPECT_THAT(inNovember(std::string(100000, '\n')), IsEmpty());
}

TEST(IcsTest, BoundsWhatRepeatsEndlessly) {
    struct Case {
        const char* rule;
        std::size_t most;
    };
    const Case cases[] = {
        {"FREQ=SECONDLY", maximumOccurrencesPerEvent},
        {"FREQ=SECONDLY;COUNT=1000000", maximumOccurrencesPerEvent},
        {"FREQ=SECONDLY;BYMONTH=2;BYMONTHDAY=30", 1},
        {"FREQ=MINUTELY;INTERVAL=2;BYSECOND=1;BYDAY=TU", 1},
        {"FREQ=HOURLY;BYMONTH=2;BYMONTHDAY=30", 1},
        {"FREQ=DAILY;BYMONTH=2;BYMONTHDAY=30", 1},
        {"FREQ=YEARLY;BYMONTH=2;BYMONTHDAY=30", 1},
        {"FREQ=DAILY;COUNT=1000000;BYMONTH=2;BYMONTHDAY=30", 1},
        {"FREQ=YEARLY;BYWEEKNO=53;BYDAY=MO;BYSETPOS=99", 1},
        {"FREQ=DAILY;INTERVAL=2147483647", 1},
        {"FREQ=DAILY;INTERVAL=0", 30},
    };
    const auto start = std::chrono::steady_clock::now();
    for (const auto& each : cases) {
        for (const char* begin : {"DTSTART:20261101T090000\n", "DTSTART:19000101T090000\n"}) {
            const auto found = inNovember(file(event(begin + std::string("RRULE:") + each.rule + "\n")));
            EXPECT_LE(found.size(), each.most) << each.rule << " " << begin;
        }
    }
    // Any of them followed to its end would take minutes.
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20));
}

TEST(IcsTest, EndsEarlyWhenItIsToldTo) {
    const std::string text = file(event("DTSTART:20261122T100000\n"));
    IcsZones zones;
    const StopFlag stopped{true};
    EXPECT_THAT(readIcs(text, zones, stopped).events, IsEmpty());
    const IcsContent content = readIcs(text, zones);
    EXPECT_THAT(expand(content, {at("2026-11-01T00:00"), at("2026-12-01T00:00")}, *IcsZones::utc(), stopped),
                IsEmpty());
}

TEST(IcsTest, WritesWhatItReads) {
    const CalendarStore::NewEvent made{"Déjà, vu;\nEND:VEVENT \\ 😀 " + std::string(200, 'x'), at("2026-11-22T10:00"),
                                       at("2026-11-22T11:00")};
    const std::string text = writeIcs(made, "some-uid", at("2026-11-21T00:00"));
    IcsZones zones;
    const auto content = readIcs(text, zones);
    ASSERT_EQ(content.events.size(), 1U);
    EXPECT_EQ(content.events[0].uid, "some-uid");
    EXPECT_EQ(content.events[0].title, made.title);
    EXPECT_EQ(content.events[0].start.instant(*IcsZones::utc()), made.start);
    EXPECT_EQ(content.events[0].end->instant(*IcsZones::utc()), made.end);
}

TEST(CalendarSnapshotTest, FindsWhatOverlaps) {
    IcsZones zones;
    const auto content = std::make_shared<const IcsContent>(
        readIcs(file("BEGIN:VEVENT\nUID:long\nDTSTART:20261101T000000Z\nDTEND:20261130T000000Z\nEND:VEVENT\n"
                     "BEGIN:VEVENT\nUID:b\nDTSTART:20261110T100000Z\nDTEND:20261110T110000Z\nEND:VEVENT\n"
                     "BEGIN:VEVENT\nUID:a\nDTSTART:20261110T100000Z\nDTEND:20261110T103000Z\nEND:VEVENT\n"
                     "BEGIN:VEVENT\nDTSTART:20261110T120000Z\nEND:VEVENT\n"),
                zones));
    const TimeSpan span{at("2026-11-01T00:00"), at("2026-12-01T00:00")};
    const auto occurrences =
        std::make_shared<const std::vector<IcsOccurrence>>(expand(*content, span, *IcsZones::utc()));
    const CalendarSnapshot snapshot(span, {{"c", "C", false}}, {{0, content, occurrences}});
    const auto found = [&](const std::string& from, const std::string& to) {
        std::vector<std::string> identifiers;
        for (const auto& each : snapshot.events(at("2026-11-" + from), at("2026-11-" + to)))
            identifiers.push_back(each.identifier);
        return identifiers;
    };
    EXPECT_THAT(found("10T00:00", "11T00:00"), ElementsAre("c:long", "c:a", "c:b", ""));
    EXPECT_THAT(found("10T10:30", "10T12:00"), ElementsAre("c:long", "c:b"));
    EXPECT_THAT(found("10T12:00", "10T12:01"), ElementsAre("c:long", ""));
    EXPECT_THAT(found("10T11:00", "10T12:00"), ElementsAre("c:long"));
    EXPECT_THAT(found("30T00:00", "30T12:00"), IsEmpty());
}

}  // namespace
}  // namespace sunpane
