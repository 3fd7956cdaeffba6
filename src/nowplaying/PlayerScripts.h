#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "nowplaying/Track.h"

/// Every script that the program sends to another application. Nothing that another program said goes into one, but
/// for the number of a browser tab.
namespace sunpane::player_scripts {

/// Stands between the parts of a reply.
inline constexpr std::string_view separator = "|||";
/// What a player that has nothing loaded replies.
inline constexpr std::string_view stopped = "stopped";
/// What the snippet for a tab replies when it did its work.
inline constexpr std::string_view ok = "ok";

enum class Command { playPause, nextTrack, previousTrack };

/// Asks a native player (not a browser tab) for its state, title, artist and, from Spotify, the cover's address.
std::string_view query(Player player);

/// Tells a native player to do something.
std::string command(Player player, Command command);

/// Lists every tab of every browser window, one a line: window, tab, "1" if active, id, address, title.
std::string_view scanTabs();

/// Runs a snippet of JavaScript, free of double quotes and backslashes, in the tab with that id. Replies what the
/// snippet did, or "gone" without such a tab.
std::string runInTab(std::int64_t tabID, std::string_view javaScript);

/// Toggles the first video or sound of a page; replies "ok", or "novideo" without one.
std::string_view togglePlaybackSnippet();

/// Brings the tab with that id and its window to the front.
std::string showTab(std::int64_t tabID);

/// Whether the sound output is muted, as a Boolean.
std::string_view readOutputMuted();

std::string setOutputMuted(bool muted);

}  // namespace sunpane::player_scripts
