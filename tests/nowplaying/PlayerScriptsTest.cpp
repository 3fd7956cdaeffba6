#include "nowplaying/PlayerScripts.h"

#include <gtest/gtest.h>

#include <limits>

namespace sunpane::player_scripts {
namespace {

// The applications at the other end understand these texts and no others, so every character counts.
TEST(PlayerScriptsTest, AreSentCharacterByCharacter) {
    EXPECT_EQ(query(Player::spotify),
              "tell application \"Spotify\"\n    if player state is stopped then return \"stopped\"\n"
              "    set s to player state as text\n    set t to name of current track\n"
              "    set a to artist of current track\n    set art to artwork url of current track\n"
              "    return s & \"|||\" & t & \"|||\" & a & \"|||\" & art\nend tell");
    EXPECT_EQ(query(Player::music),
              "tell application \"Music\"\n    if player state is stopped then return \"stopped\"\n"
              "    set s to player state as text\n    set t to name of current track\n"
              "    set a to artist of current track\n    return s & \"|||\" & t & \"|||\" & a\nend tell");
    EXPECT_EQ(scanTabs(),
              "tell application \"Google Chrome\"\n    set out to \"\"\n    set wIdx to 0\n"
              "    repeat with w in windows\n        set wIdx to wIdx + 1\n        set aIdx to active tab index of w\n"
              "        set tIdx to 0\n        repeat with t in tabs of w\n            set tIdx to tIdx + 1\n"
              "            set act to \"0\"\n            if tIdx is aIdx then set act to \"1\"\n"
              "            set out to out & wIdx & \"|||\" & tIdx & \"|||\" & act & \"|||\" & (id of t) & \"|||\" & "
              "(URL of t) & \"|||\" & (title of t) & \"\\n\"\n        end repeat\n    end repeat\n"
              "    return out\nend tell");
    EXPECT_EQ(runInTab(17, togglePlaybackSnippet()),
              "tell application \"Google Chrome\"\n    repeat with w in windows\n        repeat with t in tabs of w\n"
              "            if (id of t as text) is \"17\" then\n                return execute t javascript \""
              "var v=document.querySelector('video,audio'); v ? (v.paused ? (v.play(),'ok') : (v.pause(),'ok')) : "
              "'novideo'\"\n            end if\n        end repeat\n    end repeat\n    return \"gone\"\nend tell");
    EXPECT_EQ(showTab(std::numeric_limits<std::int64_t>::max()),
              "tell application \"Google Chrome\"\n    set wIdx to 0\n    repeat with w in windows\n"
              "        set wIdx to wIdx + 1\n        set tIdx to 0\n        repeat with t in tabs of w\n"
              "            set tIdx to tIdx + 1\n            if (id of t as text) is \"9223372036854775807\" then\n"
              "                set active tab index of w to tIdx\n                set index of w to 1\n"
              "                activate\n                return \"ok\"\n            end if\n        end repeat\n"
              "    end repeat\nend tell");
    EXPECT_EQ(command(Player::spotify, Command::playPause), "tell application \"Spotify\" to playpause");
    EXPECT_EQ(command(Player::music, Command::nextTrack), "tell application \"Music\" to next track");
    EXPECT_EQ(command(Player::music, Command::previousTrack), "tell application \"Music\" to previous track");
    EXPECT_EQ(readOutputMuted(), "output muted of (get volume settings)");
    EXPECT_EQ(setOutputMuted(true), "set volume with output muted");
    EXPECT_EQ(setOutputMuted(false), "set volume without output muted");
}

}  // namespace
}  // namespace sunpane::player_scripts
