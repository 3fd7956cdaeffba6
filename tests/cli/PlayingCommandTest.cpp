#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "cli/Command.h"
#include "linux/system/ThreadWorkQueue.h"
#include "support/CommandFixture.h"
#include "support/SimulatedPlayers.h"

namespace sunpane::cli {
namespace {

using ::testing::HasSubstr;

struct PlayingCommandTest : testing::CommandFixture {
    testing::SimulatedScripts scripts;
    testing::SimulatedApplications applications;
    testing::SimulatedAudio audio;
    testing::SimulatedMediaCommands mediaCommands;
    PlayerPorts ports{scripts, applications, audio, mediaCommands};
    bool isConnected = true;
    int waits = 0;
    // After how many waits the first look of the ports is done.
    int readyAfter = 0;

    int run(std::vector<std::string> arguments) {
        waits = 0;
        applications.isLoaded = readyAfter == 0;
        Environment surroundings = environment();
        surroundings.wait = [this](Seconds) {
            if (++waits == readyAfter) applications.isLoaded = true;
        };
        if (isConnected) {
            surroundings.connectPlayers = [this] { return std::make_shared<const PlayerPorts>(ports); };
        }
        return runIn(std::move(surroundings), arguments);
    }
    void play(Player player, const std::string& reply) {
        applications.running.emplace(bundleIdentifier(player));
        scripts.reply(player, reply);
    }
    void playTab() {
        applications.running.emplace("com.google.Chrome");
        audio.processes = {{"com.google.Chrome", true}};
        scripts.replyTabs("1|||2|||1|||41|||https://www.youtube.com/watch?v=x|||Film - YouTube\n");
    }
};

TEST_F(PlayingCommandTest, ShowsAllOfTheTrackOrThatThereIsNone) {
    EXPECT_EQ(run({"playing"}), negative);
    EXPECT_EQ(out.str(), "");
    EXPECT_EQ(err.str(), "dawnlyctl playing: nothing is playing\n");
    EXPECT_EQ(run({"playing", "--json"}), negative);
    EXPECT_EQ(out.str(), "null\n");
    play(Player::spotify, "playing|||A\x1b[2J\nB|||\u202E\u009BC|||https://c/1");
    EXPECT_EQ(run({"playing"}), success);
    EXPECT_EQ(out.str().find('\x1b'), std::string::npos);
    EXPECT_THAT(out.str(), HasSubstr("(Spotify, playing)\n"));
    EXPECT_EQ(out.str().find('\n'), out.str().size() - 1);
    EXPECT_EQ(run({"playing", "--json"}), success);
    EXPECT_EQ(out.str(),
              "{\"title\":\"A\\u001b[2J\\nB\",\"artist\":\"\\u202e\\u009bC\",\"playing\":true,\"artworkURL\":"
              "\"https://c/1\",\"player\":\"spotify\",\"chromeWindow\":0,\"chromeTab\":0,\"chromeTabID\":0,"
              "\"pageURL\":null}\n");
    play(Player::spotify, "stopped");
    playTab();
    EXPECT_EQ(run({"playing", "--json"}), success);
    EXPECT_EQ(nlohmann::json::parse(out.str()),
              (nlohmann::json{{"title", "Film"},
                              {"artist", "YouTube"},
                              {"playing", true},
                              {"artworkURL", "https://i.ytimg.com/vi/x/hqdefault.jpg"},
                              {"player", "youtube"},
                              {"chromeWindow", 1},
                              {"chromeTab", 2},
                              {"chromeTabID", 41},
                              {"pageURL", "https://www.youtube.com/watch?v=x"}}));
}

TEST_F(PlayingCommandTest, ControlsWhatPlays) {
    for (const char* command : {"play-pause", "next", "previous"}) {
        EXPECT_EQ(run({command}), negative);
        EXPECT_THAT(err.str(), HasSubstr("nothing is playing"));
    }
    play(Player::music, "paused|||A|||B");
    EXPECT_EQ(run({"play-pause"}), success);
    EXPECT_EQ(scripts.sent.back(), "tell application \"Music\" to playpause");
    EXPECT_EQ(run({"next"}), success);
    EXPECT_EQ(scripts.sent.back(), "tell application \"Music\" to next track");
    EXPECT_EQ(run({"previous"}), success);
    EXPECT_EQ(scripts.sent.back(), "tell application \"Music\" to previous track");
    playTab();
    EXPECT_EQ(run({"play-pause"}), success);
    EXPECT_EQ(mediaCommands.toggles, 1) << "the tab did not answer";
    EXPECT_EQ(run({"next"}), negative);
    EXPECT_THAT(err.str(), HasSubstr("no other tracks"));
}

TEST_F(PlayingCommandTest, MutesAndUnmutes) {
    EXPECT_EQ(run({"mute"}), success);
    EXPECT_EQ(out.str(), "muted\n");
    EXPECT_TRUE(scripts.muted);
    EXPECT_EQ(run({"mute"}), success);
    EXPECT_EQ(out.str(), "not muted\n");
    EXPECT_FALSE(scripts.muted);
    scripts.hasVolume = false;
    EXPECT_EQ(run({"mute"}), negative);
    EXPECT_EQ(out.str(), "");
    EXPECT_THAT(err.str(), HasSubstr("did not follow"));
}

TEST_F(PlayingCommandTest, WorksAlikeWhenScriptsRunOnAThreadOfTheirOwn) {
    ThreadWorkQueueFactory threads;
    queues = &threads;
    play(Player::music, "playing|||A|||B");
    EXPECT_EQ(run({"playing"}), success);
    EXPECT_EQ(out.str(), "A \u2014 B (Music, playing)\n");
    EXPECT_EQ(run({"next"}), success);
    EXPECT_EQ(scripts.sent.back(), "tell application \"Music\" to next track");
    EXPECT_EQ(run({"mute"}), success);
    EXPECT_EQ(out.str(), "muted\n");
}

TEST_F(PlayingCommandTest, WaitsForTheFirstLookButNotForEver) {
    play(Player::music, "paused|||A|||B");
    readyAfter = 7;
    EXPECT_EQ(run({"playing"}), success);
    EXPECT_EQ(waits, 7);
    readyAfter = 100000;
    EXPECT_EQ(run({"playing"}), success);
    EXPECT_LE(waits, 101);
}

TEST_F(PlayingCommandTest, WrongUsageReachesNoPlayer) {
    play(Player::music, "paused|||A|||B");
    for (const std::vector<std::string>& words :
         std::vector<std::vector<std::string>>{{"playing", "now"}, {"next", "2"}, {"play-pause", "--json"}}) {
        EXPECT_EQ(run(words), failure);
        EXPECT_THAT(err.str(), HasSubstr("usage:"));
    }
    isConnected = false;
    EXPECT_EQ(run({"playing"}), failure);
    EXPECT_EQ(run({"mute"}), failure);
    EXPECT_TRUE(scripts.sent.empty());
}

}  // namespace
}  // namespace sunpane::cli
