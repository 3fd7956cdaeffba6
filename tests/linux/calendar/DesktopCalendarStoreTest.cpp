#include "linux/calendar/DesktopCalendarStore.h"

#include <gmock/gmock.h>
#include <sys/stat.h>

#include <filesystem>
#include <semaphore>
#include <set>
#include <string>
#include <vector>

#include "base/Dates.h"
#include "linux/calendar/CalendarReader.h"
#include "linux/system/InotifyFolderEvents.h"
#include "linux/system/PosixFileSystem.h"
#include "linux/system/ThreadWorkQueue.h"
#include "support/SimulatedFolderEvents.h"
#include "support/SimulatedPlatform.h"
#include "support/SimulatedUserDefaults.h"
#include "support/TemporaryFolder.h"

namespace sunpane {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Pair;
using ::testing::UnorderedElementsAre;

std::string oneEvent(const std::string& title, const std::string& extra = "") {
    return "BEGIN:VCALENDAR\nBEGIN:VEVENT\nUID:" + title + "\nSUMMARY:" + title +
           "\nDTSTART:20261123T100000Z\nDTEND:20261123T110000Z\n" + extra + "END:VEVENT\nEND:VCALENDAR\n";
}

/// A calendar service that answers when the test says so.
class FakeService : public CalendarService {
public:
    struct State {
        std::function<void()> changed;
        std::vector<std::function<void(std::optional<std::vector<Calendar>>)>> reads;
        std::vector<std::pair<std::string, std::function<void(Added)>>> adds;
        std::vector<CancelFlag> cancelFlags;
    };
    explicit FakeService(State& state) : state_(state) {}
    void read(std::function<void(std::optional<std::vector<Calendar>>)> done) override {
        state_.reads.push_back(std::move(done));
    }
    void add(const std::string& text, CancelFlag cancelled, std::function<void(Added)> done) override {
        state_.cancelFlags.push_back(std::move(cancelled));
        state_.adds.emplace_back(text, std::move(done));
    }

private:
    State& state_;
};

/// Real files, some of which cannot be read for a while.
class FailingFiles : public PosixFileSystem {
public:
    FileReading read(const std::string& path, std::size_t maximumBytes) const override {
        if (unreadable.contains(path)) return {FileReading::Status::unreadable, "", {}};
        return PosixFileSystem::read(path, maximumBytes);
    }
    std::set<std::string> unreadable;
};

class DesktopCalendarStoreTest : public ::testing::Test {
protected:
    DesktopCalendarStoreTest() { std::filesystem::create_directory(calendars); }

    DesktopCalendarStore& open(bool withService = false) {
        DesktopCalendarStore::Ports ports{platform.clock, platform.runLoop, platform.queues, folderEvents,
                                          files,          defaults,         calendars,       nullptr,
                                          nullptr,        std::nullopt};
        ports.prompt = [this](const std::function<void(CalendarAccess)>& answer) { prompts.push_back(answer); };
        if (withService) {
            ports.makeService = [this](std::function<void()> changed) {
                service.changed = std::move(changed);
                return std::make_unique<FakeService>(service);
            };
        }
        store = std::make_unique<DesktopCalendarStore>(ports);
        subscription = store->observeChanges([this] { ++changes; });
        return *store;
    }

    void grant() { defaults.set(DesktopCalendarStore::accessKey, std::string("fullAccess")); }
    /// With access, after the first look into the folder.
    void openGranted(bool withService = false) {
        grant();
        open(withService);
        platform.time.runPending();
    }
    std::vector<CalendarEvent> fortnight() const {
        return store->events(platform.clock.now(), platform.clock.now() + 14 * 86400.0);
    }

    void write(const std::string& name, const std::string& text) { folder.write("calendars/" + name, text); }

    std::vector<std::string> titles() {
        std::vector<std::string> found;
        for (const auto& event : fortnight())
            found.push_back(event.title.value_or("-") + "@" + event.calendar->title);
        return found;
    }

    testing::TemporaryFolder folder;
    std::string calendars = folder / "calendars";
    testing::SimulatedPlatform platform;
    testing::SimulatedFolderEvents folderEvents;
    testing::SimulatedUserDefaults defaults;
    FailingFiles files;
    FakeService::State service;
    std::vector<std::function<void(CalendarAccess)>> prompts;
    int changes = 0;
    std::unique_ptr<DesktopCalendarStore> store;
    Subscription subscription;
};

TEST_F(DesktopCalendarStoreTest, AsksOnceAndRemembersTheAnswer) {
    struct Case {
        CalendarAccess answer;
        const char* kept;
        bool granted;
    };
    const Case cases[] = {{CalendarAccess::full, "fullAccess", true},
                          {CalendarAccess::writeOnly, "writeOnly", false},
                          {CalendarAccess::denied, "denied", false},
                          {CalendarAccess::restricted, "restricted", false}};
    for (const auto& each : cases) {
        SCOPED_TRACE(each.kept);
        defaults.values.clear();
        prompts.clear();
        DesktopCalendarStore& calendarStore = open();
        EXPECT_EQ(calendarStore.access(), CalendarAccess::notDetermined);
        std::vector<bool> answers;
        const auto ask = [&] { calendarStore.requestFullAccess([&](bool granted) { answers.push_back(granted); }); };
        ask();
        ask();
        ASSERT_EQ(prompts.size(), 2U);  // the second only brings the question to the front
        prompts[0](each.answer);
        ask();
        platform.time.runPending();
        EXPECT_THAT(answers, ElementsAre(each.granted, each.granted, each.granted));
        EXPECT_EQ(prompts.size(), 2U);
        EXPECT_EQ(defaults.read<std::string>(DesktopCalendarStore::accessKey).value, each.kept);
        EXPECT_EQ(open().access(), each.answer);
    }
}

TEST_F(DesktopCalendarStoreTest, ShowsNothingWithoutAccess) {
    write("work.ics", oneEvent("A"));
    open();
    EXPECT_FALSE(store->loaded());
    EXPECT_THAT(titles(), IsEmpty());
    grant();
    EXPECT_FALSE(store->loaded());
    platform.time.runPending();
    EXPECT_TRUE(store->loaded());
    EXPECT_EQ(changes, 1);
    EXPECT_THAT(titles(), ElementsAre("A@work"));
    defaults.set(DesktopCalendarStore::accessKey, std::string("denied"));
    EXPECT_THAT(titles(), IsEmpty());
    EXPECT_THAT(store->calendars(), IsEmpty());
    std::optional<std::string> added = "pending";
    store->add({"x", platform.clock.now(), platform.clock.now() + 60},
               [&](const auto& identifier) { added = identifier; });
    platform.time.runPending();
    EXPECT_EQ(added, std::nullopt);
    grant();
    platform.time.advance(1);
    EXPECT_FALSE(store->loaded());
    platform.time.advance(1);
    EXPECT_THAT(titles(), ElementsAre("A@work"));
}

TEST_F(DesktopCalendarStoreTest, FollowsFilesAndFoldersThatComeAndGo) {
    write("work.ics", oneEvent("A"));
    std::filesystem::create_directory(calendars + "/Home");
    write("Home/1.ics", oneEvent("B"));
    write("Home/notes.txt", oneEvent("not a calendar"));
    openGranted();
    EXPECT_THAT(titles(), ElementsAre("B@Home", "A@work"));
    EXPECT_THAT(store->calendars(),
                ElementsAre(CalendarInfo{"ics:Home", "Home", false}, CalendarInfo{"ics:work.ics", "work", false}));

    write("Home/2.ics", "BEGIN:VCALENDAR\nX-WR-CALNAME:House\n" + oneEvent("C"));
    folderEvents.tell(calendars + "/Home", "2.ics");
    folderEvents.tell(calendars + "/Home", "2.ics");
    platform.time.advance(CalendarReader::settleTime);
    EXPECT_THAT(titles(), ElementsAre("B@House", "C@House", "A@work"));
    EXPECT_EQ(changes, 2);

    platform.time.advance(10 * CalendarReader::pollInterval);
    EXPECT_EQ(changes, 2) << "nothing changed";

    std::filesystem::rename(calendars, folder / "elsewhere");
    platform.time.advance(CalendarReader::pollInterval);
    EXPECT_THAT(titles(), IsEmpty());
    std::filesystem::rename(folder / "elsewhere", calendars);
    platform.time.advance(CalendarReader::pollInterval);
    EXPECT_THAT(titles(), ElementsAre("B@House", "C@House", "A@work"));
}

TEST_F(DesktopCalendarStoreTest, NoticesWhenTheFolderIsMade) {
    std::filesystem::remove(calendars);
    openGranted();
    EXPECT_THAT(titles(), IsEmpty());
    std::filesystem::create_directory(calendars);
    write("work.ics", oneEvent("A"));
    folderEvents.tell(calendars.substr(0, calendars.rfind('/')), "calendars");
    platform.time.advance(CalendarReader::settleTime);
    EXPECT_THAT(titles(), ElementsAre("A@work"));
    EXPECT_EQ(folderEvents.watcherCount(), 1U) << "the folder above is of no more interest";
}

TEST_F(DesktopCalendarStoreTest, PassesOverWhatIsNoFileOfTheUsers) {
    folder.write("outside.ics", oneEvent("outside"));
    write("good.ics", oneEvent("good"));
    write(".hidden.ics", oneEvent("hidden"));
    std::filesystem::create_symlink(folder / "outside.ics", calendars + "/linked.ics");
    std::filesystem::create_directory(calendars + "/Home");
    std::filesystem::create_symlink(folder / "outside.ics", calendars + "/Home/planted.ics");
    std::filesystem::create_symlink("/dev/zero", calendars + "/zero.ics");
    ASSERT_EQ(mkfifo((calendars + "/fifo.ics").c_str(), 0600), 0);
    std::filesystem::resize_file(folder / "outside.ics", std::filesystem::file_size(folder / "outside.ics"));
    write("huge.ics", oneEvent("huge"));
    std::filesystem::resize_file(calendars + "/huge.ics", maximumCalendarFileSize + 1);
    write("broken.ics", "BEGIN:VCALENDAR\nBEGIN:VEVENT\nDTSTART:");
    openGranted();
    EXPECT_THAT(titles(), ElementsAre("good@good", "outside@linked"));
}

TEST_F(DesktopCalendarStoreTest, AnswersForTheDaysAroundTodayWhereverTodayMoves) {
    write("daily.ics", oneEvent("D", "RRULE:FREQ=DAILY\n"));
    openGranted();
    EXPECT_EQ(titles().size(), 13U);
    platform.time.jumpWallClock(platform.clock.now() + 3650 * 86400.0);
    EXPECT_THAT(titles(), IsEmpty());
    EXPECT_EQ(changes, 1);
    platform.time.runPending();
    EXPECT_EQ(changes, 2);
    EXPECT_EQ(titles().size(), 14U);
    const auto identifier = store->events(platform.clock.now(), platform.clock.now() + 2 * 86400.0)[0].identifier;
    EXPECT_EQ(identifier.substr(0, 17), "ics:daily.ics:D/2") << identifier;
    platform.time.advance(40 * 86400.0);
    EXPECT_EQ(titles().size(), 14U);
}

TEST_F(DesktopCalendarStoreTest, FollowsTheUserIntoAnotherZone) {
    write("day.ics", "BEGIN:VEVENT\nUID:d\nDTSTART;VALUE=DATE:20261124\nEND:VEVENT\n");
    openGranted();
    const auto start = [&] {
        return iso8601Utc(*store->events(platform.clock.now(), platform.clock.now() + 7 * 86400.0).at(0).start);
    };
    EXPECT_EQ(start(), "2026-11-23T23:00:00Z");
    platform.clock.zone = "America/New_York";
    platform.time.advance(CalendarReader::pollInterval);
    EXPECT_EQ(start(), "2026-11-24T05:00:00Z");
}

TEST_F(DesktopCalendarStoreTest, WritesNewEventsToACalendarOfItsOwn) {
    grant();
    open();
    std::optional<std::string> identifier;
    const Instant start = platform.clock.now() + 86400;
    store->add({"Call; them", start, start + 1800}, [&](const auto& given) { identifier = given; });
    platform.time.runPending();
    const auto events = fortnight();
    ASSERT_EQ(events.size(), 1U);
    EXPECT_EQ(events[0].identifier, identifier);
    EXPECT_EQ(events[0].title, "Call; them");
    EXPECT_EQ(events[0].start, start);
    EXPECT_EQ(events[0].end, start + 1800);
    EXPECT_EQ(events[0].calendar->title, "Dawnly");

    std::filesystem::remove_all(calendars);
    folder.write("calendars", "a file where the folder was");
    store->add({"lost", start, start + 1800}, [&](const auto& given) { identifier = given; });
    platform.time.runPending();
    EXPECT_EQ(identifier, std::nullopt);
}

CalendarService::Calendar serviceCalendar(const std::string& identifier, std::optional<std::string> text) {
    return {{identifier, identifier, false}, std::move(text)};
}

TEST_F(DesktopCalendarStoreTest, PutsTheServicesCalendarsBesideItsOwn) {
    write("work.ics", oneEvent("A"));
    openGranted(true);
    EXPECT_FALSE(store->loaded()) << "the first answer waits for the service";
    ASSERT_EQ(service.reads.size(), 1U);
    service.reads[0]({{serviceCalendar("s1", oneEvent("B")), serviceCalendar("s2", oneEvent("C"))}});
    platform.time.runPending();
    EXPECT_THAT(titles(), ElementsAre("A@work", "B@s1", "C@s2"));

    service.changed();
    service.changed();
    platform.time.advance(CalendarReader::settleTime);
    ASSERT_EQ(service.reads.size(), 2U);
    service.changed();
    platform.time.advance(CalendarReader::settleTime);
    EXPECT_EQ(service.reads.size(), 2U) << "one question at a time";
    // One calendar cannot be read for now, one is gone.
    service.reads[1]({{serviceCalendar("s1", std::nullopt), serviceCalendar("s3", std::nullopt)}});
    platform.time.runPending();
    EXPECT_THAT(titles(), ElementsAre("A@work", "B@s1"));
    EXPECT_EQ(service.reads.size(), 3U) << "it changed while it was read";
}

TEST_F(DesktopCalendarStoreTest, GoesOnWithoutAServiceThatHangs) {
    write("work.ics", oneEvent("A"));
    grant();
    open(true);
    platform.time.advance(CalendarReader::servicePatience);
    EXPECT_THAT(titles(), ElementsAre("A@work"));
    platform.time.advance(CalendarReader::serviceTimeout + CalendarReader::pollInterval);
    ASSERT_GE(service.reads.size(), 2U) << "it is asked again";
    service.reads[0]({{serviceCalendar("s1", oneEvent("late"))}});
    platform.time.runPending();
    EXPECT_THAT(titles(), ElementsAre("A@work", "late@s1"));

    std::optional<std::optional<std::string>> added;
    store->add({"x", platform.clock.now(), platform.clock.now() + 60},
               [&](const auto& identifier) { added = identifier; });
    platform.time.runPending();
    ASSERT_EQ(service.cancelFlags.size(), 1U);
    EXPECT_FALSE(*service.cancelFlags[0]);
    platform.time.advance(CalendarReader::serviceTimeout);
    EXPECT_TRUE(*service.cancelFlags[0]) << "it is not written after all";
    ASSERT_TRUE(added) << "nobody waits for ever";
    EXPECT_EQ(*added, std::nullopt);
    store.reset();
    service.reads.back()(std::nullopt);
    service.adds[0].second({});
    service.changed();
    platform.time.runPending();
}

TEST_F(DesktopCalendarStoreTest, KnowsWhichEventsItCannotTellOf) {
    grant();
    open(true);
    platform.time.advance(CalendarReader::servicePatience);
    EXPECT_TRUE(store->loaded());
    EXPECT_THAT(store->unread(), ElementsAre("eds:")) << "the service has not answered";
    const auto answer = [&](std::optional<std::vector<CalendarService::Calendar>> answered) {
        service.reads.back()(std::move(answered));
        platform.time.runPending();
    };
    answer(std::nullopt);
    EXPECT_THAT(store->unread(), ElementsAre("eds:")) << "it did not start in time";
    platform.time.advance(CalendarReader::firstRetry);
    answer({{serviceCalendar("eds:s1", oneEvent("A")), serviceCalendar("eds:s2", std::nullopt)}});
    EXPECT_THAT(titles(), ElementsAre("A@eds:s1"));
    EXPECT_THAT(store->unread(), ElementsAre("eds:s2:")) << "one calendar was never read";
    platform.time.advance(2 * CalendarReader::firstRetry);
    answer({{serviceCalendar("eds:s1", oneEvent("A")), serviceCalendar("eds:s2", oneEvent("B"))}});
    EXPECT_THAT(store->unread(), IsEmpty());
    service.changed();
    platform.time.advance(CalendarReader::settleTime);
    answer({{serviceCalendar("eds:s1", std::nullopt), serviceCalendar("eds:s2", oneEvent("B"))}});
    EXPECT_THAT(titles(), ElementsAre("A@eds:s1", "B@eds:s2"));
    EXPECT_THAT(store->unread(), IsEmpty()) << "what was read before still counts";
}

TEST_F(DesktopCalendarStoreTest, TellsOfNothingThatIsAsItWas) {
    openGranted(true);
    std::vector<CalendarService::Calendar> answer{serviceCalendar("s1", oneEvent("A")),
                                                  serviceCalendar("broken", std::nullopt)};
    service.reads.back()(answer);
    platform.time.runPending();
    EXPECT_EQ(changes, 1);
    // The broken calendar is tried again and again.
    for (std::size_t i = 1; i < 6; ++i) {
        platform.time.advance(CalendarReader::longestRetry);
        ASSERT_GT(service.reads.size(), i);
        service.reads.back()(answer);
    }
    platform.time.runPending();
    EXPECT_EQ(changes, 1);
    answer[0].text = oneEvent("A", "LOCATION:Room 1\n");
    service.changed();
    platform.time.advance(CalendarReader::settleTime);
    service.reads.back()(answer);
    platform.time.runPending();
    EXPECT_EQ(changes, 2);
}

TEST_F(DesktopCalendarStoreTest, AsksAgainForACalendarThatCannotBeWatched) {
    openGranted(true);
    std::vector<CalendarService::Calendar> answer{serviceCalendar("s1", oneEvent("A"))};
    answer[0].isWatched = false;
    service.reads.back()(answer);
    platform.time.advance(CalendarReader::firstRetry);
    ASSERT_EQ(service.reads.size(), 2U);
    answer = {serviceCalendar("s1", oneEvent("B"))};
    service.reads.back()(answer);
    platform.time.advance(CalendarReader::longestRetry);
    EXPECT_THAT(titles(), ElementsAre("B@s1"));
    EXPECT_EQ(service.reads.size(), 2U) << "from now on it tells";
}

TEST_F(DesktopCalendarStoreTest, KeepsWhatItReadOfAFileThatCannotBeRead) {
    write("work.ics", oneEvent("A"));
    write("new.ics", oneEvent("B"));
    files.unreadable = {calendars + "/new.ics"};
    openGranted();
    EXPECT_THAT(titles(), ElementsAre("A@work"));
    EXPECT_THAT(store->unread(), ElementsAre("ics:new.ics:"));
    const auto events = fortnight();
    EXPECT_TRUE(events.at(0).identifier.starts_with("ics:work.ics:")) << events.at(0).identifier;
    files.unreadable = {calendars + "/work.ics"};
    write("work.ics", oneEvent("A2"));
    platform.time.advance(CalendarReader::pollInterval);
    EXPECT_THAT(titles(), ElementsAre("B@new", "A@work"));
    EXPECT_THAT(store->unread(), IsEmpty());
    files.unreadable.clear();
    platform.time.advance(CalendarReader::pollInterval);
    EXPECT_THAT(titles(), ElementsAre("B@new", "A2@work"));
}

TEST_F(DesktopCalendarStoreTest, WritesNewEventsToTheServiceWhenItHasACalendarForThem) {
    using Outcome = CalendarService::Added::Outcome;
    openGranted(true);
    service.reads[0](std::vector<CalendarService::Calendar>{});
    std::vector<std::optional<std::string>> added;
    const auto add = [&] {
        store->add({"Title", platform.clock.now() + 60, platform.clock.now() + 120},
                   [&](const auto& identifier) { added.push_back(identifier); });
        platform.time.runPending();
    };
    add();
    ASSERT_EQ(service.adds.size(), 1U);
    EXPECT_THAT(service.adds[0].first, ::testing::HasSubstr("SUMMARY:Title"));
    service.adds[0].second({Outcome::added, "s1", "given"});
    add();
    service.adds[1].second({Outcome::failed, "", ""});
    add();
    EXPECT_FALSE(std::filesystem::exists(calendars + "/Dawnly"));
    service.adds[2].second({Outcome::noCalendar, "", ""});
    platform.time.runPending();
    ASSERT_EQ(added.size(), 3U);
    EXPECT_EQ(added[0], "s1:given");
    EXPECT_EQ(added[1], std::nullopt);
    EXPECT_THAT(titles(), ElementsAre("Title@Dawnly"));
}

// The same on real threads and files, for the sanitizers to watch.
TEST_F(DesktopCalendarStoreTest, ReadsOnARealQueue) {
    write("daily.ics", oneEvent("D", "RRULE:FREQ=DAILY\n"));
    ThreadWorkQueueFactory queues;
    InotifyFolderEvents realEvents;
    for (int i = 0; i < 20; ++i) {
        DesktopCalendarStore real({platform.clock, platform.runLoop, queues, realEvents, files, defaults, calendars,
                                   nullptr, nullptr, CalendarAccess::full});
        if (i % 2 == 0) continue;  // gone while it reads
        ASSERT_TRUE(real.loadNow(30));
        EXPECT_EQ(real.events(platform.clock.now(), platform.clock.now() + 14 * 86400.0).size(), 13U);
    }
}

/// Files whose reading hangs until it is let go.
class HangingFiles : public PosixFileSystem {
public:
    FileReading read(const std::string& path, std::size_t maximumBytes) const override {
        reached.release();
        letGo.acquire();
        return PosixFileSystem::read(path, maximumBytes);
    }
    mutable std::counting_semaphore<8> reached{0};
    mutable std::counting_semaphore<8> letGo{0};
};

/// A main loop that never turns. Any thread.
class StandingRunLoop : public RunLoop {
public:
    void post(Task) override {}
    Subscription after(Seconds, Task) override { return {}; }
    Subscription every(Seconds, Task) override { return {}; }
};

TEST_F(DesktopCalendarStoreTest, WaitsForNoReadingWhenAccessIsTakenBack) {
    write("work.ics", oneEvent("A"));
    ThreadWorkQueueFactory queues;
    InotifyFolderEvents realEvents;
    HangingFiles hanging;
    StandingRunLoop standing;
    grant();
    DesktopCalendarStore real(
        {platform.clock, standing, queues, realEvents, hanging, defaults, calendars, nullptr, nullptr, std::nullopt});
    hanging.reached.acquire();
    defaults.set(DesktopCalendarStore::accessKey, std::string("denied"));
    // Would never return if it waited.
    EXPECT_FALSE(real.loaded());
    hanging.letGo.release();
    grant();
    EXPECT_FALSE(real.loaded()) << "what was read before counts no more";
    hanging.reached.acquire();
    hanging.letGo.release();
    EXPECT_TRUE(real.loadNow(30));
    EXPECT_EQ(real.events(platform.clock.now(), platform.clock.now() + 14 * 86400.0).size(), 1U);
}

}  // namespace
}  // namespace sunpane
