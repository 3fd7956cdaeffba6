#include "core/stores/StoreFiles.h"

#include <utility>

#include "base/AppIdentity.h"

namespace sunpane {
namespace {

std::string placeholderFor(const std::string& path) {
    const std::size_t name = path.rfind('/') + 1;
    return path.substr(0, name) + "." + path.substr(name) + ".icloud";
}

}  // namespace

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
    } while (isBusy());
}

bool StoreFiles::awaitsDownload(const std::string& path) const {
    return !ports_.files.exists(path) && ports_.files.exists(placeholderFor(path));
}

void StoreFiles::ensureDownloaded(const std::string& path, Seconds timeout) {
    if (!awaitsDownload(path)) return;
    ports_.cloud.startDownloading(placeholderFor(path));
    // Counted rather than clocked: a wall clock that jumps must neither cut the wait short nor stretch it.
    for (Seconds waited = 0; waited < timeout && !ports_.files.exists(path); waited += downloadPoll) {
        ports_.wait(downloadPoll);
    }
}

std::string pathInside(const std::string& directory, const std::string& name) {
    return directory.ends_with('/') ? directory + name : directory + "/" + name;
}

}  // namespace sunpane
