#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "base/Subscription.h"
#include "core/stores/Journal.h"
#include "core/stores/StoreFile.h"

namespace sunpane {

/// The part of a StoreFile that works on the queues: journal, check, write, retry.
///
/// Shared between the StoreFile on the main thread and the tasks on the queues. What several threads touch is under the
/// mutex. Of the rest, the journal belongs to the store queue and what a write needs is handed from queue to queue.
class StoreFileWriter : public std::enable_shared_from_this<StoreFileWriter> {
public:
    using Content = StoreFile::Content;

    /// Another program's content that stands where ours should go.
    struct Conflict {
        Content base;
        Content theirs;
        FileStamp stamp;
        /// Tells whether the store has taken over another content since.
        std::uint64_t adoptions = 0;
    };
    using ConflictHandler = std::function<void(const Conflict&)>;

    /// How long (s) a write waits for its turn before it is put off. It is in the journal meanwhile.
    static constexpr Seconds lockPatience = 3.0;
    static constexpr Seconds lockPatienceAtStart = 1.0;
    static constexpr Seconds lockPoll = 0.005;
    /// Copies of unreadable files made within one second; beyond that the file is left alone.
    static constexpr int maximumCopiesPerSecond = 9;

    /// `onConflict` is called on the store queue, completions on the main thread.
    StoreFileWriter(StoreFiles& files, std::string path, std::optional<StoreFormat> format, ConflictHandler onConflict);

    // Main thread.

    void submit(std::string content, std::function<void()> completion);
    /// Notes that memory now holds what the file held when it was read as `content`. If something waited to be written,
    /// the merged content must be submitted right after.
    void adopt(Content content, const FileStamp& stamp);

    struct View {
        bool unwritten = false;
        /// Whether the latest content is in the file or in a journal.
        bool isSafe = true;
        Content onDisk;
        Content writing;
        std::optional<FileStamp> stamp;
        std::uint64_t adoptions = 0;
    };
    View view() const;
    FileReading readFile() const { return disk_.read(path_, StoreFile::maximumBytes); }

    // Main thread, before anything was submitted.

    /// Ends an interrupted write. Null when the file is in order afterwards; otherwise the content that it should have
    /// and that will be written as soon as that is possible.
    Content settleAtStart();
    /// Given a file that does not decode: its whole content, when it is the remnant of a write of ours. Rewrites it.
    Content recoverTruncated(const std::string& remnant);

private:
    enum class Outcome { written, failed, conflict };
    using Step = void (StoreFileWriter::*)();

    // A write, step by step. `write` runs on the sync queue, since other programs and a busy disk may take long over
    // it; the others run on the store queue, which is left free for the journal.
    void process();
    void begin();
    void claimJournal();
    void noteAhead();
    void write();
    void completeWrite();
    void finish(Outcome outcome);

    bool takeNext();
    void post(Step step);
    void postToSyncQueue(Step step);

    Outcome putContent();
    Outcome clearTheWay();
    bool note(const Content& content, const Content& base);
    void noteRemnant();
    bool isOurs(const std::string& bytes) const;
    bool settle();
    bool settleJournal(Journal& journal);
    bool keepAside(const FileStamp& stamp);
    std::unique_ptr<FileLock> waitForLock(Seconds patience);
    void retryLater();

    StoreFiles& files_;
    const StoreFiles::Ports& ports_;
    FileSystem& disk_;
    WorkQueue& queue_;
    const std::string stateFolder_;
    const std::string path_;
    const std::optional<StoreFormat> format_;
    const ConflictHandler onConflict_;
    const JournalPlace place_;
    const std::string lockPath_;

    mutable std::mutex mutex_;
    Content next_;
    Content current_;
    // The latest content that a journal holds.
    Content journaled_;
    std::vector<std::function<void()>> nextCompletions_;
    bool scheduled_ = false;
    Content onDisk_;
    std::optional<FileStamp> stamp_;
    std::uint64_t adoptions_ = 0;

    std::vector<std::function<void()>> currentCompletions_;
    // Null when there was none to be had yet.
    std::unique_ptr<Journal> journal_;
    // When the journals of dead programs were last found in order, by their indices.
    std::array<std::optional<FileTime>, Journal::maximumJournals> settledAt_;
    // What an earlier run left unwritten and could not be written at once.
    std::optional<JournalRecord> unsettled_;

    // The write under way.
    bool isWriting_ = false;
    std::unique_ptr<FileLock> lock_;
    Content written_;
    Content base_;
    std::uint64_t adoptionsAtStart_ = 0;
    bool isJournaled_ = false;
    bool isNextNoted_ = false;
    std::string journalPath_;
    Outcome outcome_ = Outcome::failed;

    Content lastWritten_;
    // What a failed write of ours left in the file.
    std::optional<std::string> remnant_;
    std::optional<FileStamp> keptAside_;
    Conflict found_;
    Subscription retry_;
};

}  // namespace sunpane
