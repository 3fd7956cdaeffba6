#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace sunpane {

/// When a file's content was last modified, as exactly as the file system keeps it.
struct FileTime {
    std::int64_t unixNanoseconds = 0;
    friend auto operator<=>(const FileTime&, const FileTime&) = default;
};

/// What tells one state of a file from the next without reading it.
struct FileStamp {
    FileTime modified;
    std::uint64_t size = 0;
    std::uint64_t identity = 0;
    friend bool operator==(const FileStamp&, const FileStamp&) = default;
};

/// The outcome of reading a whole file.
struct FileReading {
    enum class Status {
        read,
        /// Nothing stands under that path.
        absent,
        /// Something does, but it is no regular file, may not be read, or is longer than the bound.
        unreadable,
    };
    Status status = Status::absent;
    std::string bytes;
    FileStamp stamp;
};

/// Held until destroyed; a process that dies lets go of it.
class FileLock {
public:
    virtual ~FileLock() = default;
};

/// The file operations that the stores need. Any thread. Nothing throws; a failure is told by the result. No operation
/// waits for another process: a pipe or a device under a path fails at once.
class FileSystem {
public:
    virtual ~FileSystem() = default;

    /// Reads a regular file of at most `maximumBytes`, following links.
    virtual FileReading read(const std::string& path, std::size_t maximumBytes) const = 0;

    /// The state of whatever stands under the path, links followed. Absent when it cannot be told.
    virtual std::optional<FileStamp> stamp(const std::string& path) const = 0;

    virtual bool exists(const std::string& path) const = 0;

    /// One name for all spellings of a path: absolute, links and dots resolved as far as the path exists.
    virtual std::string canonicalPath(const std::string& path) const = 0;

    /// Empties the file, or creates it, and writes the bytes into it. After a failure or the death of the process the
    /// file holds a beginning of `bytes`, or is untouched when it could not be opened.
    virtual bool writeInPlace(const std::string& path, std::string_view bytes) = 0;

    /// Writes the bytes over the beginning of the file, which is created, or made longer, to hold at least
    /// `minimumSize` bytes. Cut off, it leaves a mix of old and new bytes. Where nothing has to be made longer this is
    /// quick even while the disk is busy, which no other writing operation is. Where there is no room for a new file
    /// none is left behind.
    virtual bool overwrite(const std::string& path, std::string_view bytes, std::size_t minimumSize) = 0;

    /// The first `count` bytes of a regular file, fewer when it is shorter or cannot be read.
    virtual std::string beginning(const std::string& path, std::size_t count) const = 0;

    /// Blocks until the file's content and its name are on the disk, safe from a power cut too.
    virtual bool sync(const std::string& path) = 0;

    /// Replaces a regular file by a new one with the same permissions, or creates one that only its owner can read.
    /// After a failure or a crash it holds either its old content or all of the new, on the disk. Links are followed.
    virtual bool replaceAtomically(const std::string& path, std::string_view bytes) = 0;

    /// Copies a file to a path where nothing stands yet; a file already there is a failure. Nothing half-written stays.
    virtual bool copyToNew(const std::string& from, const std::string& to) = 0;

    /// Renames a file, replacing what stands under `to`.
    virtual bool rename(const std::string& from, const std::string& to) = 0;

    virtual bool remove(const std::string& path) = 0;

    /// Creates the folder with its missing parents. True when it exists afterwards.
    virtual bool createFolders(const std::string& path) = 0;

    /// Takes the lock that the file at `path` (created if missing) stands for. Null when another holder has it or the
    /// file cannot be made.
    virtual std::unique_ptr<FileLock> tryLock(const std::string& path) = 0;
};

}  // namespace sunpane
