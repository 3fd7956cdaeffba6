#pragma once

#include "cli/Command.h"

namespace sunpane::cli {

/// Shows what the panel would show as playing. Nothing: one line on `err`, or `null` as JSON, and `negative`.
int runPlaying(Arguments arguments, Environment& environment);

/// Each of these controls what is playing as the panel's buttons do. `negative`, with one line on `err`, when there is
/// nothing to control.
int runPlayPause(Arguments arguments, Environment& environment);
int runNext(Arguments arguments, Environment& environment);
int runPrevious(Arguments arguments, Environment& environment);

/// Mutes the sound output, or lets it be heard again, and says which. `negative`, with one line on `err`, when the
/// output cannot be muted.
int runMute(Arguments arguments, Environment& environment);

inline constexpr Command playingCommand{
    .name = "playing", .usage = "[--json]", .summary = "Shows what is playing.", .run = runPlaying};
inline constexpr Command playPauseCommand{
    .name = "play-pause", .usage = "", .summary = "Pauses what is playing, or plays on.", .run = runPlayPause};
inline constexpr Command nextCommand{
    .name = "next", .usage = "", .summary = "Skips to the next track.", .run = runNext};
inline constexpr Command previousCommand{
    .name = "previous", .usage = "", .summary = "Goes back to the previous track.", .run = runPrevious};
inline constexpr Command muteCommand{
    .name = "mute", .usage = "", .summary = "Mutes the sound output, or lets it be heard again.", .run = runMute};

}  // namespace sunpane::cli
