#pragma once

#include <optional>

#include "linux/players/Deadline.h"
#include "linux/players/SoundServer.h"

namespace sunpane {

/// Whether the sound output that the user listens to is mute. PulseAudio, or PipeWire in its place. One thread at a
/// time.
class PulseVolume {
public:
    /// Nothing when there is no sound server or output, and when it does not answer until `deadline`.
    std::optional<bool> muted(Deadline deadline);
    /// False when it could not be done until then.
    bool setMuted(bool muted, Deadline deadline);

private:
    SoundAccess sound_;
};

}  // namespace sunpane
