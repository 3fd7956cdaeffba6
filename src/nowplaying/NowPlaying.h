#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>

#include "base/Observable.h"
#include "base/RunLoop.h"
#include "base/Spring.h"
#include "base/WorkQueue.h"
#include "nowplaying/PlayerQueries.h"
#include "nowplaying/PlayerScripts.h"
#include "nowplaying/Track.h"
#include "platform/ArtworkLoader.h"
#include "platform/AudioProcesses.h"
#include "platform/MediaCommands.h"
#include "platform/RunningApplications.h"
#include "platform/ScriptRunner.h"

namespace sunpane {

/// Finds out what the user is listening to, and controls it: Spotify, the Music application, or a media tab of the
/// browser. Looks only while the panel is open; what it found last stays for the next opening.
///
/// One instance, owned by the start-up code; main thread only. Scripts run on the queue handed in, one after the other,
/// and nothing waits for them: what they replied comes back to the main loop. Errors are silent; a source that does
/// not answer counts as one without a track.
class NowPlaying : public Observable {
public:
    static constexpr Seconds pollInterval = 2;
    /// How long a player takes to show the effect of a command.
    static constexpr Seconds pollAfterCommand = 0.4;
    /// One look that runs and one behind it. Each takes stock anew, so that a third could only repeat the second, and
    /// players that do not answer would make the queue grow for as long as the panel is open.
    static constexpr int maximumPolls = 2;
    /// More clicks than this are not kept for players that do not answer: nobody wants them to come true later.
    static constexpr int maximumCommands = 8;
    /// With more covers than this in memory, the next one begins anew.
    static constexpr std::size_t maximumCovers = 24;
    /// How what shows the track moves when it changes.
    static constexpr Spring animation{0.35, 0.85};
    /// The label of the queue to be handed in.
    static constexpr const char* queueLabel = "app.dawnly.Dawnly.nowplaying";

    using Command = player_scripts::Command;

    struct Collaborators {
        RunLoop& runLoop;
        /// Runs nothing but this object's scripts, and is destroyed after it.
        WorkQueue& scriptQueue;
        ScriptRunner& scripts;
        RunningApplications& applications;
        AudioProcesses& audio;
        MediaCommands& mediaCommands;
        ArtworkLoader& artworkLoader;
    };

    explicit NowPlaying(const Collaborators& collaborators);
    /// A script that runs comes to its end on its queue; none is begun any more.
    ~NowPlaying();

    /// Absent when there is nothing to show.
    const std::optional<Track>& track() const { return track_; }
    /// The cover of `track`; null without one, and until it has arrived.
    const std::shared_ptr<const Artwork>& artwork() const { return artwork_; }
    bool outputMuted() const { return outputMuted_; }
    /// The source of the last track found that was playing.
    std::optional<Player> lastAudibleSource() const { return lastAudibleSource_; }

    /// The panel was opened (true) or folded. Looks at once and then every `pollInterval` while it is open.
    void setActive(bool active);

    /// Takes one look.
    void poll();

    void playPause();
    /// For native players only; with a browser tab nothing happens.
    void command(Command command);
    void toggleMute();
    /// Brings what plays to the front.
    void openSource();

private:
    // The script port for the time of this object: runs nothing once that is over.
    class Scripts;
    using Work = std::function<void(Scripts&)>;

    void onScriptQueue(Work work, std::function<void(NowPlaying&)> then);
    void commandOnScriptQueue(Work work, std::function<void(NowPlaying&)> then);
    void publish(const player_queries::Look& look);
    void apply(std::optional<Track> track);
    void flipPlaying();
    void youtubeToggle(const Track& track);
    void updateArtwork(const std::optional<Track>& track);
    void fetchArtwork(const std::string& key);

    Collaborators with_;
    std::shared_ptr<Scripts> scripts_;
    std::optional<Track> track_;
    std::shared_ptr<const Artwork> artwork_;
    bool outputMuted_ = false;
    std::optional<Player> lastAudibleSource_;
    std::optional<std::string> artworkKey_;
    std::map<std::string, std::shared_ptr<const Artwork>> artworkCache_;
    Subscription timer_;
    Debouncer commandSettled_;
    int pendingPolls_ = 0;
    int pendingCommands_ = 0;
    // Polls are numbered as they are asked for; results up to this number are old news.
    std::uint64_t lastPoll_ = 0;
    std::uint64_t outdatedPoll_ = 0;
    std::shared_ptr<NowPlaying*> self_;
};

}  // namespace sunpane
