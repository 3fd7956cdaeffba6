#pragma once

#include <cstdint>
#include <functional>
#include <limits>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>

#include "base/Clock.h"
#include "platform/CloudFiles.h"
#include "platform/FileSystem.h"

namespace sunpane::testing {

/// Files in memory that fail on demand: a full disk, missing permissions, a vanished folder, a process that dies
/// between any two steps of an operation. Modification times come from a simulated clock, cut to a granularity, and
/// never run backwards while that clock does not. One thread.
class SimulatedFileSystem : public FileSystem {
public:
    explicit SimulatedFileSystem(const Clock& clock) : clock_(clock) {}

    FileReading read(const std::string& path, std::size_t maximumBytes) const override;
    std::optional<FileStamp> stamp(const std::string& path) const override;
    bool exists(const std::string& path) const override;
    std::string canonicalPath(const std::string& path) const override { return path; }
    bool writeInPlace(const std::string& path, std::string_view bytes) override;
    bool overwrite(const std::string& path, std::string_view bytes, std::size_t minimumSize) override;
    std::string beginning(const std::string& path, std::size_t count) const override;
    bool sync(const std::string& path) override;
    bool replaceAtomically(const std::string& path, std::string_view bytes) override;
    bool copyToNew(const std::string& from, const std::string& to) override;
    bool rename(const std::string& from, const std::string& to) override;
    bool remove(const std::string& path) override;
    bool createFolders(const std::string& path) override;
    std::unique_ptr<FileLock> tryLock(const std::string& path) override;

    // What a test does to the disk, whatever faults are set.

    /// Another program writes the file; its modification time is later than the one it had.
    void writeExternally(const std::string& path, const std::string& bytes);
    void removeExternally(const std::string& path) { files_.erase(path); }
    std::optional<std::string> content(const std::string& path) const;
    void setModified(const std::string& path, FileTime time) { files_.at(path).modified = time; }
    void makeFolder(const std::string& path) { folders_.insert(path); }
    void removeFolder(const std::string& path);
    std::vector<std::string> filesIn(const std::string& folder) const;

    // Faults.

    /// How many bytes still fit on the disk.
    std::size_t freeBytes = std::numeric_limits<std::size_t>::max();
    /// Folders in which nothing can be written or created.
    std::set<std::string> readOnlyFolders;
    /// Files that can be neither read nor written.
    std::set<std::string> forbiddenFiles;
    /// Paths at which something other than a regular file stands.
    std::set<std::string> specialFiles;
    /// Modification times are multiples of this (s).
    Seconds granularity = 1e-9;
    /// Called while a sync blocks; whatever another thread or program does meanwhile comes in here.
    std::function<void(const std::string& path)> whileSyncing;
    /// Called whenever a file was written; another program may come in between here.
    std::function<void(const std::string& path)> afterWrite;

    /// After that many more steps the process is dead: no operation of it has any effect until `revive`. An operation
    /// that writes takes several steps, so that it can be cut off halfway.
    void dieAfter(std::uint64_t steps) { stepsToLive_ = steps; }
    bool isDead() const { return stepsToLive_ == 0; }
    void revive() { stepsToLive_ = std::numeric_limits<std::uint64_t>::max(); }
    std::uint64_t steps() const { return steps_; }

private:
    struct File {
        std::string bytes;
        FileTime modified;
        std::uint64_t identity = 0;
    };
    class Lock;

    bool step();
    bool mayWrite(const std::string& path) const;
    bool write(File& file, std::string_view bytes);
    FileTime nextTime();

    const Clock& clock_;
    std::map<std::string, File> files_;
    std::set<std::string> folders_;
    std::shared_ptr<std::set<std::string>> locks_ = std::make_shared<std::set<std::string>>();
    std::uint64_t nextIdentity_ = 1;
    std::uint64_t steps_ = 0;
    std::uint64_t stepsToLive_ = std::numeric_limits<std::uint64_t>::max();
};

/// Downloads that arrive when a test says so.
class SimulatedCloudFiles : public CloudFiles {
public:
    void startDownloading(const std::string& path) override { requested.push_back(path); }
    std::vector<std::string> requested;
};

}  // namespace sunpane::testing
