#pragma once

#include <memory>
#include <string_view>

#include "platform/AudioProcesses.h"

namespace sunpane {

/// Who plays sound, from PulseAudio, or PipeWire in its place.
///
/// Main thread only. The sound server's news arrive on a thread of its own, which sleeps while nobody begins or ceases
/// to play. A server that went away is looked for again when the list is asked for.
class PulseAudioProcesses : public AudioProcesses {
public:
    PulseAudioProcesses();
    ~PulseAudioProcesses() override;

    bool loaded() const override;
    std::optional<std::vector<AudioProcess>> list() const override;

private:
    class Listener;
    std::unique_ptr<Listener> listener_;
};

/// The bundle identifier of a program by the name of its file; for a program that has none, what it calls itself, which
/// may be nothing.
std::string_view bundleOfProgram(std::string_view file, std::string_view ownName);

}  // namespace sunpane
