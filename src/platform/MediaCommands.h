#pragma once

#include "base/Instant.h"

namespace sunpane {

/// The media keys of the system. Called on the now-playing script queue only.
class MediaCommands {
public:
    /// Sending a command takes no longer (s) than this.
    static constexpr Seconds longestSend = 3;

    virtual ~MediaCommands() = default;

    /// Toggles play and pause of whichever player played last. Blocks until that player was told; nothing happens
    /// without one.
    virtual void togglePlayPause() = 0;
};

}  // namespace sunpane
