#include "nowplaying/NowPlaying.h"

#include <algorithm>
#include <atomic>
#include <utility>

namespace sunpane {

class NowPlaying::Scripts : public ScriptRunner {
public:
    Scripts(ScriptRunner& scripts, AudioProcesses& audio, MediaCommands& mediaCommands)
        : scripts_(scripts), audio_(audio), mediaCommands_(mediaCommands) {}

    std::optional<ScriptValue> run(std::string_view source) override {
        if (stopped_) return std::nullopt;
        return scripts_.run(source);
    }
    void togglePlayPause() {
        if (!stopped_) mediaCommands_.togglePlayPause();
    }
    bool chromeEmitsAudio() {
        const auto processes = stopped_ ? std::nullopt : audio_.list();
        if (!processes) return false;
        return std::any_of(processes->begin(), processes->end(), [](const AudioProcess& process) {
            // Helper processes carry the browser's identifier as a beginning of their own.
            return process.runsOutput && process.bundleIdentifier.starts_with(bundleIdentifier(Player::youtube));
        });
    }
    void stop() { stopped_ = true; }

private:
    ScriptRunner& scripts_;
    AudioProcesses& audio_;
    MediaCommands& mediaCommands_;
    std::atomic<bool> stopped_ = false;
};

NowPlaying::NowPlaying(const Collaborators& collaborators)
    : with_(collaborators),
      scripts_(std::make_shared<Scripts>(with_.scripts, with_.audio, with_.mediaCommands)),
      commandSettled_(with_.runLoop, pollAfterCommand, [this] { poll(); }),
      self_(std::make_shared<NowPlaying*>(this)) {}

NowPlaying::~NowPlaying() {
    scripts_->stop();
}

void NowPlaying::onScriptQueue(Work work, std::function<void(NowPlaying&)> then) {
    with_.scriptQueue.post([&runLoop = with_.runLoop, scripts = scripts_, weak = std::weak_ptr(self_),
                            work = std::move(work), then = std::move(then)] {
        work(*scripts);
        runLoop.post([weak, then] {
            if (const auto self = weak.lock()) then(**self);
        });
    });
}

void NowPlaying::commandOnScriptQueue(Work work, std::function<void(NowPlaying&)> then) {
    ++pendingCommands_;
    onScriptQueue(std::move(work), [then = std::move(then)](NowPlaying& self) {
        --self.pendingCommands_;
        if (then) then(self);
    });
}

void NowPlaying::setActive(bool active) {
    timer_.cancel();
    if (!active) return;
    poll();
    timer_ = with_.runLoop.every(pollInterval, [this] { poll(); });
}

void NowPlaying::poll() {
    player_queries::Situation situation;
    for (const Player player : {Player::spotify, Player::music}) {
        if (with_.applications.isRunning(bundleIdentifier(player))) situation.runningNative.push_back(player);
    }
    situation.chromeRuns = with_.applications.isRunning(bundleIdentifier(Player::youtube));
    situation.showsChromeTab = track_ && track_->isChromeTab();

    const std::uint64_t number = ++lastPoll_;
    if (situation.runningNative.empty() && !situation.chromeRuns) {
        // What is still on its way was asked while something ran.
        outdatedPoll_ = number;
        apply(std::nullopt);
        return;
    }
    if (pendingPolls_ == maximumPolls) return;
    ++pendingPolls_;
    auto result = std::make_shared<player_queries::Look>();
    onScriptQueue(
        [result, situation = std::move(situation)](Scripts& scripts) {
            player_queries::Situation now = situation;
            now.chromeAudible = now.chromeRuns && scripts.chromeEmitsAudio();
            *result = player_queries::look(scripts, now);
        },
        [result, number](NowPlaying& self) {
            --self.pendingPolls_;
            if (number > self.outdatedPoll_) self.publish(*result);
        });
}

void NowPlaying::publish(const player_queries::Look& look) {
    if (look.track && look.track->playing) lastAudibleSource_ = look.track->player;
    apply(look.track);
    if (look.outputMuted == outputMuted_) return;
    announceChange();
    outputMuted_ = look.outputMuted;
}

void NowPlaying::apply(std::optional<Track> track) {
    if (track != track_) {
        announceChange();
        track_ = std::move(track);
    }
    updateArtwork(track_);
}

void NowPlaying::updateArtwork(const std::optional<Track>& track) {
    const std::optional<std::string> key = track ? track->artworkURL : std::nullopt;
    if (key == artworkKey_) return;
    announceChange();
    artworkKey_ = key;
    artwork_ = nullptr;
    if (!key) return;
    if (const auto cached = artworkCache_.find(*key); cached != artworkCache_.end()) artwork_ = cached->second;
    if (!artwork_) fetchArtwork(*key);
}

void NowPlaying::fetchArtwork(const std::string& key) {
    with_.artworkLoader.load(key, [weak = std::weak_ptr(self_), key](std::shared_ptr<const Artwork> image) {
        const auto self = weak.lock();
        if (!self || !image) return;
        NowPlaying& nowPlaying = **self;
        if (nowPlaying.artworkCache_.size() > maximumCovers) nowPlaying.artworkCache_.clear();
        nowPlaying.artworkCache_[key] = image;
        if (nowPlaying.artworkKey_ != key) return;
        nowPlaying.announceChange();
        nowPlaying.artwork_ = std::move(image);
    });
}

void NowPlaying::flipPlaying() {
    announceChange();
    track_->playing = !track_->playing;
}

void NowPlaying::playPause() {
    if (track_ && track_->isChromeTab()) {
        youtubeToggle(*track_);
    } else {
        command(Command::playPause);
    }
}

void NowPlaying::command(Command command) {
    if (!track_ || track_->isChromeTab() || pendingCommands_ == maximumCommands) return;
    if (command == Command::playPause) flipPlaying();
    commandOnScriptQueue(
        [script = player_scripts::command(track_->player, command)](Scripts& scripts) { scripts.run(script); },
        [](NowPlaying& self) { self.commandSettled_.trigger(); });
}

void NowPlaying::youtubeToggle(const Track& track) {
    if (pendingCommands_ == maximumCommands) return;
    const std::int64_t tab = track.chromeTabID;
    // Without a say in the tab, the system's own command reaches the browser if that is what played last.
    const bool mayFallBack = track.playing || lastAudibleSource_ == Player::youtube;
    flipPlaying();
    commandOnScriptQueue(
        [tab, mayFallBack](Scripts& scripts) {
            const auto reply = player_queries::chromeRunJS(scripts, tab, player_scripts::togglePlaybackSnippet());
            if (reply != player_scripts::ok && mayFallBack) scripts.togglePlayPause();
        },
        nullptr);
}

void NowPlaying::toggleMute() {
    if (pendingCommands_ == maximumCommands) return;
    auto wasMuted = std::make_shared<bool>(false);
    commandOnScriptQueue(
        [wasMuted](Scripts& scripts) {
            *wasMuted = player_queries::outputMuted(scripts);
            scripts.run(player_scripts::setOutputMuted(!*wasMuted));
        },
        [wasMuted](NowPlaying& self) {
            self.announceChange();
            self.outputMuted_ = !*wasMuted;
        });
}

void NowPlaying::openSource() {
    if (!track_) return;
    if (!track_->isChromeTab()) {
        with_.applications.open(bundleIdentifier(track_->player));
    } else if (pendingCommands_ < maximumCommands) {
        commandOnScriptQueue(
            [tab = track_->chromeTabID](Scripts& scripts) { scripts.run(player_scripts::showTab(tab)); }, nullptr);
    }
}

}  // namespace sunpane
