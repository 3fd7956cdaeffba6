#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "nowplaying/Track.h"
#include "platform/ScriptRunner.h"

/// What is asked of the players through scripts. Script queue only: every function blocks until it has its replies.
namespace sunpane::player_queries {

/// What a look at the players is based on, as it stood on the main thread when the look was asked for.
struct Situation {
    /// The native players that run, the preferred one first.
    std::vector<Player> runningNative;
    bool chromeRuns = false;
    bool chromeAudible = false;
    /// Whether the track shown at that time is a browser tab.
    bool showsChromeTab = false;
};

struct Look {
    std::optional<Track> track;
    bool outputMuted = false;
};

/// Chooses between a playing native player, a browser tab and a paused native player, in this order. Tabs are only
/// looked at when the browser makes sound or one of them is shown already.
Look look(ScriptRunner& scripts, const Situation& situation);

/// What a native player has loaded; absent for a browser.
std::optional<Track> query(ScriptRunner& scripts, Player player);

/// The browser tab that most likely plays, counted as playing.
std::optional<Track> queryYouTube(ScriptRunner& scripts);

/// Runs a snippet in the tab with that id; absent when it could not run.
std::optional<std::string> chromeRunJS(ScriptRunner& scripts, std::int64_t tabID, std::string_view javaScript);

/// False as well when it cannot be told.
bool outputMuted(ScriptRunner& scripts);

}  // namespace sunpane::player_queries
