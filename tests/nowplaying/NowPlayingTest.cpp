#include "nowplaying/NowPlaying.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "support/SimulatedPlatform.h"
#include "support/SimulatedPlayers.h"

namespace sunpane {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::SizeIs;

constexpr const char* song = "1|||1|||1|||41|||https://soundcloud.com/a|||Tab song\n";
constexpr const char* songCover = "https://www.google.com/s2/favicons?domain=soundcloud.com&sz=128";

struct NowPlayingTest : ::testing::Test {
    testing::SimulatedPlatform platform;
    testing::SimulatedWorkQueue queue{platform.time, NowPlaying::queueLabel};
    testing::SimulatedScripts scripts;
    testing::SimulatedApplications applications;
    testing::SimulatedAudio audio;
    testing::SimulatedMediaCommands mediaCommands;
    testing::SimulatedArtwork covers;
    std::optional<NowPlaying> nowPlaying;

    void SetUp() override { make(queue); }
    void make(WorkQueue& scriptQueue) {
        nowPlaying.emplace(NowPlaying::Collaborators{platform.runLoop, scriptQueue, scripts, applications, audio,
                                                     mediaCommands, covers});
    }
    void run(Player player, const std::string& reply) {
        applications.running.emplace(bundleIdentifier(player));
        scripts.reply(player, reply);
    }
    void runChrome(const std::string& tabs, bool audible) {
        applications.running.emplace("com.google.Chrome");
        scripts.replyTabs(tabs);
        audio.processes = {{"com.apple.other", true}, {"com.google.Chrome.helper", audible}};
    }
    void poll() {
        nowPlaying->poll();
        platform.time.runPending();
    }
    // The title shown, with "paused" or "playing"; "nothing" without a track.
    std::string shown() const {
        const auto& track = nowPlaying->track();
        return track ? track->title + (track->playing ? " playing" : " paused") : "nothing";
    }
    std::string shownAfterPoll() {
        poll();
        return shown();
    }
};

TEST_F(NowPlayingTest, ChoosesTheSourceByPriority) {
    EXPECT_EQ(shownAfterPoll(), "nothing");
    run(Player::music, "paused|||M|||b");
    EXPECT_EQ(shownAfterPoll(), "M paused");
    run(Player::spotify, "paused|||S|||a|||https://c/1");
    EXPECT_EQ(shownAfterPoll(), "S paused");
    runChrome(song, false);
    EXPECT_EQ(shownAfterPoll(), "S paused") << "a silent browser is not even asked";
    EXPECT_THAT(scripts.sent, Not(Contains(std::string(player_scripts::scanTabs()))));
    runChrome(song, true);
    EXPECT_EQ(shownAfterPoll(), "Tab song playing");
    EXPECT_EQ(nowPlaying->track()->artist, "soundcloud.com");
    EXPECT_EQ(nowPlaying->track()->artworkURL, songCover);
    EXPECT_EQ(nowPlaying->lastAudibleSource(), Player::youtube);
    runChrome(song, false);
    EXPECT_EQ(shownAfterPoll(), "Tab song paused") << "a tab that is shown stays";
    run(Player::music, "playing|||M|||b");
    EXPECT_EQ(shownAfterPoll(), "M playing");
    EXPECT_EQ(nowPlaying->lastAudibleSource(), Player::music);
    run(Player::spotify, "playing|||S|||a|||https://c/1");
    EXPECT_EQ(shownAfterPoll(), "S playing");
    EXPECT_EQ(*nowPlaying->track(), (Track{"S", "a", true, "https://c/1", Player::spotify, 0, 0, 0, {}}));
    run(Player::spotify, "stopped");
    run(Player::music, "stopped");
    EXPECT_EQ(shownAfterPoll(), "nothing") << "no tab was shown, and the browser is silent";
    EXPECT_EQ(nowPlaying->lastAudibleSource(), Player::spotify);
}

TEST_F(NowPlayingTest, AudioOfTheBrowserCountsWhateverHelperMakesIt) {
    const struct {
        std::optional<std::vector<AudioProcess>> processes;
        bool audible;
    } cases[] = {
        {{{{"com.google.Chrome", true}}}, true},
        {{{{"com.google.Chrome.helper", false}, {"com.google.ChromeX", true}}}, true},
        {{{{"com.google.Chrome", false}, {"org.google.Chrome", true}, {"", true}}}, false},
        {{{}}, false},
        {std::nullopt, false},
    };
    runChrome(song, false);
    for (const auto& [processes, audible] : cases) {
        audio.processes = processes;
        make(queue);
        EXPECT_EQ(shownAfterPoll(), audible ? "Tab song playing" : "nothing");
    }
    applications.running.clear();
    audio.processes = {{"com.google.Chrome", true}};
    EXPECT_EQ(shownAfterPoll(), "nothing");
}

TEST_F(NowPlayingTest, RepliesThatAreNoTrackGiveNone) {
    runChrome("nonsense", true);
    EXPECT_EQ(shownAfterPoll(), "nothing");
    for (const char* reply : {"", "stopped", "playing", "playing|||Title"}) {
        run(Player::music, reply);
        EXPECT_EQ(shownAfterPoll(), "nothing") << reply;
    }
    scripts.replies[std::string(player_scripts::query(Player::music))] = true;
    EXPECT_EQ(shownAfterPoll(), "nothing");
    run(Player::music, "Playing||||||");
    EXPECT_EQ(shownAfterPoll(), " paused");
    run(Player::spotify, "playing|||T|||A|||");
    poll();
    EXPECT_EQ(nowPlaying->track()->artworkURL, std::nullopt);
}

TEST_F(NowPlayingTest, ScriptsGoOnlyToApplicationsThatRun) {
    poll();
    EXPECT_THAT(scripts.sent, IsEmpty());
    run(Player::music, "playing|||M|||b");
    poll();
    EXPECT_THAT(scripts.sent, ElementsAre(player_scripts::query(Player::music), player_scripts::readOutputMuted()));
}

TEST_F(NowPlayingTest, LooksEveryTwoSecondsWhileThePanelIsOpenOnly) {
    run(Player::music, "playing|||M|||b");
    const auto looks = [&] { return scripts.timesSent(player_scripts::query(Player::music)); };
    nowPlaying->setActive(true);
    platform.time.runPending();
    EXPECT_EQ(looks(), 1U);
    platform.time.advance(1.999);
    EXPECT_EQ(looks(), 1U);
    platform.time.advance(0.001);
    EXPECT_EQ(looks(), 2U);
    platform.time.advance(1);
    nowPlaying->setActive(true);  // begins the interval anew
    platform.time.advance(1.999);
    EXPECT_EQ(looks(), 3U);
    nowPlaying->setActive(false);
    EXPECT_EQ(platform.time.pendingCount(), 0U) << "nothing wakes the program up";
    platform.time.advance(3600);
    EXPECT_EQ(looks(), 3U);
    EXPECT_EQ(shown(), "M playing") << "kept for the next opening";
}

TEST_F(NowPlayingTest, PlayPauseOfAPlayerShowsAtOnceAndIsCheckedSoonAfter) {
    run(Player::music, "paused|||M|||b");
    poll();
    scripts.sent.clear();
    nowPlaying->playPause();
    EXPECT_EQ(shown(), "M playing");
    platform.time.advance(0.399);
    EXPECT_THAT(scripts.sent, ElementsAre("tell application \"Music\" to playpause"));
    platform.time.advance(0.001);
    EXPECT_EQ(shown(), "M paused") << "the player did not follow";
    nowPlaying->command(NowPlaying::Command::nextTrack);
    EXPECT_EQ(shown(), "M paused");
    run(Player::music, "playing|||N|||b");
    platform.time.advance(0.4);
    EXPECT_EQ(shown(), "N playing");
    EXPECT_THAT(scripts.sent, Contains("tell application \"Music\" to next track"));
    EXPECT_EQ(platform.time.pendingCount(), 0U);
}

TEST_F(NowPlayingTest, WithoutATrackCommandsDoNothing) {
    nowPlaying->playPause();
    nowPlaying->command(NowPlaying::Command::nextTrack);
    nowPlaying->openSource();
    platform.time.advance(1);
    EXPECT_THAT(scripts.sent, IsEmpty());
    EXPECT_THAT(applications.opened, IsEmpty());
}

TEST_F(NowPlayingTest, PlayPauseOfATabFallsBackToTheMediaKey) {
    const std::string toggle = player_scripts::runInTab(41, player_scripts::togglePlaybackSnippet());
    runChrome(song, true);
    poll();
    const auto press = [&](std::optional<std::string> reply) {
        scripts.replies.erase(toggle);
        if (reply) scripts.replies[toggle] = *reply;
        const std::string before = shown();
        const int toggles = mediaCommands.toggles;
        nowPlaying->playPause();
        EXPECT_NE(shown(), before);
        platform.time.advance(1);
        EXPECT_NE(shown(), before) << "until the next look";
        return mediaCommands.toggles - toggles;
    };
    EXPECT_EQ(press("ok"), 0);
    for (const auto& reply :
         {std::optional<std::string>("gone"), std::optional<std::string>("novideo"), std::optional<std::string>()}) {
        EXPECT_EQ(press(reply), 1);
    }
    audio.processes.reset();
    poll();
    ASSERT_EQ(shown(), "Tab song paused");
    EXPECT_EQ(press("gone"), 1) << "it was the last to play";
    EXPECT_EQ(scripts.timesSent(toggle), 5U);
}

TEST_F(NowPlayingTest, ATabCannotSkip) {
    runChrome(song, true);
    poll();
    scripts.sent.clear();
    nowPlaying->command(NowPlaying::Command::nextTrack);
    nowPlaying->command(NowPlaying::Command::playPause);
    platform.time.advance(1);
    EXPECT_THAT(scripts.sent, IsEmpty());
    EXPECT_EQ(shown(), "Tab song playing");
}

TEST_F(NowPlayingTest, OpensTheSource) {
    run(Player::spotify, "playing|||S|||a");
    poll();
    nowPlaying->openSource();
    run(Player::spotify, "stopped");
    run(Player::music, "playing|||M|||b");
    poll();
    nowPlaying->openSource();
    EXPECT_THAT(applications.opened, ElementsAre("com.spotify.client", "com.apple.Music"));
    run(Player::music, "stopped");
    runChrome(song, true);
    poll();
    nowPlaying->openSource();
    platform.time.runPending();
    EXPECT_EQ(scripts.sent.back(), player_scripts::showTab(41));
    EXPECT_THAT(applications.opened, SizeIs(2));
}

TEST_F(NowPlayingTest, MuteFollowsTheSystem) {
    run(Player::music, "playing|||M|||b");
    poll();
    EXPECT_FALSE(nowPlaying->outputMuted());
    nowPlaying->toggleMute();
    EXPECT_FALSE(nowPlaying->outputMuted());
    platform.time.runPending();
    EXPECT_TRUE(nowPlaying->outputMuted());
    EXPECT_TRUE(scripts.muted);
    scripts.muted = false;  // another program
    poll();
    EXPECT_FALSE(nowPlaying->outputMuted());
    scripts.muted = true;
    nowPlaying->toggleMute();
    platform.time.runPending();
    EXPECT_FALSE(scripts.muted) << "what counts is the system's state, not what was last seen";
    EXPECT_FALSE(nowPlaying->outputMuted());
    scripts.hasVolume = false;
    scripts.muted = true;
    poll();
    EXPECT_FALSE(nowPlaying->outputMuted());
}

TEST_F(NowPlayingTest, AnnouncesEachChangeBeforeItTakesEffectAndNothingElse) {
    std::vector<std::string> before;
    const auto subscription =
        nowPlaying->onWillChange([&] { before.push_back(shown() + (nowPlaying->outputMuted() ? ", muted" : "")); });
    run(Player::music, "playing|||M|||b");
    scripts.muted = true;
    poll();
    EXPECT_THAT(before, ElementsAre("nothing", "M playing"));
    poll();
    EXPECT_THAT(before, SizeIs(2));
    applications.running.clear();
    nowPlaying->poll();
    EXPECT_EQ(shown(), "nothing") << "needs no script, so it does not wait for the queue";
    EXPECT_THAT(before, ElementsAre("nothing", "M playing", "M playing, muted"));
}

TEST_F(NowPlayingTest, CoversArriveLaterAndOnlyForTheTrackShown) {
    const auto showCover = [&](const std::string& url) {
        run(Player::spotify, "playing|||S|||a" + (url.empty() ? "" : "|||" + url));
        poll();
    };
    showCover("u1");
    EXPECT_EQ(nowPlaying->artwork(), nullptr);
    covers.arrive("u1", testing::pixel(1));
    EXPECT_EQ(*nowPlaying->artwork(), *testing::pixel(1));
    showCover("u2");
    EXPECT_EQ(nowPlaying->artwork(), nullptr);
    showCover("u3");
    covers.arrive("u2", testing::pixel(2));
    EXPECT_EQ(nowPlaying->artwork(), nullptr) << "the cover of another track";
    covers.arrive("u3", nullptr);
    poll();
    EXPECT_THAT(covers.requests, IsEmpty()) << "a failure is not tried again at every look";
    showCover("u2");
    EXPECT_EQ(*nowPlaying->artwork(), *testing::pixel(2)) << "from memory, at once";
    showCover("");
    EXPECT_EQ(nowPlaying->artwork(), nullptr);
    showCover("u3");
    EXPECT_THAT(covers.requests, SizeIs(1)) << "tried again after another one";
    nowPlaying.reset();
    covers.arrive("u3", testing::pixel(3));
}

TEST_F(NowPlayingTest, MemoryOfCoversBeginsAnewAboveTwentyFour) {
    const auto show = [&](int cover) {
        run(Player::spotify, "playing|||S|||a|||u" + std::to_string(cover));
        poll();
        const bool isFetched = !covers.requests.empty();
        if (isFetched) covers.arrive("u" + std::to_string(cover), testing::pixel(9));
        return isFetched;
    };
    for (int cover = 1; cover <= 25; ++cover)
        EXPECT_TRUE(show(cover));
    EXPECT_FALSE(show(1)) << "twenty-five are kept";
    EXPECT_TRUE(show(26));
    EXPECT_FALSE(show(26));
    EXPECT_TRUE(show(25)) << "the twenty-sixth found too many";
}

struct StuckPlayersTest : NowPlayingTest {
    testing::HeldWorkQueue held;
    void SetUp() override { make(held); }
};

TEST_F(StuckPlayersTest, PollsDoNotPileUp) {
    run(Player::music, "playing|||M|||b");
    nowPlaying->setActive(true);
    platform.time.advance(3600);
    EXPECT_THAT(held.tasks, SizeIs(2));
    held.runOne();
    platform.time.advance(1.999);
    EXPECT_EQ(shown(), "M playing");
    EXPECT_THAT(held.tasks, SizeIs(1));
    platform.time.advance(0.001);
    EXPECT_THAT(held.tasks, SizeIs(2));
    nowPlaying->setActive(false);
    held.drain();
    platform.time.advance(3600);
    EXPECT_THAT(held.tasks, IsEmpty());
}

TEST_F(StuckPlayersTest, EachPollPublishesItsOwnResultInOrder) {
    run(Player::music, "playing|||M|||b");
    nowPlaying->poll();
    nowPlaying->poll();
    held.runOne();
    run(Player::music, "playing|||N|||b");
    held.runOne();
    std::vector<std::string> before;
    const auto subscription = nowPlaying->onWillChange([&] { before.push_back(shown()); });
    platform.time.runPending();
    EXPECT_THAT(before, ElementsAre("nothing", "M playing"));
    EXPECT_EQ(shown(), "N playing");
}

TEST_F(StuckPlayersTest, AnAnswerThatComesAfterThePlayersHaveQuitIsOldNews) {
    run(Player::music, "playing|||M|||b");
    nowPlaying->poll();
    applications.running.clear();
    nowPlaying->poll();
    held.drain();
    platform.time.runPending();
    EXPECT_EQ(shown(), "nothing");
    EXPECT_EQ(nowPlaying->lastAudibleSource(), std::nullopt);
    run(Player::music, "playing|||M|||b");
    nowPlaying->poll();
    held.drain();
    platform.time.runPending();
    EXPECT_EQ(shown(), "M playing");
}

TEST_F(StuckPlayersTest, APausedTabThatDidNotPlayLastGetsNoMediaKey) {
    const auto finish = [&] {
        held.drain();
        platform.time.runPending();
    };
    runChrome(song, true);
    nowPlaying->poll();
    finish();
    runChrome(song, false);
    run(Player::spotify, "playing|||S|||a");
    nowPlaying->poll();
    nowPlaying->poll();
    held.runOne();
    run(Player::spotify, "stopped");
    finish();
    ASSERT_EQ(shown(), "Tab song paused");
    ASSERT_EQ(nowPlaying->lastAudibleSource(), Player::spotify);
    nowPlaying->playPause();
    finish();
    EXPECT_EQ(mediaCommands.toggles, 0);
    nowPlaying->playPause();  // shown as playing by the first click
    finish();
    EXPECT_EQ(mediaCommands.toggles, 1);
}

TEST_F(StuckPlayersTest, ClicksDoNotPileUp) {
    run(Player::music, "playing|||M|||b");
    nowPlaying->poll();
    held.drain();
    platform.time.runPending();
    for (int click = 0; click < 8; ++click)
        nowPlaying->playPause();
    EXPECT_EQ(shown(), "M playing");
    nowPlaying->playPause();
    nowPlaying->toggleMute();
    EXPECT_EQ(shown(), "M playing") << "nothing is shown that will not happen";
    EXPECT_THAT(held.tasks, SizeIs(8));
    held.runOne();
    platform.time.runPending();
    nowPlaying->playPause();
    EXPECT_EQ(shown(), "M paused");
}

TEST_F(StuckPlayersTest, OnceItIsGoneNoScriptIsBegunAndNoResultArrives) {
    run(Player::spotify, "playing|||S|||a");
    nowPlaying->poll();
    held.drain();
    nowPlaying.reset();  // the result is on its way to the main loop
    platform.time.runPending();
    make(held);
    nowPlaying->poll();
    nowPlaying->toggleMute();
    scripts.sent.clear();
    nowPlaying.reset();
    held.drain();
    platform.time.runPending();
    EXPECT_THAT(scripts.sent, IsEmpty());
}

}  // namespace
}  // namespace sunpane
