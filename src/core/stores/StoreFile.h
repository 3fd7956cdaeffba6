#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "base/Subscription.h"
#include "core/stores/StoreFiles.h"
#include "platform/FileSystem.h"

namespace sunpane {

class StoreFileWriter;

/// What a file must know of its store's records to judge contents without understanding them. Pure functions.
struct StoreFormat {
    /// Whether the store could load this content.
    std::function<bool(std::string_view content)> decodes;
    /// The content that carries both sides' changes to `base` (null: there was no file). All given contents decode.
    std::function<std::string(const std::string* base, std::string_view ours, std::string_view theirs)> merge;
};

/// One file in the briefings folder that a store keeps, written so that nothing is lost.
///
/// A content handed to `writeAsync` is first put whole into a journal in the state folder and only then written in
/// place, on the store queue. What a crash cut off is brought to its end at the next load. What cannot be written is
/// tried again until it can. A file that another program changed in the meantime is not overwritten but handed to the
/// store for merging, and one that does not decode is copied aside first. Programs of ours that share the file take
/// turns by a lock.
///
/// Owned by a store; main thread. A file without a format is derived data: it is replaced whatever it holds.
class StoreFile {
public:
    using Content = std::shared_ptr<const std::string>;

    /// Longer files count as unreadable. The stores' own stay below it by a factor of a thousand.
    static constexpr std::size_t maximumBytes = std::size_t{256} << 20;
    static constexpr Seconds retryInterval = 2.0;

    /// A content for the store to take over.
    struct Incoming {
        const std::string& content;
        /// Whether memory holds changes that are not in the file; the store then merges `base` (null: there was no
        /// file), its memory and `content`, instead of replacing its memory.
        bool mustMerge = false;
        const std::string* base = nullptr;
    };
    /// Takes a content over and returns true, or returns false when it does not decode.
    using Taker = std::function<bool(const Incoming&)>;

    StoreFile(StoreFiles& files, std::string path, std::optional<StoreFormat> format);
    ~StoreFile();
    StoreFile(const StoreFile&) = delete;
    StoreFile& operator=(const StoreFile&) = delete;

    const std::string& path() const { return path_; }

    /// The first reading: brings to its end what an earlier run left unwritten, then has the content taken. Blocks,
    /// at most a second beyond the reading itself. False when there is nothing or nothing that decodes.
    bool load(const Taker& take);

    enum class Reload { failed, taken, merged };
    /// Reads the file anew. After `merged` the store must save.
    Reload reload(const Taker& take);

    /// Whether the file is not as it was last read or written here, and nothing of ours waits to be written.
    bool changedOnDisk() const;

    /// The file's modification time; absent when it cannot be read.
    std::optional<FileTime> modificationTime() const;

    /// When what is known of the file was read or written here; absent when that cannot be told.
    std::optional<FileTime> knownTime() const;

    /// Whether the file went away together with its folder and the folder is back without it, so that the store must
    /// save again. Tells it once. For regular asking while there is no file.
    bool wentWithItsFolder();

    /// Hands the content over and returns at once. Of contents that wait, only the latest is written; `completion`
    /// runs on the main thread after it was, and not at all when this object goes first.
    void writeAsync(std::string content, std::function<void()> completion = nullptr);

    /// Whether something handed over is not in the file yet.
    bool hasUnwritten() const;

    /// Whether everything handed over outlives this process, being in the file or in a journal.
    bool isSafe() const;

    /// Runs `then` on the main thread once all that was handed over so far is in the file, at once when it is there
    /// already, and not at all when this object or the handle goes first.
    [[nodiscard]] Subscription whenWritten(std::function<void()> then);

    /// Called on the main thread when the file holds another program's content that must be merged; the store merges
    /// as for `reload` and then saves.
    void onConflict(std::function<void(const Incoming&)> merge) { conflict_ = std::move(merge); }

private:
    struct Waiter {
        std::uint64_t write = 0;
        std::function<void()> then;
    };
    void noteWritten(std::uint64_t write);

    StoreFiles& files_;
    std::string path_;
    std::function<void(const Incoming&)> conflict_;
    std::shared_ptr<StoreFileWriter> writer_;
    bool folderIsGone_ = false;
    // How often something was handed over, and which of these is in the file.
    std::uint64_t handedOver_ = 0;
    std::uint64_t written_ = 0;
    // In the order in which they came; as many as there are handles.
    std::map<std::uint64_t, Waiter> waiters_;
    std::uint64_t nextWaiter_ = 0;
    // Lets what comes back from the queue find this object, or find it gone.
    std::shared_ptr<StoreFile*> self_;
};

}  // namespace sunpane
