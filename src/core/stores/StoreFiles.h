#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "base/Clock.h"
#include "base/RunLoop.h"
#include "base/WorkQueue.h"
#include "platform/CloudFiles.h"
#include "platform/FileSystem.h"

namespace sunpane {

/// Something that can put a change that waits for its turn on the store queue into the journal ahead of its turn.
class JournalsAhead {
public:
    virtual ~JournalsAhead() = default;
    virtual void journalAhead() = 0;
};

/// What the stores share to reach their files: the one queue on which all store files are written, one write at a
/// time, and the folder that keeps the journals of writes under way.
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

    void addJournal(std::weak_ptr<JournalsAhead> journal);

    /// Journals everything that waits. A write calls it before each step that blocks, so that no change stays out of
    /// the journal for longer than one such step. On the store queue.
    void journalWaiting();

    /// Blocks until what was handed over before has been written or has failed once.
    void drain() { queue_->drain(); }

private:
    Ports ports_;
    std::string stateFolder_;
    std::unique_ptr<WorkQueue> queue_;
    std::mutex mutex_;
    std::vector<std::weak_ptr<JournalsAhead>> journals_;
};

/// `directory` + "/" + `name`, without doubling a trailing slash.
std::string pathInside(const std::string& directory, const std::string& name);

}  // namespace sunpane
