#pragma once

#include "linux/players/PlayerDirectory.h"
#include "linux/players/PlayerWatcher.h"
#include "platform/RunningApplications.h"
#include "platform/UserDefaults.h"

namespace sunpane {

/// The applications that scripts address. Spotify and the Music application run while they have a player on the session
/// bus, the browser while it listens on its DevTools port. Main thread only.
class PlayerApplications : public RunningApplications {
public:
    /// All outlive it.
    PlayerApplications(const PlayerDirectory& directory, PlayerWatcher& watcher, const UserDefaults& defaults)
        : directory_(directory), watcher_(watcher), defaults_(defaults) {}

    bool loaded() const override;
    bool isRunning(std::string_view bundleIdentifier) const override;
    /// A player that runs is asked to show itself. Spotify is started otherwise; which program the Music application
    /// would be while none runs, nobody knows.
    void open(std::string_view bundleIdentifier) override;

private:
    const PlayerDirectory& directory_;
    PlayerWatcher& watcher_;
    const UserDefaults& defaults_;
};

}  // namespace sunpane
