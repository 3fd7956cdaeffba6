#pragma once

#include <optional>
#include <string_view>
#include <vector>

#include "linux/players/SoundServer.h"
#include "platform/AudioProcesses.h"

namespace sunpane {

/// Who plays sound, from PulseAudio, or PipeWire in its place.
class PulseAudioProcesses : public AudioProcesses {
public:
    std::optional<std::vector<AudioProcess>> list() override;

private:
    SoundAccess sound_;
};

/// The bundle identifier of a program by the name of its file; for a program that has none, what it calls itself, which
/// may be nothing.
std::string_view bundleOfProgram(std::string_view file, std::string_view ownName);

}  // namespace sunpane
