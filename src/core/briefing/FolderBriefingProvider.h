#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "base/Clock.h"
#include "base/WorkQueue.h"
#include "core/briefing/Briefing.h"
#include "platform/CloudFiles.h"
#include "platform/FolderEvents.h"
#include "platform/UserDefaults.h"

namespace sunpane {

/// Where briefings come from.
class BriefingProvider {
public:
    /// Gets the complete list, newest first, every time; it may be the same list again.
    using OnUpdate = std::function<void(std::vector<Briefing> briefings)>;

    virtual ~BriefingProvider() = default;
    virtual void start(OnUpdate onUpdate) = 0;
    virtual void stop() {}
};

/// The briefings of one folder: loads every markdown file in it, and again when the folder changes and every 20 s.
///
/// Owned by the view model, which calls `start`, `stop` and the destructor on its own thread, never from within the
/// callback. Everything else happens on the provider's own serial queue. Failures are silent: a folder that cannot be
/// read is an empty list, one that cannot be watched is polled until it can.
class FolderBriefingProvider : public BriefingProvider {
public:
    /// The user's choice of folder.
    static constexpr std::string_view folderDefaultsKey = "briefingsFolderPath";
    static constexpr Seconds debounceInterval = 0.4;
    static constexpr Seconds pollInterval = 20;

    /// What the provider works with; everything outlives it.
    struct Ports {
        const Clock& clock;
        WorkQueueFactory& queues;
        FolderEvents& folderEvents;
        CloudFiles& cloudFiles;
    };

    /// Does no file-system work. The folder never changes; another folder is another provider.
    FolderBriefingProvider(std::string directory, const Ports& ports);
    ~FolderBriefingProvider() override;
    FolderBriefingProvider(const FolderBriefingProvider&) = delete;
    FolderBriefingProvider& operator=(const FolderBriefingProvider&) = delete;

    const std::string& directory() const;

    /// Creates the folder when it is missing, calls `onUpdate` with its briefings before returning, and from then on
    /// calls it on the provider's queue. Called again, it replaces the subscriber and starts afresh.
    void start(OnUpdate onUpdate) override;

    /// Ends watching and polling and lets the subscriber go. A delivery that is under way on the queue may still
    /// arrive. May be called at any time.
    void stop() override;

    /// The application's folder in the user's synced documents, whether or not it exists.
    static const std::string& defaultDirectory();

    /// The folder to use now: the user's choice as it is written, or the default.
    static std::string currentDirectory(const UserDefaults& defaults);

    /// Every readable markdown file of the folder, newest first, those of one date by file name; empty when the folder
    /// cannot be listed. Asks for the content of synced files that are not on this machine. Any thread.
    static std::vector<Briefing> loadBriefings(const std::string& folder, const LocalCalendar& calendar,
                                               CloudFiles& cloudFiles);

    /// Deletes the markdown files that are named after a day that began more than `keepDays` calendar days ago. Deletes
    /// nothing else: no folder, and of a link only the link. Any thread.
    static void cleanupOldBriefings(const std::string& folder, int keepDays, const Clock& clock);

private:
    class Watcher;
    std::unique_ptr<WorkQueue> queue_;
    std::shared_ptr<Watcher> watcher_;
};

}  // namespace sunpane
