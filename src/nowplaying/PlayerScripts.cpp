#include "nowplaying/PlayerScripts.h"

#include <cassert>

namespace sunpane::player_scripts {
namespace {

constexpr std::string_view querySpotify = R"(tell application "Spotify"
    if player state is stopped then return "stopped"
    set s to player state as text
    set t to name of current track
    set a to artist of current track
    set art to artwork url of current track
    return s & "|||" & t & "|||" & a & "|||" & art
end tell)";

constexpr std::string_view queryMusic = R"(tell application "Music"
    if player state is stopped then return "stopped"
    set s to player state as text
    set t to name of current track
    set a to artist of current track
    return s & "|||" & t & "|||" & a
end tell)";

constexpr std::string_view scan = R"(tell application "Google Chrome"
    set out to ""
    set wIdx to 0
    repeat with w in windows
        set wIdx to wIdx + 1
        set aIdx to active tab index of w
        set tIdx to 0
        repeat with t in tabs of w
            set tIdx to tIdx + 1
            set act to "0"
            if tIdx is aIdx then set act to "1"
            set out to out & wIdx & "|||" & tIdx & "|||" & act & "|||" & (id of t) & "|||" & (URL of t) & "|||" & (title of t) & "\n"
        end repeat
    end repeat
    return out
end tell)";

constexpr std::string_view runBeforeID = R"(tell application "Google Chrome"
    repeat with w in windows
        repeat with t in tabs of w
            if (id of t as text) is ")";
constexpr std::string_view runAfterID = R"(" then
                return execute t javascript ")";
constexpr std::string_view runAfterSnippet = R"("
            end if
        end repeat
    end repeat
    return "gone"
end tell)";

constexpr std::string_view showBeforeID = R"(tell application "Google Chrome"
    set wIdx to 0
    repeat with w in windows
        set wIdx to wIdx + 1
        set tIdx to 0
        repeat with t in tabs of w
            set tIdx to tIdx + 1
            if (id of t as text) is ")";
constexpr std::string_view showAfterID = R"(" then
                set active tab index of w to tIdx
                set index of w to 1
                activate
                return "ok"
            end if
        end repeat
    end repeat
end tell)";

constexpr std::string_view toggleSnippet =
    "var v=document.querySelector('video,audio'); v ? (v.paused ? (v.play(),'ok') : (v.pause(),'ok')) : 'novideo'";

constexpr std::string_view verb(Command command) {
    switch (command) {
        case Command::playPause:
            return "playpause";
        case Command::nextTrack:
            return "next track";
        case Command::previousTrack:
            break;
    }
    return "previous track";
}

}  // namespace

std::string_view query(Player player) {
    assert(player != Player::youtube);
    return player == Player::spotify ? querySpotify : queryMusic;
}

std::string command(Player player, Command command) {
    assert(player != Player::youtube);
    std::string script = "tell application \"";
    script.append(applicationName(player)).append("\" to ").append(verb(command));
    return script;
}

std::string_view scanTabs() {
    return scan;
}

std::string runInTab(std::int64_t tabID, std::string_view javaScript) {
    assert(javaScript.find_first_of("\"\\") == std::string_view::npos);
    std::string script(runBeforeID);
    script.append(std::to_string(tabID)).append(runAfterID).append(javaScript).append(runAfterSnippet);
    return script;
}

std::string_view togglePlaybackSnippet() {
    return toggleSnippet;
}

std::string showTab(std::int64_t tabID) {
    std::string script(showBeforeID);
    script.append(std::to_string(tabID)).append(showAfterID);
    return script;
}

std::string_view readOutputMuted() {
    return "output muted of (get volume settings)";
}

std::string setOutputMuted(bool muted) {
    return std::string("set volume ") + (muted ? "with" : "without") + " output muted";
}

}  // namespace sunpane::player_scripts
