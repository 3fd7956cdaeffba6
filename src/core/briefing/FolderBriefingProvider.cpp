#include "core/briefing/FolderBriefingProvider.h"

#include <dirent.h>
#include <fcntl.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <mutex>
#include <optional>
#include <system_error>
#include <utility>

#include "base/AppIdentity.h"
#include "base/Observable.h"
#include "core/briefing/BriefingFile.h"

namespace sunpane {
namespace {

constexpr std::string_view placeholderSuffix = ".icloud";

bool isPlaceholderName(std::string_view name) {
    return name.ends_with(placeholderSuffix);
}

/// The entries of a folder and the open folder, so that what is done to an entry happens in that very folder.
class FolderListing {
public:
    explicit FolderListing(const std::string& folder) : stream_(opendir(folder.c_str())) {
        if (!stream_) return;
        while (const dirent* entry = readdir(stream_.get())) {
            entries_.push_back({entry->d_name, entry->d_type == DT_REG});
        }
        // The order in which a file system lists entries may change with any change of the folder.
        std::sort(entries_.begin(), entries_.end(), [](const Entry& a, const Entry& b) { return a.name < b.name; });
    }

    struct Entry {
        std::string name;
        /// False also when the file system does not say.
        bool isRegularFile;
    };

    /// Only while there are entries.
    int descriptor() const { return dirfd(stream_.get()); }
    const std::vector<Entry>& entries() const { return entries_; }

private:
    struct Closer {
        void operator()(DIR* stream) const { closedir(stream); }
    };
    std::unique_ptr<DIR, Closer> stream_;
    std::vector<Entry> entries_;
};

std::string homeFolder() {
    if (const char* home = std::getenv("HOME"); home != nullptr && *home != '\0') return home;
    const passwd* user = getpwuid(getuid());
    return user != nullptr ? user->pw_dir : "/";
}

}  // namespace

/// What runs on the queue. Outlives the provider only while one of its tasks is running.
class FolderBriefingProvider::Watcher : public std::enable_shared_from_this<Watcher> {
public:
    Watcher(std::string directory, const Ports& ports, SerialExecutor& queue)
        : directory_(std::move(directory)), ports_(ports), queue_(queue) {}

    const std::string& directory() const { return directory_; }

    void start(OnUpdate onUpdate) {
        {
            const std::lock_guard lock(mutex_);
            onUpdate_ = std::make_shared<const OnUpdate>(std::move(onUpdate));
            pending_.emplace(queue_, debounceInterval, [weak = weak_from_this()] { reload(weak); });
        }
        std::error_code ignored;
        std::filesystem::create_directories(directory_, ignored);
        // Watching begins before the first load, so that no change falls between the two.
        reload();
        const std::lock_guard lock(mutex_);
        if (!onUpdate_) return;  // the subscriber has stopped it already
        poll_ = queue_.every(pollInterval, [weak = weak_from_this()] { reload(weak); });
    }

    void stop() {
        const std::lock_guard lock(mutex_);
        source_.reset();
        poll_.cancel();
        pending_.reset();
        onUpdate_.reset();
    }

private:
    static void reload(const std::weak_ptr<Watcher>& weak) {
        if (const auto watcher = weak.lock()) watcher->reload();
    }

    void reload() {
        const std::lock_guard delivery(deliveryMutex_);
        std::shared_ptr<const OnUpdate> onUpdate;
        {
            const std::lock_guard lock(mutex_);
            if (!onUpdate_) return;
            watchFolder();
            onUpdate = onUpdate_;
        }
        auto briefings = loadBriefings(directory_, LocalCalendar(ports_.clock), ports_.cloudFiles);
        {
            const std::lock_guard lock(mutex_);
            if (onUpdate != onUpdate_) return;  // stopped meanwhile
        }
        (*onUpdate)(std::move(briefings));
    }

    // Also called when a watch exists: the folder may have been replaced by another one under the same path.
    void watchFolder() {
        if (source_ && source_->isCurrent()) return;
        source_ = ports_.folderEvents.watch(directory_, queue_, [weak = weak_from_this()](const std::string& name) {
            // The program's own files lie in the same folder; writing them is no reason to load the briefings.
            if (!name.empty() && !briefing::isMarkdownName(name) && !isPlaceholderName(name)) return;
            const auto watcher = weak.lock();
            if (!watcher) return;
            const std::lock_guard lock(watcher->mutex_);
            if (watcher->pending_) watcher->pending_->trigger();
        });
    }

    const std::string directory_;
    const Ports ports_;
    SerialExecutor& queue_;
    // Deliveries never overlap, although the first runs on the owner's thread.
    std::mutex deliveryMutex_;
    // For the fields below: `start` and `stop` run on the owner's thread, everything else on the queue.
    std::mutex mutex_;
    std::unique_ptr<FolderEventSource> source_;
    Subscription poll_;
    std::optional<Debouncer> pending_;
    // Shared, so that a delivery keeps the subscriber that it calls, and can tell that it was replaced.
    std::shared_ptr<const OnUpdate> onUpdate_;
};

FolderBriefingProvider::FolderBriefingProvider(std::string directory, const Ports& ports)
    : queue_(ports.queues.makeQueue(std::string(appIdentifier) + ".briefings.watch")),
      watcher_(std::make_shared<Watcher>(std::move(directory), ports, *queue_)) {}

FolderBriefingProvider::~FolderBriefingProvider() {
    watcher_->stop();
    // Waits for a task that is running, which may hold the last but one reference to the watcher.
    queue_.reset();
}

const std::string& FolderBriefingProvider::directory() const {
    return watcher_->directory();
}

void FolderBriefingProvider::start(OnUpdate onUpdate) {
    watcher_->stop();
    watcher_->start(std::move(onUpdate));
}

void FolderBriefingProvider::stop() {
    watcher_->stop();
}

const std::string& FolderBriefingProvider::defaultDirectory() {
    static const std::string directory = [] {
        std::string container = "iCloud~" + std::string(appIdentifier);
        std::replace(container.begin(), container.end(), '.', '~');
        return homeFolder() + "/Library/Mobile Documents/" + container + "/Documents";
    }();
    return directory;
}

std::string FolderBriefingProvider::currentDirectory(const UserDefaults& defaults) {
    const auto chosen = defaults.read<std::string>(folderDefaultsKey).value;
    return chosen && !chosen->empty() ? *chosen : defaultDirectory();
}

std::vector<Briefing> FolderBriefingProvider::loadBriefings(const std::string& folder, const LocalCalendar& calendar,
                                                            CloudFiles& cloudFiles) {
    const FolderListing listing(folder);
    std::vector<Briefing> briefings;
    briefing::FileText file;
    for (const auto& [name, isRegularFile] : listing.entries()) {
        if (isPlaceholderName(name)) cloudFiles.startDownloading(std::string(folder).append("/").append(name));
        if (!briefing::isMarkdownName(name)) continue;
        const auto read = isRegularFile ? briefing::readListedFile : briefing::readFile;
        if (!read(listing.descriptor(), name.c_str(), file)) continue;
        if (auto briefing = briefing::parseText(name, file, calendar)) briefings.push_back(*std::move(briefing));
    }
    std::stable_sort(briefings.begin(), briefings.end(),
                     [](const Briefing& a, const Briefing& b) { return a.date > b.date; });
    return briefings;
}

void FolderBriefingProvider::cleanupOldBriefings(const std::string& folder, int keepDays, const Clock& clock) {
    const LocalCalendar calendar(clock);
    const Instant cutoff = calendar.addingDays(clock.now(), -keepDays);
    const FolderListing listing(folder);
    for (const auto& [name, isRegularFile] : listing.entries()) {
        if (!briefing::isMarkdownName(name)) continue;
        const auto date = briefing::dateFromName(briefing::stem(name), calendar);
        if (!date || *date >= cutoff) continue;
        struct stat status {};
        if (!isRegularFile && (fstatat(listing.descriptor(), name.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0 ||
                               !(S_ISREG(status.st_mode) || S_ISLNK(status.st_mode)))) {
            continue;
        }
        // Without the flag for folders, one that has just taken the file's place is not removed either.
        unlinkat(listing.descriptor(), name.c_str(), 0);
    }
}

}  // namespace sunpane
