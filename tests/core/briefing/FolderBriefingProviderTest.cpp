#include "core/briefing/FolderBriefingProvider.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>

#include "support/SimulatedFileSystem.h"
#include "support/SimulatedFolderEvents.h"
#include "support/SimulatedPlatform.h"
#include "support/SimulatedUserDefaults.h"
#include "support/TemporaryFolder.h"

namespace sunpane {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
namespace fs = std::filesystem;

std::vector<std::string> ids(const std::vector<Briefing>& briefings) {
    std::vector<std::string> result;
    result.reserve(briefings.size());
    for (const auto& briefing : briefings)
        result.push_back(briefing.id);
    return result;
}

std::vector<std::string> names(const std::string& folder) {
    std::vector<std::string> result;
    for (const auto& entry : fs::directory_iterator(folder))
        result.push_back(entry.path().filename());
    std::sort(result.begin(), result.end());
    return result;
}

class FolderBriefingProviderTest : public ::testing::Test {
protected:
    std::unique_ptr<FolderBriefingProvider> makeProvider(const std::string& directory) {
        return std::make_unique<FolderBriefingProvider>(
            directory, FolderBriefingProvider::Ports{platform.clock, platform.queues, events, cloud});
    }

    BriefingProvider::OnUpdate record() {
        return [this](const std::vector<Briefing>& briefings) { deliveries.push_back(ids(briefings)); };
    }

    std::vector<std::string> load() const {
        testing::SimulatedCloudFiles ignored;
        return ids(FolderBriefingProvider::loadBriefings(folder.path(), LocalCalendar(platform.clock), ignored));
    }

    testing::TemporaryFolder folder;
    testing::SimulatedPlatform platform;
    testing::SimulatedFolderEvents events;
    testing::SimulatedCloudFiles cloud;
    std::vector<std::vector<std::string>> deliveries;
};

TEST_F(FolderBriefingProviderTest, LoadsNewestFirst) {
    for (const char* name : {"2026-11-15.md", "2026-11-16.MD", "2026-11-16-evening.md", "notes.md", ".2026-11-14.md",
                             "feedback.json", "2026-11-17.md.icloud", "2026-11-16\nsecond.md"}) {
        folder.write(name, "# T");
    }
    folder.write("2026-11-18.md", "not utf-8 \xFF");
    fs::create_directory(folder / "2026-11-19.md");
    ASSERT_EQ(mkfifo((folder / "2026-11-20.md").c_str(), 0600), 0);
    // Between the evening of the 15th and midnight of the 16th, local time.
    const auto modified = LocalCalendar(platform.clock).startOfDay(CivilDay{2026, 11, 16})->unixTime() - 60;
    const std::array<timespec, 2> times{timespec{static_cast<time_t>(modified), 0},
                                        timespec{static_cast<time_t>(modified), 0}};
    ASSERT_EQ(utimensat(AT_FDCWD, (folder / "notes.md").c_str(), times.data(), 0), 0);

    EXPECT_THAT(load(), ElementsAre("2026-11-16\nsecond.md", "2026-11-16-evening.md", "2026-11-16.MD", "notes.md",
                                    "2026-11-15.md", ".2026-11-14.md"));
}

TEST_F(FolderBriefingProviderTest, AsksForTheContentOfPlaceholders) {
    folder.write(".2026-11-16.md.icloud", "");
    const auto provider = makeProvider(folder.path());
    provider->start(record());
    EXPECT_THAT(cloud.requested, ElementsAre(folder / ".2026-11-16.md.icloud"));
    EXPECT_THAT(deliveries, ElementsAre(IsEmpty()));
}

TEST_F(FolderBriefingProviderTest, CreatesTheFolderAndDeliversBeforeStartReturns) {
    const auto provider = makeProvider(folder / "a/b");
    EXPECT_FALSE(fs::exists(folder / "a"));
    provider->start(record());
    EXPECT_TRUE(fs::is_directory(folder / "a/b"));
    EXPECT_THAT(deliveries, ElementsAre(IsEmpty()));
    EXPECT_EQ(events.watcherCount(), 1U);
}

TEST_F(FolderBriefingProviderTest, ReloadsOnceAfterABurstOfEvents) {
    const auto provider = makeProvider(folder.path());
    provider->start(record());
    folder.write("2026-11-16.md", "# T");
    events.tell(folder.path(), "2026-11-16.md");
    platform.time.advance(0.3);
    events.tell(folder.path(), "2026-11-16.md");
    platform.time.advance(0.3);
    events.tell(folder.path(), "");
    platform.time.advance(0.39);
    EXPECT_EQ(deliveries.size(), 1U);
    platform.time.advance(0.02);
    EXPECT_THAT(deliveries, ElementsAre(IsEmpty(), ElementsAre("2026-11-16.md")));
}

TEST_F(FolderBriefingProviderTest, OnlyBriefingsAndPlaceholdersAreNews) {
    const auto provider = makeProvider(folder.path());
    provider->start(record());
    const std::pair<const char*, bool> cases[] = {{"feedback.json", false}, {"todos.json", false}, {"x.md~", false},
                                                  {"x.MD", true},           {"x.md.icloud", true}, {"", true}};
    for (const auto& [name, isNews] : cases) {
        const std::size_t before = deliveries.size();
        events.tell(folder.path(), name);
        platform.time.advance(0.5);
        EXPECT_EQ(deliveries.size() - before, isNews ? 1U : 0U) << name;
    }
}

TEST_F(FolderBriefingProviderTest, PollsEveryTwentySeconds) {
    events.refuses = true;
    const auto provider = makeProvider(folder.path());
    provider->start(record());
    platform.time.advance(19.9);
    EXPECT_EQ(deliveries.size(), 1U);
    folder.write("2026-11-16.md", "# T");
    platform.time.advance(0.2);
    EXPECT_THAT(deliveries, ElementsAre(IsEmpty(), ElementsAre("2026-11-16.md")));
    platform.time.advance(60);
    EXPECT_EQ(deliveries.size(), 5U);
    // Watching starts as soon as the machine allows it.
    EXPECT_EQ(events.watcherCount(), 0U);
    events.refuses = false;
    platform.time.advance(20);
    EXPECT_EQ(events.watcherCount(), 1U);
}

TEST_F(FolderBriefingProviderTest, FollowsAFolderThatVanishesAndComesBack) {
    const std::string directory = folder / "briefings";
    const auto provider = makeProvider(directory);
    provider->start(record());
    fs::remove(directory);
    events.tell(directory, "");
    events.replace(directory);
    platform.time.advance(25);
    EXPECT_EQ(events.watcherCount(), 0U);
    EXPECT_FALSE(fs::exists(directory));

    fs::create_directory(directory);
    folder.write("briefings/2026-11-16.md", "# T");
    platform.time.advance(20);
    EXPECT_THAT(deliveries.back(), ElementsAre("2026-11-16.md"));
    folder.write("briefings/2026-11-17.md", "# T");
    events.tell(directory, "2026-11-17.md");
    platform.time.advance(0.5);
    EXPECT_THAT(deliveries.back(), ElementsAre("2026-11-17.md", "2026-11-16.md"));
    EXPECT_EQ(events.watcherCount(), 1U);
}

TEST_F(FolderBriefingProviderTest, StopsForGood) {
    auto provider = makeProvider(folder.path());
    provider->stop();
    provider->start(record());
    events.tell(folder.path(), "x.md");
    platform.time.runPending();
    provider->stop();
    provider->stop();
    platform.time.advance(100);
    EXPECT_EQ(deliveries.size(), 1U);
    EXPECT_EQ(events.watcherCount(), 0U);
    EXPECT_EQ(platform.time.pendingCount(), 0U);

    // A subscriber may stop the provider from its first delivery.
    provider->start([&](const std::vector<Briefing>&) { provider->stop(); });
    EXPECT_EQ(platform.time.pendingCount(), 0U);
    EXPECT_EQ(events.watcherCount(), 0U);

    // Let go without being stopped, with an event, a reload and a poll waiting.
    provider->start(record());
    events.tell(folder.path(), "x.md");
    platform.time.runPending();
    events.tell(folder.path(), "y.md");
    provider.reset();
    platform.time.advance(100);
    EXPECT_EQ(deliveries.size(), 2U);
}

TEST_F(FolderBriefingProviderTest, PrunesDatedBriefingsOnly) {
    const LocalCalendar calendar(platform.clock);
    platform.time.jumpWallClock(calendar.settingTime(*calendar.startOfDay(CivilDay{2026, 11, 16}), 9, 0));
    for (const char* name : {"2026-10-17.md", "2026-10-18.md", "notes 2020-01-01.MD", "old-notes.md", "2020-01-01.txt",
                             "2020-13-01.md", "2020-01-01.md.icloud", "kept"}) {
        folder.write(name, "x");
    }
    fs::create_directory(folder / "2020-01-01.md");
    fs::create_directory(folder / "2020-01-02.md");
    folder.write("2020-01-02.md/inside", "x");
    fs::create_symlink("kept", folder / "2020-01-03.md");
    FolderBriefingProvider::cleanupOldBriefings(folder.path(), 30, platform.clock);
    EXPECT_THAT(names(folder.path()),
                ElementsAre("2020-01-01.md", "2020-01-01.md.icloud", "2020-01-01.txt", "2020-01-02.md", "2020-13-01.md",
                            "2026-10-18.md", "kept", "old-notes.md"));
    EXPECT_TRUE(fs::exists(folder / "2020-01-02.md/inside"));
    FolderBriefingProvider::cleanupOldBriefings(folder / "missing", 30, platform.clock);
}

TEST_F(FolderBriefingProviderTest, TheUsersFolderIsTakenAsItIsWritten) {
    testing::SimulatedUserDefaults defaults;
    const auto current = [&] { return FolderBriefingProvider::currentDirectory(defaults); };
    const std::string fallback = FolderBriefingProvider::defaultDirectory();
    EXPECT_TRUE(fallback.ends_with("/Library/Mobile Documents/iCloud~app~dawnly~Dawnly/Documents")) << fallback;
    EXPECT_EQ(current(), fallback);
    for (const UserDefaults::Value& unusable : {UserDefaults::Value(std::string()), UserDefaults::Value(true)}) {
        defaults.set(FolderBriefingProvider::folderDefaultsKey, unusable);
        EXPECT_EQ(current(), fallback);
    }
    defaults.set(FolderBriefingProvider::folderDefaultsKey, std::string("/not/there/~"));
    EXPECT_EQ(current(), "/not/there/~");
}

}  // namespace
}  // namespace sunpane
