#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "base/Instant.h"
#include "platform/FileSystem.h"

namespace sunpane {

/// The machine's files. Stateless; any thread.
class PosixFileSystem : public FileSystem {
public:
    FileReading read(const std::string& path, std::size_t maximumBytes) const override;
    std::optional<FileStamp> stamp(const std::string& path) const override;
    bool exists(const std::string& path) const override;
    std::string canonicalPath(const std::string& path) const override;
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
};

/// Blocks the calling thread for that long.
void sleepFor(Seconds seconds);

}  // namespace sunpane
