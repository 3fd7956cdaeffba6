#include "core/stores/StoreFileWriter.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "base/Dates.h"

namespace sunpane {

StoreFileWriter::StoreFileWriter(StoreFiles& files, std::string path, std::optional<StoreFormat> format,
                                 ConflictHandler onConflict)
    : files_(files),
      ports_(files.ports()),
      disk_(files.ports().files),
      queue_(files.queue()),
      stateFolder_(files.stateFolder()),
      path_(std::move(path)),
      identity_(disk_.canonicalPath(path_)),
      format_(std::move(format)),
      onConflict_(std::move(onConflict)),
      lockPath_(pathInside(stateFolder_, journalName(identity_) + ".lock")),
      journal_(disk_, stateFolder_, identity_, StoreFile::maximumBytes, format_ ? format_->decodes : nullptr) {}

void StoreFileWriter::submit(std::string content, std::function<void()> completion) {
    {
        const std::lock_guard lock(mutex_);
        next_ = std::make_shared<const std::string>(std::move(content));
        if (completion) nextCompletions_.push_back(std::move(completion));
        if (scheduled_) return;
        scheduled_ = true;
    }
    post(&StoreFileWriter::process);
}

void StoreFileWriter::post(Step step) {
    queue_.post([self = shared_from_this(), step, activity = files_.beginActivity()] { (self.get()->*step)(); });
}

void StoreFileWriter::postToSyncQueue(Step step) {
    files_.syncQueue().post(
        [self = shared_from_this(), step, activity = files_.beginActivity()] { (self.get()->*step)(); });
}

void StoreFileWriter::adopt(Content content, const FileStamp& stamp) {
    const std::lock_guard lock(mutex_);
    onDisk_ = std::move(content);
    stamp_ = stamp;
    ++adoptions_;
    // What waits was made without this content; the store hands over the merged one next.
    next_ = nullptr;
    current_ = nullptr;
}

StoreFileWriter::View StoreFileWriter::view() const {
    const std::lock_guard lock(mutex_);
    return {next_ || current_, onDisk_, current_, stamp_, adoptions_};
}

StoreFileWriter::Content StoreFileWriter::settleAtStart() {
    const auto lock = waitForLock(lockPatienceAtStart, nullptr);
    if (settle()) return nullptr;
    auto content = std::make_shared<const std::string>(std::move(unsettled_->content));
    const auto base = unsettled_->base ? std::make_shared<const std::string>(std::move(*unsettled_->base)) : nullptr;
    // From now on it is ours to write, and what the user does next replaces it.
    journal_.note(content, base, nullptr);
    const std::lock_guard guard(mutex_);
    current_ = content;
    onDisk_ = base;
    queue_.post([self = shared_from_this()] { self->retryLater(); });
    return content;
}

StoreFileWriter::Content StoreFileWriter::recoverTruncated(const std::string& remnant) {
    const auto lock = waitForLock(lockPatienceAtStart, nullptr);
    journal_.refresh();
    auto record = journal_.lastWritten();
    if (!record || !isRemnantOf(remnant, record->content)) return nullptr;
    auto content = std::make_shared<const std::string>(std::move(record->content));
    const bool rewritten = disk_.writeInPlace(path_, *content);
    disk_.sync(path_);
    const std::lock_guard guard(mutex_);
    onDisk_ = content;
    stamp_ = disk_.stamp(path_);
    if (!rewritten) {
        current_ = content;
        queue_.post([self = shared_from_this()] { self->retryLater(); });
    }
    return content;
}

void StoreFileWriter::retryLater() {
    retry_ = queue_.after(StoreFile::retryInterval, [weak = weak_from_this()] {
        if (const auto self = weak.lock()) self->process();
    });
}

void StoreFileWriter::process() {
    {
        const std::lock_guard lock(mutex_);
        scheduled_ = false;
    }
    if (isWriting_) {
        journalAhead();
    } else {
        begin();
    }
}

// Makes the latest content handed over the one to be written. False when there is none.
bool StoreFileWriter::takeNext() {
    const std::lock_guard lock(mutex_);
    if (next_) {
        current_ = std::exchange(next_, nullptr);
        std::move(nextCompletions_.begin(), nextCompletions_.end(), std::back_inserter(currentCompletions_));
        nextCompletions_.clear();
    }
    written_ = current_;
    base_ = onDisk_;
    adoptionsAtStart_ = adoptions_;
    return current_ != nullptr;
}

void StoreFileWriter::begin() {
    if (!takeNext()) return;
    isWriting_ = true;
    lock_ = waitForLock(lockPatience, [this] { files_.journalWaiting(); });
    const bool isSettled = settle();
    isJournaled_ = journal_.note(written_, base_, nullptr);
    isJournalSynced_ = false;
    // What another run left unwritten goes first.
    if (!isSettled) return finish(Outcome::failed);
    decideContent();
}

void StoreFileWriter::decideContent() {
    if (isJournaled_ && !journal_.hasNoted(written_)) {
        // A newer content came into the journal while the disk was waited for, so that one is written.
        if (!takeNext()) return finish(Outcome::failed);
        isJournaled_ = journal_.note(written_, base_, nullptr);
        isJournalSynced_ = ++restarts_ > maximumRestarts;
    }
    // What is derived can be derived again; the rest must be safe from a power cut before the file is emptied.
    if (format_ && isJournaled_ && !isJournalSynced_) {
        journalPath_ = journal_.notedPath();
        return postToSyncQueue(&StoreFileWriter::syncJournal);
    }
    isPutting_ = true;
    postToSyncQueue(&StoreFileWriter::putContent);
}

void StoreFileWriter::syncJournal() {
    disk_.sync(journalPath_);
    post(&StoreFileWriter::journalSynced);
}

void StoreFileWriter::journalSynced() {
    isJournalSynced_ = true;
    decideContent();
}

void StoreFileWriter::putContent() {
    outcome_ = clearTheWay(*written_, base_);
    if (outcome_ == Outcome::written) {
        // Without a journal a write in place could destroy the only copy, so the file is replaced as a whole.
        const bool put =
            isJournaled_ ? disk_.writeInPlace(path_, *written_) : disk_.replaceAtomically(path_, *written_);
        if (put) {
            lastWritten_ = written_;
            remnant_.reset();
            const std::lock_guard guard(mutex_);
            onDisk_ = written_;
        } else {
            const FileReading left = readFile();
            remnant_ = left.status == FileReading::Status::read ? std::optional(left.bytes) : std::nullopt;
            outcome_ = Outcome::failed;
        }
        if (put && format_) disk_.sync(path_);
    }
    post(&StoreFileWriter::completeWrite);
}

void StoreFileWriter::completeWrite() {
    if (outcome_ == Outcome::written) {
        if (isJournaled_) {
            journal_.markWritten(written_);
        } else {
            journal_.markAllWritten();
        }
    }
    finish(outcome_);
}

void StoreFileWriter::finish(Outcome outcome) {
    bool hasNext = false;
    {
        const std::lock_guard lock(mutex_);
        if (outcome == Outcome::written) {
            current_ = nullptr;
            stamp_ = disk_.stamp(path_);
        }
        hasNext = next_ != nullptr;
    }
    isWriting_ = false;
    isPutting_ = false;
    lock_ = nullptr;
    restarts_ = 0;
    retry_.cancel();
    if (outcome == Outcome::written) {
        for (auto& completion : currentCompletions_)
            ports_.runLoop.post(std::move(completion));
        currentCompletions_.clear();
    }
    if (outcome == Outcome::conflict) {
        found_.adoptions = adoptionsAtStart_;
        onConflict_(found_);
    }
    if (hasNext) return post(&StoreFileWriter::process);
    if (outcome != Outcome::written) retryLater();
}

void StoreFileWriter::journalAhead() {
    Content waiting;
    Content base;
    {
        const std::lock_guard guard(mutex_);
        waiting = next_;
        base = isPutting_ ? written_ : onDisk_;
    }
    if (!waiting || journal_.hasNoted(waiting)) return;
    // A write under way holds the lock for both.
    const auto lock = lock_ ? nullptr : disk_.tryLock(lockPath_);
    if (lock) journal_.refresh();
    if (!lock_ && (!lock || !journal_.unfinished().empty())) return;
    journal_.note(waiting, base, isPutting_ ? written_ : nullptr);
}

// Decides whether what stands in the file may be overwritten; `written` means that it may.
StoreFileWriter::Outcome StoreFileWriter::clearTheWay(const std::string& content, const Content& onDisk) {
    if (!format_) return Outcome::written;
    FileReading reading = readFile();
    switch (reading.status) {
        case FileReading::Status::absent:
            return Outcome::written;
        case FileReading::Status::unreadable:
            // What cannot be read could not be kept either, unless it is just too long.
            if (reading.stamp.size <= StoreFile::maximumBytes) return Outcome::failed;
            break;
        case FileReading::Status::read:
            if (isOurs(reading.bytes, onDisk) || reading.bytes == content) return Outcome::written;
            if (format_->decodes(reading.bytes)) {
                found_ = {onDisk, std::make_shared<const std::string>(std::move(reading.bytes)), reading.stamp, 0};
                return Outcome::conflict;
            }
    }
    return keepAside(reading.stamp) ? Outcome::written : Outcome::failed;
}

bool StoreFileWriter::isOurs(const std::string& bytes, const Content& onDisk) const {
    if (onDisk && isRemnantOf(bytes, *onDisk)) return true;
    if (lastWritten_ && isRemnantOf(bytes, *lastWritten_)) return true;
    return remnant_ == bytes;
}

// Ends the writes that another run or another program left in the journal. False when that is not possible now.
bool StoreFileWriter::settle() {
    journal_.refresh();
    for (JournalRecord& record : journal_.unfinished()) {
        if (settleRecord(record)) continue;
        unsettled_ = std::move(record);
        return false;
    }
    return true;
}

bool StoreFileWriter::settleRecord(JournalRecord& record) {
    const FileReading reading = readFile();
    if (reading.status == FileReading::Status::unreadable) return false;
    const bool isThere = reading.status == FileReading::Status::read;
    const bool untouched = isThere && record.base == reading.bytes;
    Content merged;
    if (isThere && format_ && !untouched && !isRemnantOf(reading.bytes, record.content)) {
        if (format_->decodes(reading.bytes)) {
            record.content = format_->merge(record.base ? &*record.base : nullptr, record.content, reading.bytes);
            record.base = reading.bytes;
            merged = std::make_shared<const std::string>(record.content);
            if (!journal_.note(merged, std::make_shared<const std::string>(reading.bytes), nullptr)) return false;
            disk_.sync(journal_.notedPath());
        } else if (!keepAside(reading.stamp)) {
            return false;
        }
    }
    if ((!isThere || reading.bytes != record.content) && !disk_.writeInPlace(path_, record.content)) return false;
    disk_.sync(path_);
    journal_.markWritten(record.number);
    if (merged) journal_.markWritten(merged);
    return true;
}

bool StoreFileWriter::keepAside(const FileStamp& stamp) {
    if (keptAside_ == stamp) return true;
    std::string time = iso8601Utc(ports_.clock.now());
    std::replace(time.begin(), time.end(), ':', '-');
    const std::size_t nameStart = path_.rfind('/') + 1;
    const std::size_t dot = path_.rfind('.');
    const std::string stem = path_.substr(nameStart, dot - nameStart) + ".unreadable-" + time;
    for (const std::string& folder : {path_.substr(0, nameStart), stateFolder_}) {
        for (int copy = 1; copy <= maximumCopiesPerSecond; ++copy) {
            const std::string suffix = copy == 1 ? "" : "-" + std::to_string(copy);
            const std::string target = pathInside(folder, stem + suffix + path_.substr(dot));
            if (disk_.exists(target)) continue;
            if (!disk_.copyToNew(path_, target)) break;
            keptAside_ = stamp;
            return true;
        }
    }
    return false;
}

std::unique_ptr<FileLock> StoreFileWriter::waitForLock(Seconds patience, const std::function<void()>& whileWaiting) {
    for (Seconds waited = 0;; waited += lockPoll) {
        if (auto lock = disk_.tryLock(lockPath_)) return lock;
        if (waited >= patience) return nullptr;
        if (whileWaiting) whileWaiting();
        ports_.wait(lockPoll);
    }
}

}  // namespace sunpane
