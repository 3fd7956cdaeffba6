#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace sunpane {

/// Where sound comes from. `youtube` stands for any browser tab, on whatever site.
enum class Player { spotify, music, youtube };

/// The application's name, as scripts address it and people know it.
constexpr std::string_view applicationName(Player player) {
    switch (player) {
        case Player::spotify:
            return "Spotify";
        case Player::music:
            return "Music";
        case Player::youtube:
            break;
    }
    return "Google Chrome";
}

constexpr std::string_view bundleIdentifier(Player player) {
    switch (player) {
        case Player::spotify:
            return "com.spotify.client";
        case Player::music:
            return "com.apple.Music";
        case Player::youtube:
            break;
    }
    return "com.google.Chrome";
}

/// What is playing, or paused. A plain value; all texts come from other programs.
struct Track {
    std::string title;
    /// For a browser tab "YouTube" or the tab's host.
    std::string artist;
    bool playing = false;
    std::optional<std::string> artworkURL;
    Player player = Player::spotify;
    /// For a browser tab its place, counted from 1, and the browser's stable id for it; otherwise 0.
    std::int64_t chromeWindow = 0;
    std::int64_t chromeTab = 0;
    std::int64_t chromeTabID = 0;
    /// Only for a browser tab.
    std::optional<std::string> pageURL;

    bool isChromeTab() const { return player == Player::youtube; }
    friend bool operator==(const Track&, const Track&) = default;
};

}  // namespace sunpane
