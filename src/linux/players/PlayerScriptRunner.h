#pragma once

#include <chrono>

#include "linux/players/ChromeBrowser.h"
#include "linux/players/PlayerDirectory.h"
#include "linux/players/PulseVolume.h"
#include "linux/players/SessionBus.h"
#include "platform/MediaCommands.h"
#include "platform/ScriptRunner.h"

namespace sunpane {

/// Runs scripts over the desktop's media players, the browser and the sound output, and tells players what the media
/// keys would. Made on any thread; used on the script queue.
class PlayerScriptRunner : public ScriptRunner, public MediaCommands {
public:
    /// How long one script may take, with all that its objects wait for.
    static constexpr std::chrono::milliseconds runTime{2500};

    /// Both outlive the runner.
    PlayerScriptRunner(const PlayerDirectory& directory, const UserDefaults& defaults)
        : directory_(directory), browser_(defaults) {}

    std::optional<ScriptValue> run(std::string_view source) override;
    void togglePlayPause() override;

private:
    class MachineHost;

    const PlayerDirectory& directory_;
    SessionBus bus_;
    ChromeBrowser browser_;
    PulseVolume volume_;
};

}  // namespace sunpane
