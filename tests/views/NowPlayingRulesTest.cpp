#include "views/NowPlayingRules.h"

#include <gtest/gtest.h>

namespace sunpane::now_playing_rules {
namespace {

TEST(NowPlayingRules, EachSourceHasItsButtonsAndTooltip) {
    const struct {
        Player player;
        bool playing;
        bool muted;
        const char* symbols;
        const char* tooltip;
    } cases[] = {
        {Player::spotify, true, false, "backward.fill 10, pause.fill 12, forward.fill 10, speaker.wave.2.fill 10, ",
         "Open Spotify"},
        {Player::music, false, true, "backward.fill 10, play.fill 12, forward.fill 10, speaker.slash.fill 10, ",
         "Open Music"},
        {Player::youtube, true, true, "pause.fill 12, speaker.slash.fill 10, ", "Open this tab in Chrome"},
        {Player::youtube, false, false, "play.fill 12, speaker.wave.2.fill 10, ", "Open this tab in Chrome"},
    };
    for (const auto& c : cases) {
        Track track;
        track.player = c.player;
        track.playing = c.playing;
        std::string symbols;
        for (const auto& button : transportButtons(track, c.muted)) {
            symbols += std::string(button.symbol) + " " + std::to_string(static_cast<int>(button.symbolSize)) + ", ";
        }
        EXPECT_EQ(symbols, c.symbols);
        EXPECT_EQ(coverTooltip(track), c.tooltip);
    }
}

}  // namespace
}  // namespace sunpane::now_playing_rules
