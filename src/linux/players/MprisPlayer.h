#pragma once

#include <string>

#include "linux/players/Deadline.h"
#include "linux/players/SessionBus.h"
#include "linux/scripts/ScriptObject.h"

namespace sunpane {

/// What a media player says about itself, already fit for a reply.
struct PlayerState {
    /// "playing", "paused" or "stopped"
    std::string state;
    std::string title;
    /// Several artists are joined by commas.
    std::string artist;
    /// Empty without a cover.
    std::string artworkUrl;
    friend bool operator==(const PlayerState&, const PlayerState&) = default;
};

/// Reads the answer to a request for all of a player's properties. What it lacks, or gives in another type, is empty;
/// a player without a known state is stopped.
PlayerState readPlayerState(sd_bus_message* properties);

/// A media player as scripts see it, through the MPRIS D-Bus Interface Specification 2.2. It is asked once a script.
class MprisPlayer : public scripts::Object {
public:
    /// How long a player may take to answer.
    static constexpr std::chrono::milliseconds answerTime{1000};

    /// The bus outlives the player.
    MprisPlayer(SessionBus& bus, std::string name, Deadline deadline);

    std::optional<scripts::Value> get(scripts::Term term) override;
    bool perform(scripts::Verb verb) override;

private:
    const PlayerState* state();

    SessionBus& bus_;
    const std::string name_;
    const Deadline deadline_;
    bool asked_ = false;
    std::optional<PlayerState> state_;
};

/// Tells a player to do what needs no words: "PlayPause", "Next", "Previous" of its player interface. False when it did
/// not do so until `deadline`.
bool tellPlayer(SessionBus& bus, const std::string& name, const char* member, Deadline deadline);

}  // namespace sunpane
