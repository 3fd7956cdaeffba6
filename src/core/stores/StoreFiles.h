#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <string>

#include "base/Clock.h"
#include "base/RunLoop.h"
#include "base/WorkQueue.h"
#include "platform/CloudFiles.h"
#include "platform/FileSystem.h"

namespace sunpane {

/// What the stores share to reach their files: the one queue on which all store files are written, a helper queue that
/// waits for the disk, and the folder that keeps the journals of writes under way.
///
/// Made by the start-up code, which keeps it longer than the stores. Main thread. Destroying it waits until everything
/// that was saved has been tried once; what failed stays in the journal for the next start.
class StoreFiles {
public:
    struct Ports {
        FileSystem& files;
        CloudFiles& cloud;
        const Clock& clock;
        RunLoop& runLoop;
        WorkQueueFactory& queues;
        /// Blocks the calling thread for some seconds.
        std::function<void(Seconds)> wait;
    };

    /// The most time (s) that a store waits for a file that is still to be downloaded.
    static constexpr Seconds downloadTimeout = 1.5;
    static constexpr Seconds downloadPoll = 0.1;

    /// `stateFolder` is where the journals live, the same for every program of ours on the machine.
    StoreFiles(Ports ports, std::string stateFolder);
    ~StoreFiles();
    StoreFiles(const StoreFiles&) = delete;
    StoreFiles& operator=(const StoreFiles&) = delete;

    const Ports& ports() const { return ports_; }
    const std::string& stateFolder() const { return stateFolder_; }
    WorkQueue& queue() { return *queue_; }

    /// Where nothing stands under `path` but a placeholder for it does, asks for the download and blocks until the
    /// file is there, at most `timeout` seconds.
    void ensureDownloaded(const std::string& path, Seconds timeout);
    /// Whether only a placeholder stands for the file.
    bool awaitsDownload(const std::string& path) const;

    /// Where the files themselves are written, which waits for other programs and for the disk. That can take long, and
    /// no change may wait for it to get into the journal.
    WorkQueue& syncQueue() { return *syncQueue_; }

    /// Work in progress: held by every task of a write, and by what follows it until all is done.
    using Activity = std::shared_ptr<void>;
    Activity beginActivity();

    /// Blocks until what was handed over before has been written or has failed once.
    void drain();
    bool isBusy() const { return *activities_ > 0; }

private:
    Ports ports_;
    std::string stateFolder_;
    std::shared_ptr<std::atomic<int>> activities_ = std::make_shared<std::atomic<int>>(0);
    std::unique_ptr<WorkQueue> queue_;
    std::unique_ptr<WorkQueue> syncQueue_;
};

/// `directory` + "/" + `name`, without doubling a trailing slash.
std::string pathInside(const std::string& directory, const std::string& name);

}  // namespace sunpane
