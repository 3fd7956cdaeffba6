#pragma once

#include <chrono>
#include <memory>
#include <string>

#include "linux/players/PlayerDirectory.h"

namespace sunpane {

/// Keeps a directory of the media players on the session bus: who comes, who goes, who begins and ceases to play.
///
/// Owned by whoever owns the adapters; constructed and destroyed on the main thread. It listens on a thread of its own,
/// which sleeps until a player changes; nothing is polled. Without a session bus, and once the bus is gone, there are
/// no players, until one is found when somebody looks again.
class PlayerWatcher {
public:
    /// How long a new player may take to say whether it plays.
    static constexpr std::chrono::milliseconds answerTime{1000};

    /// The directory outlives the watcher.
    explicit PlayerWatcher(PlayerDirectory& directory);
    ~PlayerWatcher();

    /// Somebody is about to read the directory: looks for the bus again if it is gone. Returns at once, so that players
    /// on a new bus are there the next time.
    void look();

    /// Asks a player to bring its window to the front. Returns at once.
    void raise(const std::string& name);

private:
    class Listener;
    std::unique_ptr<Listener> listener_;
};

}  // namespace sunpane
