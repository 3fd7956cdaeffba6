#include "linux/players/PlayerDirectory.h"

#include <gtest/gtest.h>

#include "linux/players/PlayerText.h"
#include "linux/players/PulseAudioProcesses.h"

namespace sunpane {
namespace {

std::string player(const std::string& name) {
    return std::string(PlayerDirectory::namePrefix) + name;
}

TEST(PlayerDirectory, TellsSpotifyTheUsersOtherPlayerAndBrowsersApart) {
    PlayerDirectory directory;
    for (const char* name : {"chromium.instance12", "firefox.instance_1_7", "playerctld", "spotify", "spotifyish"})
        directory.appeared(player(name), "");
    directory.appeared("org.mpris.MediaPlayer2.", "");
    directory.appeared("org.example.Other", "");
    EXPECT_EQ(directory.spotify(), player("spotify"));
    EXPECT_EQ(directory.music(), player("spotifyish"));
    directory.disappeared(player("spotifyish"));
    EXPECT_EQ(directory.music(), std::nullopt);
    directory.disappeared(player("spotify"));
    EXPECT_EQ(directory.spotify(), std::nullopt);
    directory.clear();
    EXPECT_EQ(directory.lastPlayed(), std::nullopt);
}

TEST(PlayerDirectory, MusicIsThePlayerThatPlayedLast) {
    PlayerDirectory directory;
    directory.appeared(player("a"), ":1.1");
    directory.appeared(player("b"), ":1.2");
    directory.appeared(player("c"), "");
    directory.setOwnerPlaying(":1.2", true);
    EXPECT_EQ(directory.music(), player("b"));
    directory.setOwnerPlaying(":1.1", true);
    EXPECT_EQ(directory.music(), player("a"));
    // What still plays comes before what has stopped.
    directory.setOwnerPlaying(":1.1", false);
    EXPECT_EQ(directory.music(), player("b"));
    directory.setOwnerPlaying(":1.2", false);
    EXPECT_EQ(directory.music(), player("b"));
    // Being paused again, or by a stranger, is no news.
    directory.setOwnerPlaying(":1.1", false);
    directory.setOwnerPlaying(":1.9", true);
    EXPECT_EQ(directory.music(), player("b"));
    directory.setPlaying(player("c"), ":1.3", true);
    directory.setOwnerPlaying(":1.3", false);
    EXPECT_EQ(directory.music(), player("c"));
    // The media keys reach browsers too.
    directory.appeared(player("firefox.instance1"), ":1.4");
    directory.setOwnerPlaying(":1.4", true);
    EXPECT_EQ(directory.music(), player("c"));
    EXPECT_EQ(directory.lastPlayed(), player("firefox.instance1"));
}

TEST(PlayerDirectory, IsBounded) {
    PlayerDirectory directory;
    for (int i = 0; i < 1000; ++i)
        directory.appeared(player("p" + std::to_string(1000 + i)), ":1." + std::to_string(i));
    directory.setOwnerPlaying(":1.999", true);
    EXPECT_EQ(directory.music(), player("p1000"));
    directory.appeared(player("p1001"), ":2.1");
    directory.setOwnerPlaying(":2.1", true);
    EXPECT_EQ(directory.music(), player("p1001"));
}

TEST(PlayerText, IsFitForAReply) {
    const struct {
        std::string said;
        std::string text;
    } cases[] = {
        {"", ""},
        {"plain – ünï", "plain – ünï"},
        {"two\nlines\r\n\ttab", "two lines   tab"},
        {std::string("nul\0esc\x1b[2J", 10), "nul esc [2"},
        {"\xc2\x85\xe2\x80\xa8next", "  next"},
        {"a|b||c|||d||||||e", "a|b||c||d||e"},
        {"\xff|\xc3", "\xef\xbf\xbd|\xef\xbf\xbd"},
    };
    for (const auto& test : cases)
        EXPECT_EQ(playerText(test.said), test.text);
    EXPECT_EQ(playerText(std::string(1'000'000, 'x')).size(), maximumPlayerText);
}

TEST(PulseAudioProcesses, KnowsBrowsersByTheirPrograms) {
    EXPECT_EQ(bundleOfProgram("chromium", ""), "com.google.Chrome");
    EXPECT_EQ(bundleOfProgram("chrome", "other"), "com.google.Chrome");
    EXPECT_EQ(bundleOfProgram("mpv", "io.mpv.Mpv"), "io.mpv.Mpv");
    EXPECT_EQ(bundleOfProgram("chromedriver", ""), "");
}

}  // namespace
}  // namespace sunpane
