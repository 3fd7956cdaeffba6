#include "linux/players/PulseVolume.h"

namespace sunpane {

std::optional<bool> PulseVolume::muted(Deadline deadline) {
    SoundServer* server = sound_.server();
    return server != nullptr ? server->muted(deadline) : std::nullopt;
}

bool PulseVolume::setMuted(bool muted, Deadline deadline) {
    SoundServer* server = sound_.server();
    return server != nullptr && server->setMuted(muted, deadline);
}

}  // namespace sunpane
