#include "core/stores/StoreFiles.h"

#include <utility>

#include "base/AppIdentity.h"

namespace sunpane {

StoreFiles::StoreFiles(Ports ports, std::string stateFolder)
    : ports_(std::move(ports)),
      stateFolder_(std::move(stateFolder)),
      queue_(ports_.queues.makeQueue(std::string(appIdentifier) + ".store.io")),
      syncQueue_(ports_.queues.makeQueue(std::string(appIdentifier) + ".store.sync")) {
    ports_.files.createFolders(stateFolder_);
}

StoreFiles::~StoreFiles() {
    drain();
}

StoreFiles::Activity StoreFiles::beginActivity() {
    ++*activities_;
    return {nullptr, [count = activities_](void*) { --*count; }};
}

void StoreFiles::drain() {
    // A write goes back and forth between the two queues.
    do {
        queue_->drain();
        syncQueue_->drain();
    } while (*activities_ > 0);
}

void StoreFiles::addJournal(std::weak_ptr<JournalsAhead> journal) {
    const std::lock_guard lock(mutex_);
    std::erase_if(journals_, [](const auto& known) { return known.expired(); });
    journals_.push_back(std::move(journal));
}

void StoreFiles::journalWaiting() {
    std::vector<std::weak_ptr<JournalsAhead>> journals;
    {
        const std::lock_guard lock(mutex_);
        journals = journals_;
    }
    for (const auto& journal : journals) {
        if (const auto waiting = journal.lock()) waiting->journalAhead();
    }
}

void StoreFiles::ensureDownloaded(const std::string& path, Seconds timeout) {
    if (ports_.files.exists(path)) return;
    const std::size_t name = path.rfind('/') + 1;
    const std::string placeholder = path.substr(0, name) + "." + path.substr(name) + ".icloud";
    if (!ports_.files.exists(placeholder)) return;
    ports_.cloud.startDownloading(placeholder);
    // Counted rather than clocked: a wall clock that jumps must neither cut the wait short nor stretch it.
    for (Seconds waited = 0; waited < timeout && !ports_.files.exists(path); waited += downloadPoll) {
        ports_.wait(downloadPoll);
    }
}

std::string pathInside(const std::string& directory, const std::string& name) {
    return directory.ends_with('/') ? directory + name : directory + "/" + name;
}

}  // namespace sunpane
