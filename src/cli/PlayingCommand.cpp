#include "cli/PlayingCommand.h"

#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <ostream>

#include "base/ManualRunLoop.h"
#include "cli/TerminalText.h"
#include "nowplaying/NowPlaying.h"

namespace sunpane::cli {
namespace {

// Who runs is found out in the background; a command waits this long (s) for the first answer, and looks for it this
// often.
constexpr Seconds longestWait = 2;
constexpr Seconds waitStep = 0.02;

class NoArtwork : public ArtworkLoader {
public:
    void load(const std::string&, Handler) override {}
};

// The panel's now-playing source for the time of one command.
class Session {
public:
    explicit Session(Environment& environment)
        : players_(environment.connectPlayers()),
          queue_(environment.queues.makeQueue(NowPlaying::queueLabel)),
          nowPlaying_({loop_, *queue_, players_->scripts, players_->applications, players_->audio,
                       players_->mediaCommands, artwork_}) {
        for (Seconds waited = 0; !players_->applications.loaded() && waited < longestWait; waited += waitStep)
            environment.wait(waitStep);
    }

    NowPlaying& nowPlaying() { return nowPlaying_; }
    /// What is playing now.
    const std::optional<Track>& look() {
        nowPlaying_.poll();
        finish();
        return nowPlaying_.track();
    }
    /// Whether the sound output is muted, asked anew.
    bool isMuted() {
        bool muted = false;
        queue_->post([&] { muted = player_queries::outputMuted(players_->scripts); });
        queue_->drain();
        return muted;
    }
    /// Waits until all that was asked for is done.
    void finish() {
        queue_->drain();
        loop_.runPosted();
    }

private:
    std::shared_ptr<const PlayerPorts> players_;
    ManualRunLoop loop_;
    std::unique_ptr<WorkQueue> queue_;
    NoArtwork artwork_;
    NowPlaying nowPlaying_;
};

std::string_view identifier(Player player) {
    switch (player) {
        case Player::spotify:
            return "spotify";
        case Player::music:
            return "music";
        case Player::youtube:
            break;
    }
    return "youtube";
}

nlohmann::ordered_json toJson(const std::optional<Track>& track) {
    using Json = nlohmann::ordered_json;
    if (!track) return nullptr;
    const auto orNull = [](const std::optional<std::string>& text) { return text ? Json(*text) : Json(nullptr); };
    return {{"title", track->title},
            {"artist", track->artist},
            {"playing", track->playing},
            {"artworkURL", orNull(track->artworkURL)},
            {"player", identifier(track->player)},
            {"chromeWindow", track->chromeWindow},
            {"chromeTab", track->chromeTab},
            {"chromeTabID", track->chromeTabID},
            {"pageURL", orNull(track->pageURL)}};
}

const char* stateName(const Track& track) {
    return track.playing ? "playing" : "paused";
}

int nothingPlays(const Command& command, Environment& environment) {
    environment.err << "dawnlyctl " << command.name << ": nothing is playing\n";
    return negative;
}

// Null after a line on `err`.
std::unique_ptr<Session> connect(const Command& command, Environment& environment) {
    if (environment.connectPlayers) return std::make_unique<Session>(environment);
    environment.err << "dawnlyctl " << command.name << ": no way to reach the players\n";
    return nullptr;
}

std::unique_ptr<Session> connectWithoutArguments(const Command& command, Arguments arguments,
                                                 Environment& environment) {
    if (arguments.empty()) return connect(command, environment);
    usageError(command, "no words or options expected", environment);
    return nullptr;
}

int skip(const Command& command, NowPlaying::Command direction, Arguments arguments, Environment& environment) {
    const auto session = connectWithoutArguments(command, arguments, environment);
    if (!session) return failure;
    const auto& track = session->look();
    if (!track) return nothingPlays(command, environment);
    if (track->isChromeTab()) {
        environment.err << "dawnlyctl " << command.name << ": a browser tab has no other tracks\n";
        return negative;
    }
    session->nowPlaying().command(direction);
    session->finish();
    return success;
}

}  // namespace

int runPlaying(Arguments arguments, Environment& environment) {
    bool asJson = false;
    for (const auto& argument : arguments) {
        if (argument != "--json") {
            return usageError(playingCommand, "unknown option " + escapedName(argument), environment);
        }
        asJson = true;
    }
    const auto session = connect(playingCommand, environment);
    if (!session) return failure;
    const auto& track = session->look();
    if (asJson) {
        // Plain ASCII: a title may hold characters that act on a terminal.
        environment.out << toJson(track).dump(-1, ' ', true, nlohmann::json::error_handler_t::replace) << '\n';
        return track ? success : negative;
    }
    if (!track) return nothingPlays(playingCommand, environment);
    environment.out << bold(printable(track->title), environment.outIsTerminal);
    if (!track->artist.empty()) environment.out << " \u2014 " << printable(track->artist);
    environment.out << " (" << applicationName(track->player) << ", " << stateName(*track) << ")\n";
    return success;
}

int runPlayPause(Arguments arguments, Environment& environment) {
    const auto session = connectWithoutArguments(playPauseCommand, arguments, environment);
    if (!session) return failure;
    if (!session->look()) return nothingPlays(playPauseCommand, environment);
    session->nowPlaying().playPause();
    session->finish();
    return success;
}

int runNext(Arguments arguments, Environment& environment) {
    return skip(nextCommand, NowPlaying::Command::nextTrack, arguments, environment);
}

int runPrevious(Arguments arguments, Environment& environment) {
    return skip(previousCommand, NowPlaying::Command::previousTrack, arguments, environment);
}

int runMute(Arguments arguments, Environment& environment) {
    const auto session = connectWithoutArguments(muteCommand, arguments, environment);
    if (!session) return failure;
    session->nowPlaying().toggleMute();
    session->finish();
    const bool wanted = session->nowPlaying().outputMuted();
    if (session->isMuted() != wanted) {
        environment.err << "dawnlyctl mute: the sound output did not follow\n";
        return negative;
    }
    environment.out << (wanted ? "muted\n" : "not muted\n");
    return success;
}

}  // namespace sunpane::cli
