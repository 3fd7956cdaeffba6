#include "views/NowPlayingRules.h"

namespace sunpane::now_playing_rules {
namespace {

constexpr double playSize = 12;
constexpr double otherSize = 10;

}  // namespace

std::vector<TransportButton> transportButtons(const Track& track, bool outputMuted) {
    const TransportButton previous{"prev", "backward.fill", otherSize, "Previous track", Action::previousTrack};
    const TransportButton next{"next", "forward.fill", otherSize, "Next track", Action::nextTrack};
    const TransportButton play = track.playing
                                     ? TransportButton{"play", "pause.fill", playSize, "Pause", Action::playPause}
                                     : TransportButton{"play", "play.fill", playSize, "Play", Action::playPause};
    const TransportButton mute =
        outputMuted ? TransportButton{"mute", "speaker.slash.fill", otherSize, "Unmute", Action::toggleMute}
                    : TransportButton{"mute", "speaker.wave.2.fill", otherSize, "Mute", Action::toggleMute};
    if (track.isChromeTab()) return {play, mute};
    return {previous, play, next, mute};
}

std::string coverTooltip(const Track& track) {
    if (track.isChromeTab()) return "Open this tab in Chrome";
    return "Open " + std::string(applicationName(track.player));
}

}  // namespace sunpane::now_playing_rules
