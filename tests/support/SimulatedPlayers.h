#pragma once

#include <algorithm>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/WorkQueue.h"
#include "nowplaying/NowPlaying.h"
#include "nowplaying/PlayerScripts.h"
#include "platform/ArtworkLoader.h"
#include "platform/AudioProcesses.h"
#include "platform/MediaCommands.h"
#include "platform/RunningApplications.h"
#include "platform/ScriptRunner.h"
#include "support/SimulatedPlatform.h"

namespace sunpane::testing {

/// Applications that answer scripts as the test says. A script without a reply fails; the volume works by itself.
class SimulatedScripts : public ScriptRunner {
public:
    std::optional<ScriptValue> run(std::string_view source) override {
        sent.emplace_back(source);
        if (source == player_scripts::readOutputMuted()) {
            return hasVolume ? std::optional<ScriptValue>(muted) : std::nullopt;
        }
        for (const bool wanted : {true, false}) {
            if (hasVolume && source == player_scripts::setOutputMuted(wanted)) muted = wanted;
        }
        const auto reply = replies.find(std::string(source));
        return reply == replies.end() ? std::nullopt : std::optional<ScriptValue>(reply->second);
    }

    /// What a native player replies when asked for its track.
    void reply(Player player, std::string text) {
        replies[std::string(player_scripts::query(player))] = std::move(text);
    }
    /// What the browser replies to the scan of its tabs.
    void replyTabs(std::string lines) { replies[std::string(player_scripts::scanTabs())] = std::move(lines); }

    std::size_t timesSent(std::string_view source) const {
        return static_cast<std::size_t>(std::count(sent.begin(), sent.end(), source));
    }

    std::map<std::string, ScriptValue> replies;
    std::vector<std::string> sent;
    bool hasVolume = true;
    bool muted = false;
};

class SimulatedApplications : public RunningApplications {
public:
    bool loaded() const override { return isLoaded; }
    bool isRunning(std::string_view bundleIdentifier) const override { return running.contains(bundleIdentifier); }
    void open(std::string_view bundleIdentifier) override { opened.emplace_back(bundleIdentifier); }

    bool isLoaded = true;
    std::set<std::string, std::less<>> running;
    std::vector<std::string> opened;
};

class SimulatedAudio : public AudioProcesses {
public:
    std::optional<std::vector<AudioProcess>> list() override { return processes; }

    std::optional<std::vector<AudioProcess>> processes = std::vector<AudioProcess>{};
};

class SimulatedMediaCommands : public MediaCommands {
public:
    void togglePlayPause() override { ++toggles; }
    int toggles = 0;
};

/// Covers that arrive when the test says so.
class SimulatedArtwork : public ArtworkLoader {
public:
    void load(const std::string& url, Handler done) override { requests.emplace_back(url, std::move(done)); }

    /// Answers the oldest open request for that address.
    void arrive(const std::string& url, std::shared_ptr<const Artwork> image) {
        const auto found =
            std::find_if(requests.begin(), requests.end(), [&](const auto& request) { return request.first == url; });
        const Handler done = std::move(found->second);
        requests.erase(found);
        done(std::move(image));
    }

    std::deque<std::pair<std::string, Handler>> requests;
};

inline std::shared_ptr<const Artwork> pixel(std::uint8_t shade) {
    return std::make_shared<const Artwork>(Artwork{1, 1, {shade, shade, shade, 255}});
}

/// The now-playing source on a simulated desktop, for whoever needs one whole.
struct SimulatedPlayers {
    explicit SimulatedPlayers(SimulatedPlatform& platform)
        : queue(platform.time, NowPlaying::queueLabel),
          nowPlaying({platform.runLoop, queue, scripts, applications, audio, mediaCommands, covers}) {}

    SimulatedWorkQueue queue;
    SimulatedScripts scripts;
    SimulatedApplications applications;
    SimulatedAudio audio;
    SimulatedMediaCommands mediaCommands;
    SimulatedArtwork covers;
    NowPlaying nowPlaying;
};

/// A queue whose thread can be stuck: tasks run when the test runs them.
class HeldWorkQueue : public WorkQueue {
public:
    void post(Task task) override { tasks.push_back(std::move(task)); }
    Subscription after(Seconds, Task) override { return {}; }
    Subscription every(Seconds, Task) override { return {}; }
    const std::string& label() const override { return label_; }
    void drain() override {
        while (!tasks.empty())
            runOne();
    }
    void runOne() {
        const Task task = std::move(tasks.front());
        tasks.pop_front();
        task();
    }

    std::deque<Task> tasks;

private:
    std::string label_ = "held";
};

}  // namespace sunpane::testing
