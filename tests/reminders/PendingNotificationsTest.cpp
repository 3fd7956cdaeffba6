#include "reminders/PendingNotifications.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/Dates.h"
#include "support/SimulatedFileSystem.h"
#include "support/SimulatedNotifications.h"
#include "support/SimulatedPlatform.h"

namespace sunpane {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

const std::string statePath = "/state/notifications.json";

struct PendingNotificationsTest : ::testing::Test {
    testing::SimulatedPlatform platform;
    testing::SimulatedFileSystem files{platform.clock};
    testing::SimulatedNotificationService service{platform.runLoop};
    std::optional<PendingNotifications> center;
    std::vector<std::string> clicked;

    void SetUp() override {
        setClock("2026-11-22T09:00:00");
        service.onShown = [this](const auto& shown) { log.push_back(shown.body + " at " + time()); };
        start();
    }
    // What was shown and when, by the clock on the wall.
    std::vector<std::string> log;

    void start() {
        center.emplace(PendingNotifications::Ports{service, platform.clock, platform.runLoop, files, platform.queues},
                       statePath);
        center->setResponseHandler([this](const NotificationResponse& response) {
            clicked.push_back(response.identifier);
            for (const auto& [key, value] : response.userInfo)
                clicked.push_back(key + "=" + value);
        });
        platform.time.runPending();
    }
    void restartAt(const std::string& local) {
        center.reset();
        setClock(local);
        start();
    }
    Instant at(const std::string& local) const { return LocalCalendar(platform.clock).parseIso8601(local).value(); }
    void setClock(const std::string& local) { platform.time.jumpWallClock(at(local)); }
    void waitUntil(const std::string& local) { platform.time.advanceTo(at(local)); }
    std::string time() const {
        const LocalCalendar calendar(platform.clock);
        return calendar.format(platform.clock.now(), "MM-dd HH:mm:ss");
    }
    void add(const std::string& name, const CalendarTrigger& trigger, std::optional<Instant> expires = std::nullopt) {
        center->add({name, "Title", name, {{"name", name}}, trigger, expires});
        platform.time.runPending();
    }
    static CalendarTrigger once(int day, int hour, int minute) {
        return {.year = 2026, .month = 11, .day = day, .hour = hour, .minute = minute};
    }
    static CalendarTrigger daily(int hour, int minute) { return {.hour = hour, .minute = minute, .repeats = true}; }
    std::vector<std::string> waiting() {
        std::vector<std::string> identifiers;
        center->pending([&](const auto& requests) {
            for (const auto& request : requests)
                identifiers.push_back(request.identifier);
        });
        platform.time.runPending();
        return identifiers;
    }
};

TEST_F(PendingNotificationsTest, ShowsEachRequestAtItsMoment) {
    add("once", once(22, 9, 1));
    add("daily", daily(9, 2));
    add("past", once(22, 9, 0));
    EXPECT_THAT(waiting(), ElementsAre("daily", "once"));
    waitUntil("2026-11-22T09:00:59");
    EXPECT_THAT(log, IsEmpty());
    waitUntil("2026-11-24T12:00:00");
    EXPECT_THAT(log, ElementsAre("once at 11-22 09:01:00", "daily at 11-22 09:02:00", "daily at 11-23 09:02:00",
                                 "daily at 11-24 09:02:00"));
    EXPECT_THAT(waiting(), ElementsAre("daily"));
    center->removePending({"daily", "unknown"});
    waitUntil("2026-11-26T12:00:00");
    EXPECT_EQ(log.size(), 4U);
    EXPECT_EQ(platform.time.pendingCount(), 0U);  // nothing waits, nothing runs
}

TEST_F(PendingNotificationsTest, KeepsOneRequestForEachIdentifier) {
    add("a", once(22, 10, 0));
    add("a", once(22, 11, 0));
    waitUntil("2026-11-22T12:00:00");
    EXPECT_THAT(log, ElementsAre("a at 11-22 11:00:00"));
    add("b", daily(13, 0));
    add("b", once(22, 11, 0));  // never comes due; the daily one was to be replaced all the same
    EXPECT_THAT(waiting(), IsEmpty());
}

TEST_F(PendingNotificationsTest, ShowsWhatCameDueMeanwhileOnceAtTheNextStart) {
    add("once", once(22, 10, 0));
    add("daily", daily(9, 30));
    add("expired", once(22, 10, 0), at("2026-11-22T10:15:00"));
    add("later", once(30, 10, 0));
    restartAt("2026-11-25T12:00:00");
    EXPECT_THAT(log, ElementsAre("daily at 11-25 12:00:00", "once at 11-25 12:00:00"));
    EXPECT_THAT(waiting(), ElementsAre("daily", "later"));
    restartAt("2026-11-25T12:01:00");
    EXPECT_EQ(log.size(), 2U);
    waitUntil("2026-11-26T12:00:00");
    EXPECT_EQ(log.back(), "daily at 11-26 09:30:00");
}

TEST_F(PendingNotificationsTest, FollowsTheWallClockThroughASuspend) {
    add("a", once(22, 12, 0));
    platform.time.advance(30);
    setClock("2026-11-22T12:30:00");  // as after three hours of sleep, in which no timer ran
    platform.time.advance(59);
    EXPECT_THAT(log, ElementsAre("a at 11-22 12:30:30"));
    add("b", once(22, 14, 0));
    setClock("2026-11-22T14:00:05");
    center->wallClockChanged();
    EXPECT_EQ(log.back(), "b at 11-22 14:00:05");
}

TEST_F(PendingNotificationsTest, AClockSetBackShowsNothingTwice) {
    add("once", once(22, 10, 0));
    add("daily", daily(10, 0));
    waitUntil("2026-11-22T10:30:00");
    EXPECT_EQ(log.size(), 2U);
    setClock("2026-11-22T09:30:00");
    add("once", once(22, 10, 0));  // as whoever keeps requests in step would
    waitUntil("2026-11-22T23:00:00");
    EXPECT_EQ(log.size(), 2U);
    restartAt("2026-11-22T09:50:00");
    waitUntil("2026-11-22T10:10:00");
    EXPECT_EQ(log.size(), 2U);
    waitUntil("2026-11-23T10:10:00");
    EXPECT_EQ(log.size(), 3U);
}

TEST_F(PendingNotificationsTest, AClockThatWasFarAheadSilencesNothing) {
    add("daily", daily(10, 0));
    setClock("2030-01-01T12:00:00");
    platform.time.advance(60);
    EXPECT_EQ(log.size(), 1U);
    setClock("2026-11-22T09:30:00");
    waitUntil("2026-11-23T11:00:00");
    EXPECT_THAT(log, ElementsAre("daily at 01-01 12:01:00", "daily at 11-22 10:00:00", "daily at 11-23 10:00:00"));
}

TEST_F(PendingNotificationsTest, SkippedTimesComeAtTheEndOfTheGapAndRepeatedOnesOnce) {
    restartAt("2026-10-24T12:00:00");
    add("daily", daily(2, 30));
    waitUntil("2026-10-26T12:00:00");
    EXPECT_THAT(log, ElementsAre("daily at 10-25 02:30:00", "daily at 10-26 02:30:00"));
    EXPECT_EQ(service.shown.size(), 2U);
    log.clear();
    restartAt("2027-03-27T12:00:00");
    waitUntil("2027-03-29T12:00:00");
    EXPECT_THAT(log, ElementsAre("daily at 03-27 12:00:00", "daily at 03-28 03:00:00", "daily at 03-29 02:30:00"));
}

TEST_F(PendingNotificationsTest, InTheHourThatComesTwiceTheIntendedTimeCounts) {
    const Instant first = at("2026-10-25T02:00:00");
    const Instant second = first + 3600;
    struct Case {
        const char* what;
        Instant now;
        std::optional<Instant> intended;
        int minute;
        Instant shown;
    };
    const std::vector<Case> cases = {
        {"later in the second hour", second + 600, second + 2400, 40, second + 2400},
        {"the same without knowing the intent", second + 600, std::nullopt, 40, second + 2400},
        {"in an hour, from the first on", first + 630, second + 600, 10, second + 600},
        {"the first, from before", first - 3600, first + 600, 10, first + 600},
        {"the second, from before", first - 3600, second + 600, 10, second + 600},
        {"the first, without knowing the intent", first - 3600, std::nullopt, 10, first + 600},
        {"the first, within it", first + 60, first + 600, 10, first + 600},
    };
    for (const bool repeats : {false, true}) {
        for (const auto& [what, now, intended, minute, shown] : cases) {
            center.reset();
            files.writeExternally(statePath, R"({"version":1,"waiting":[],"shown":[]})");
            platform.time.jumpWallClock(now);
            start();
            const CalendarTrigger once{.year = 2026, .month = 10, .day = 25, .hour = 2, .minute = minute};
            NotificationRequest request{"a", "Title", "a", {}, repeats ? daily(2, minute) : once};
            request.intended = intended;
            center->add(request);
            platform.time.runPending();
            // The intent outlives the program.
            center.reset();
            start();
            log.clear();
            platform.time.advanceTo(shown - 1);
            EXPECT_THAT(log, IsEmpty()) << what;
            platform.time.advance(1);
            EXPECT_EQ(log.size(), 1U) << what;
            platform.time.advanceTo(second + 7200);
            EXPECT_EQ(log.size(), 1U) << what;
            // Whoever keeps requests in step brings nothing back.
            if (!repeats && intended) {
                platform.time.jumpWallClock(std::max(shown + 60, first + 3660));
                center->add(request);
                EXPECT_THAT(waiting(), IsEmpty()) << what;
            }
        }
    }
}

TEST_F(PendingNotificationsTest, FollowsTheUserIntoAnotherZone) {
    const Instant meeting = at("2026-11-22T15:00:00");
    add("local", once(22, 12, 0));
    add("daily", daily(12, 0));
    const CivilTime utc = LocalCalendar("UTC", "en_US").civilTime(meeting);
    add("moment", {.timeZone = "UTC", .year = 2026, .month = 11, .day = 22, .hour = utc.hour, .minute = utc.minute});
    platform.clock.zone = "America/New_York";  // 03:00 there
    platform.time.advanceTo(meeting - 1);
    EXPECT_THAT(log, IsEmpty());
    platform.time.advance(1);
    EXPECT_THAT(log, ElementsAre("moment at 11-22 09:00:00"));
    waitUntil("2026-11-22T12:00:00");
    EXPECT_THAT(log, ElementsAre("moment at 11-22 09:00:00", "daily at 11-22 12:00:00", "local at 11-22 12:00:00"));
    // East: what the clock jumps over is late by then, and what it shows again was shown.
    add("evening", once(22, 22, 0));
    platform.clock.zone = "Asia/Tokyo";  // 02:00 of the next day there
    center->wallClockChanged();
    platform.time.runPending();
    EXPECT_EQ(log.back(), "evening at 11-23 02:00:00");
    platform.clock.zone = "America/New_York";
    platform.time.advance(12 * 3600.0);
    EXPECT_EQ(log.size(), 4U);
}

TEST_F(PendingNotificationsTest, KeepsWhatIsDueUntilThereIsAService) {
    service.setAvailable(false);
    add("a", once(22, 10, 0));
    add("b", once(22, 10, 0), at("2026-11-22T10:30:00"));
    waitUntil("2026-11-22T11:00:00");
    EXPECT_EQ(service.calls, 0);
    EXPECT_THAT(waiting(), ElementsAre("a"));
    add("a", once(22, 10, 0));  // the same again does not make it the past's
    center->add({"a", "Title", "a, reworded", {}, once(22, 10, 0)});
    NotificationAuthorization status = NotificationAuthorization::notDetermined;
    center->authorization([&](auto answer) { status = answer; });
    platform.time.runPending();
    EXPECT_EQ(status, NotificationAuthorization::denied);
    service.setAvailable(true);
    platform.time.runPending();
    EXPECT_THAT(log, ElementsAre("a, reworded at 11-22 11:00:00"));
    center->authorization([&](auto answer) { status = answer; });
    platform.time.runPending();
    EXPECT_EQ(status, NotificationAuthorization::authorized);
}

TEST_F(PendingNotificationsTest, TriesAgainOnceAMinuteWhenTheServiceRefuses) {
    service.refuses = true;
    add("a", once(22, 10, 0));
    waitUntil("2026-11-22T10:09:30");
    EXPECT_EQ(service.calls, 10);
    service.refuses = false;
    waitUntil("2026-11-22T10:12:00");
    EXPECT_THAT(log, ElementsAre("a at 11-22 10:10:00"));
    EXPECT_EQ(service.calls, 11);
}

TEST_F(PendingNotificationsTest, AClickIsUnderstoodAfterARestartButNotInAnotherRunOfTheService) {
    add("todo", once(22, 10, 0));
    waitUntil("2026-11-22T10:00:00");
    ASSERT_EQ(service.shown.size(), 1U);
    const std::uint32_t number = service.shown[0].number;
    service.click(number);
    EXPECT_THAT(clicked, ElementsAre("todo", "name=todo"));
    clicked.clear();
    restartAt("2026-11-22T10:05:00");
    service.click(number + 1);
    EXPECT_THAT(clicked, IsEmpty());
    service.click(number);
    EXPECT_THAT(clicked, ElementsAre("todo", "name=todo"));
    clicked.clear();
    service.setAvailable(false);
    service.setAvailable(true);
    service.click(number);  // another program's by now
    EXPECT_THAT(clicked, IsEmpty());
}

TEST_F(PendingNotificationsTest, RemembersOnlyTheLatestShown) {
    add("first", once(22, 9, 1));
    waitUntil("2026-11-22T09:01:00");
    for (std::size_t i = 1; i < PendingNotifications::maximumShown; ++i)
        add("n" + std::to_string(i), once(22, 9, 2));
    waitUntil("2026-11-22T09:02:00");
    service.click(1);
    EXPECT_THAT(clicked, ElementsAre("first", "name=first"));
    clicked.clear();
    add("one more", once(22, 9, 3));
    waitUntil("2026-11-22T09:03:00");
    service.click(1);
    EXPECT_THAT(clicked, IsEmpty());
}

TEST_F(PendingNotificationsTest, ARemovalOrReplacementWhileTheServiceIsBusyStands) {
    add("a", daily(10, 0));
    add("b", daily(10, 0));
    service.onShown = [&](const auto& shown) {
        if (shown.body == "a") center->removePending({"a"});
        if (shown.body == "b") center->add({"b", "Title", "b", {}, once(22, 11, 0), {}});
    };
    waitUntil("2026-11-22T10:00:30");
    EXPECT_THAT(waiting(), ElementsAre("b"));
    waitUntil("2026-11-23T12:00:00");
    EXPECT_EQ(service.shown.size(), 3U);
    EXPECT_THAT(waiting(), IsEmpty());
}

TEST_F(PendingNotificationsTest, KeepsAStateThatCannotBeReadAsideAndStartsEmpty) {
    add("a", once(22, 10, 0));
    center.reset();
    const std::string good = files.content(statePath).value();
    for (const std::string& bad : std::vector<std::string>{
             "",
             good.substr(0, good.size() / 2),
             "[]",
             R"({"version":2,"waiting":[],"shown":[]})",
             R"({"version":1,"waiting":{},"shown":[]})",
         }) {
        EXPECT_EQ(decodeNotifications(bad), std::nullopt) << bad;
        files.writeExternally(statePath, bad);
        start();
        EXPECT_THAT(waiting(), IsEmpty());
        add("b", once(22, 10, 0));
        center.reset();
        EXPECT_EQ(files.content(statePath + ".unreadable"), bad);
        EXPECT_EQ(decodeNotifications(files.content(statePath).value())->waiting.size(), 1U);
    }
    const auto state = decodeNotifications(good);
    ASSERT_TRUE(state);
    EXPECT_EQ(encodeNotifications(*state), good);
}

TEST_F(PendingNotificationsTest, LosesOnlyTheEntriesThatCannotBeRead) {
    add("shown", once(22, 9, 1));
    waitUntil("2026-11-22T09:02:00");
    add("a", once(22, 10, 0));
    center.reset();
    const std::string good = files.content(statePath).value();
    const auto with = [&](const std::string& list, const std::string& entry) {
        std::string text = good;
        const std::string start = "\"" + list + "\":[";
        return text.insert(text.find(start) + start.size(), entry + ",");
    };
    const auto waitingWith = [&](const std::string& trigger, const std::string& next) {
        return with("waiting", R"({"identifier":"b","title":"","body":"","userInfo":{},"trigger":{"repeats":true,)" +
                                   trigger + R"(},"next":)" + next + "}");
    };
    EXPECT_EQ(decodeNotifications(waitingWith(R"("hour":1)", "[2026,11,22,1,2,3]"))->waiting.size(), 2U);
    for (const std::string& bad : std::vector<std::string>{
             with("waiting", "{}"),
             with("waiting", "null"),
             with("shown", "1"),
             waitingWith(R"("month":13)", "[2026,11,22,1,2,3]"),
             waitingWith(R"("hour":1)", "[2026,2,30,1,2,3]"),
             waitingWith(R"("hour":1)", "[27894,2,3,1,2,3]"),
             waitingWith(R"("hour":1e99)", "[2026,2,3,1,2,3]"),
         }) {
        const auto state = decodeNotifications(bad);
        ASSERT_TRUE(state) << bad;
        EXPECT_EQ(encodeNotifications(*state), good) << bad;
    }
}

TEST_F(PendingNotificationsTest, ARequestForNoCalendarsYearCostsNoOther) {
    const Instant farAway = at("2026-11-22T09:00:00") + 26000.0 * 366 * 86400;
    add("due", once(22, 10, 0));
    CalendarTrigger trigger = once(22, 10, 0);
    trigger.year = LocalCalendar(platform.clock).civilTime(farAway).day.year;
    trigger.month = LocalCalendar(platform.clock).civilTime(farAway).day.month;
    trigger.day = LocalCalendar(platform.clock).civilTime(farAway).day.day;
    trigger.hour = LocalCalendar(platform.clock).civilTime(farAway).hour;
    center->add({"far", "Title", "far", {}, trigger, std::nullopt, farAway});
    platform.time.runPending();
    EXPECT_THAT(waiting(), ElementsAre("due"));
    restartAt("2026-11-22T11:00:00");
    EXPECT_THAT(log, ElementsAre("due at 11-22 11:00:00"));
}

TEST_F(PendingNotificationsTest, WritesAgainWhenTheDiskWasFull) {
    files.freeBytes = 0;
    add("a", once(22, 12, 0));
    EXPECT_FALSE(files.content(statePath));
    files.freeBytes = 1 << 20;
    platform.time.advance(61);
    EXPECT_EQ(decodeNotifications(files.content(statePath).value())->waiting.size(), 1U);
}

}  // namespace
}  // namespace sunpane
