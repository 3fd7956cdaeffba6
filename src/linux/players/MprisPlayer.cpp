#include "linux/players/MprisPlayer.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "linux/players/PlayerText.h"

namespace sunpane {
namespace {

/// Calls `take` with each key of a dictionary of variants; `take` reads the variant, or returns false to have it
/// skipped. Ends early where the message is not what it should be.
template <class Take>
void forEachEntry(sd_bus_message* message, Take take) {
    if (sd_bus_message_enter_container(message, 'a', "{sv}") <= 0) return;
    while (sd_bus_message_enter_container(message, 'e', "sv") > 0) {
        const char* key = nullptr;
        if (sd_bus_message_read_basic(message, 's', &key) <= 0) return;
        if (!take(std::string_view(key)) && sd_bus_message_skip(message, "v") < 0) return;
        if (sd_bus_message_exit_container(message) < 0) return;
    }
    sd_bus_message_exit_container(message);
}

/// Reads a variant that holds a string. False, with nothing read, when it holds something else.
bool readString(sd_bus_message* message, std::string& into) {
    const char* text = nullptr;
    if (sd_bus_message_enter_container(message, 'v', "s") <= 0) return false;
    if (sd_bus_message_read_basic(message, 's', &text) > 0) into = playerText(text);
    return sd_bus_message_exit_container(message) >= 0;
}

bool readStrings(sd_bus_message* message, std::string& into) {
    if (sd_bus_message_enter_container(message, 'v', "as") <= 0) return false;
    std::string joined;
    if (sd_bus_message_enter_container(message, 'a', "s") > 0) {
        const char* text = nullptr;
        while (sd_bus_message_read_basic(message, 's', &text) > 0) {
            if (joined.size() > maximumPlayerText) continue;
            if (!joined.empty()) joined += ", ";
            joined += text;
        }
        sd_bus_message_exit_container(message);
    }
    into = playerText(joined);
    return sd_bus_message_exit_container(message) >= 0;
}

bool readMetadata(sd_bus_message* message, PlayerState& state) {
    if (sd_bus_message_enter_container(message, 'v', "a{sv}") <= 0) return false;
    forEachEntry(message, [&](std::string_view key) {
        if (key == "xesam:title") return readString(message, state.title);
        if (key == "xesam:artist") return readStrings(message, state.artist) || readString(message, state.artist);
        if (key == "mpris:artUrl") return readString(message, state.artworkUrl);
        return false;
    });
    return sd_bus_message_exit_container(message) >= 0;
}

class MprisTrack : public scripts::Object {
public:
    explicit MprisTrack(PlayerState state) : state_(std::move(state)) {}

    std::optional<scripts::Value> get(scripts::Term term) override {
        switch (term) {
            case scripts::Term::name:
                return state_.title;
            case scripts::Term::artist:
                return state_.artist;
            case scripts::Term::artworkUrl:
                return state_.artworkUrl;
            default:
                return std::nullopt;
        }
    }

private:
    const PlayerState state_;
};

}  // namespace

PlayerState readPlayerState(sd_bus_message* properties) {
    PlayerState result;
    forEachEntry(properties, [&](std::string_view key) {
        if (key == "PlaybackStatus") return readString(properties, result.state);
        if (key == "Metadata") return readMetadata(properties, result);
        return false;
    });
    result.state = result.state == "Playing" ? "playing" : result.state == "Paused" ? "paused" : "stopped";
    return result;
}

MprisPlayer::MprisPlayer(SessionBus& bus, std::string name, Deadline deadline)
    : bus_(bus), name_(std::move(name)), deadline_(std::min(deadline, deadlineIn(answerTime))) {}

const PlayerState* MprisPlayer::state() {
    if (!asked_) {
        asked_ = true;
        const auto request = bus_.playerCall(name_, "org.freedesktop.DBus.Properties", "GetAll");
        if (request && sd_bus_message_append(request.get(), "s", playerInterface) >= 0) {
            if (const auto answer = bus_.call(request.get(), deadline_)) state_ = readPlayerState(answer.get());
        }
    }
    return state_ ? &*state_ : nullptr;
}

std::optional<scripts::Value> MprisPlayer::get(scripts::Term term) {
    const PlayerState* now = state();
    if (now == nullptr) return std::nullopt;
    if (term == scripts::Term::playerState) return now->state;
    if (term == scripts::Term::currentTrack) return std::make_shared<MprisTrack>(*now);
    return std::nullopt;
}

bool MprisPlayer::perform(scripts::Verb verb) {
    switch (verb) {
        case scripts::Verb::playPause:
            return tellPlayer(bus_, name_, "PlayPause", deadline_);
        case scripts::Verb::nextTrack:
            return tellPlayer(bus_, name_, "Next", deadline_);
        case scripts::Verb::previousTrack:
            return tellPlayer(bus_, name_, "Previous", deadline_);
        case scripts::Verb::activate:
            return false;
    }
    return false;
}

bool tellPlayer(SessionBus& bus, const std::string& name, const char* member, Deadline deadline) {
    const auto request = bus.playerCall(name, playerInterface, member);
    return request && bus.call(request.get(), deadline) != nullptr;
}

}  // namespace sunpane
