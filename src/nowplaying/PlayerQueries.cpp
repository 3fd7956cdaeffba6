#include "nowplaying/PlayerQueries.h"

#include <algorithm>
#include <utility>

#include "nowplaying/ChromeTabs.h"
#include "nowplaying/PlayerScripts.h"
#include "nowplaying/ReplyText.h"

namespace sunpane::player_queries {
namespace {

std::optional<std::string> runForText(ScriptRunner& scripts, std::string_view source) {
    auto value = scripts.run(source);
    if (!value) return std::nullopt;
    auto* text = std::get_if<std::string>(&*value);
    if (text == nullptr) return std::nullopt;
    return std::move(*text);
}

}  // namespace

std::optional<Track> query(ScriptRunner& scripts, Player player) {
    if (player == Player::youtube) return std::nullopt;
    const auto reply = runForText(scripts, player_scripts::query(player));
    if (!reply || *reply == player_scripts::stopped) return std::nullopt;
    const auto parts = splitReply(*reply);
    if (parts.size() < 3) return std::nullopt;
    Track track;
    track.title = boundedReplyText(parts[1]);
    track.artist = boundedReplyText(parts[2]);
    track.playing = parts[0] == "playing";
    track.player = player;
    if (parts.size() > 3 && !parts[3].empty() && parts[3].size() <= chrome_tabs::maximumAddress) {
        track.artworkURL = parts[3];
    }
    return track;
}

std::optional<Track> queryYouTube(ScriptRunner& scripts) {
    const auto reply = runForText(scripts, player_scripts::scanTabs());
    if (!reply) return std::nullopt;
    const auto tabs = chrome_tabs::parse(*reply);
    const auto* tab = chrome_tabs::pick(tabs);
    if (tab == nullptr) return std::nullopt;
    return chrome_tabs::trackOf(*tab);
}

std::optional<std::string> chromeRunJS(ScriptRunner& scripts, std::int64_t tabID, std::string_view javaScript) {
    return runForText(scripts, player_scripts::runInTab(tabID, javaScript));
}

bool outputMuted(ScriptRunner& scripts) {
    const auto value = scripts.run(player_scripts::readOutputMuted());
    return value && *value == ScriptValue(true);
}

Look look(ScriptRunner& scripts, const Situation& situation) {
    std::vector<Track> native;
    for (const Player player : situation.runningNative) {
        if (auto track = query(scripts, player)) native.push_back(std::move(*track));
    }
    Look result;
    const auto playing = std::find_if(native.begin(), native.end(), [](const Track& track) { return track.playing; });
    if (playing != native.end()) {
        result.track = std::move(*playing);
    } else if (situation.chromeRuns && (situation.chromeAudible || situation.showsChromeTab)) {
        result.track = queryYouTube(scripts);
        if (result.track) result.track->playing = situation.chromeAudible;
    }
    if (!result.track && !native.empty()) result.track = std::move(native.front());
    result.outputMuted = outputMuted(scripts);
    return result;
}

}  // namespace sunpane::player_queries
