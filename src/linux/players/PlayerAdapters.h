#pragma once

#include "linux/players/PlayerApplications.h"
#include "linux/players/PlayerDirectory.h"
#include "linux/players/PlayerScriptRunner.h"
#include "linux/players/PlayerWatcher.h"
#include "linux/players/PulseAudioProcesses.h"
#include "platform/UserDefaults.h"

namespace sunpane {

/// Everything through which the program sees and controls what plays, ready to be handed to those who need it. Owned by
/// the start-up code, made and destroyed on the main thread; `scripts` is for the script queue, which is over by then.
struct PlayerAdapters {
    /// The settings outlive it.
    explicit PlayerAdapters(const UserDefaults& defaults)
        : watcher(directory), scripts(directory, defaults), applications(directory, watcher, defaults) {}

    PlayerDirectory directory;
    PlayerWatcher watcher;
    /// Also the media commands.
    PlayerScriptRunner scripts;
    PlayerApplications applications;
    PulseAudioProcesses audio;
};

}  // namespace sunpane
