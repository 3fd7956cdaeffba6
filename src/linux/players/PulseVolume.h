#pragma once

#include <memory>
#include <optional>

#include "linux/players/Deadline.h"

namespace sunpane {

/// Whether the sound output that the user listens to is mute. PulseAudio, or PipeWire in its place. One thread at a
/// time.
///
/// Keeps its connection, which is quiet while nothing is asked.
class PulseVolume {
public:
    PulseVolume();
    ~PulseVolume();

    /// Nothing when there is no sound server or output, and when it does not answer until `deadline`.
    std::optional<bool> muted(Deadline deadline);
    /// False when it could not be done until then.
    bool setMuted(bool muted, Deadline deadline);

private:
    class Connection;
    /// Null when there is no sound server.
    Connection* connection(Deadline deadline);
    std::unique_ptr<Connection> connection_;
};

}  // namespace sunpane
