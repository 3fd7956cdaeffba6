#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "nowplaying/Track.h"

/// What the now-playing strip shows for a track, and what its buttons do. Lengths in points.
namespace sunpane::now_playing_rules {

/// The side of the square around a button's symbol that takes clicks.
inline constexpr double hitArea = 22;

enum class Action { previousTrack, playPause, nextTrack, toggleMute };

/// A button of the strip; a plain value.
struct TransportButton {
    /// Tells the buttons apart: "prev", "play", "next" or "mute".
    std::string_view key;
    std::string_view symbol;
    double symbolSize = 0;
    /// For its tooltip and its accessible name.
    std::string_view label;
    Action action = Action::playPause;
    friend bool operator==(const TransportButton&, const TransportButton&) = default;
};

/// The buttons from left to right. A browser tab has no other tracks to go to.
std::vector<TransportButton> transportButtons(const Track& track, bool outputMuted);

/// What a click on the cover does.
std::string coverTooltip(const Track& track);

}  // namespace sunpane::now_playing_rules
