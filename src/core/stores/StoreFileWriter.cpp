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
      pendingPath_(pathInside(stateFolder_, journalName(identity_) + ".pending")),
      writtenPath_(pathInside(stateFolder_, journalName(identity_) + ".written")) {}

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

void StoreFileWriter::syncThen(const std::string& path, Step next) {
    files_.syncQueue().post([self = shared_from_this(), path, next, activity = files_.beginActivity()] {
        self->disk_.sync(path);
        self->post(next);
    });
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
    if (!disk_.exists(pendingPath_)) return nullptr;
    const auto lock = waitForLock(lockPatienceAtStart, nullptr);
    auto unfinished = settle();
    if (!unfinished) return nullptr;
    auto content = std::make_shared<const std::string>(std::move(unfinished->content));
    const std::lock_guard guard(mutex_);
    current_ = content;
    if (unfinished->base) onDisk_ = std::make_shared<const std::string>(std::move(*unfinished->base));
    journaled_ = content;
    journaledBase_ = onDisk_;
    queue_.post([self = shared_from_this()] { self->retryLater(); });
    return content;
}

StoreFileWriter::Content StoreFileWriter::recoverTruncated(const std::string& remnant) {
    const auto lock = waitForLock(lockPatienceAtStart, nullptr);
    auto record = readJournal(writtenPath_);
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
    // Our own journal would replace the note of another program's interrupted write.
    if (settle()) return finish(Outcome::failed);
    isJournaled_ = journal(written_, base_);
    // What is derived can be derived again; the rest must be safe from a power cut before the file is emptied.
    if (format_ && isJournaled_) return syncThen(pendingPath_, &StoreFileWriter::writeFile);
    writeFile();
}

void StoreFileWriter::writeFile() {
    if (isJournaled_ && journaled_ != written_) {
        // A newer content took its place in the journal while the disk was waited for, so that one is written.
        takeNext();
        isJournaled_ = journal(written_, base_);
        if (isJournaled_ && ++restarts_ <= maximumRestarts) return syncThen(pendingPath_, &StoreFileWriter::writeFile);
    }
    const Outcome way = clearTheWay(*written_, base_);
    if (way != Outcome::written) return finish(way);
    if (!put(written_, isJournaled_)) {
        const FileReading left = readFile();
        remnant_ = left.status == FileReading::Status::read ? std::optional(left.bytes) : std::nullopt;
        return finish(Outcome::failed);
    }
    // From here on the file speaks for this content, and the journal may take the next one.
    {
        const std::lock_guard guard(mutex_);
        onDisk_ = written_;
    }
    lastWritten_ = written_;
    remnant_.reset();
    if (format_) return syncThen(path_, &StoreFileWriter::completeWrite);
    completeWrite();
}

void StoreFileWriter::completeWrite() {
    if (journaled_ == written_) {
        disk_.rename(pendingPath_, writtenPath_);
        journaled_ = nullptr;
    }
    finish(Outcome::written);
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

bool StoreFileWriter::put(const Content& content, bool journaled) {
    if (journaled) return disk_.writeInPlace(path_, *content);
    // Without a journal a write in place could destroy the only copy, so the file is replaced as a whole.
    if (!disk_.replaceAtomically(path_, *content, FileSystem::Durability::machine)) return false;
    disk_.remove(pendingPath_);
    disk_.remove(writtenPath_);
    journaled_ = nullptr;
    return true;
}

void StoreFileWriter::journalAhead() {
    Content waiting;
    Content base;
    {
        const std::lock_guard guard(mutex_);
        waiting = next_;
        base = onDisk_;
    }
    if (!waiting || waiting == journaled_) return;
    // A write under way holds the lock for both.
    const auto lock = lock_ ? nullptr : disk_.tryLock(lockPath_);
    if (!lock_ && !lock) return;
    if (!lock_ && disk_.exists(pendingPath_) && !pendingIsOurs()) return;
    journal(waiting, base);
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

bool StoreFileWriter::journal(const Content& content, const Content& base) {
    if (journaled_ == content && journaledBase_ == base) return true;
    constexpr auto durability = FileSystem::Durability::process;
    const std::string record = encodeJournal(identity_, base.get(), *content);
    bool kept = disk_.replaceAtomically(pendingPath_, record, durability);
    if (!kept && disk_.createFolders(stateFolder_)) kept = disk_.replaceAtomically(pendingPath_, record, durability);
    if (kept) {
        journaled_ = content;
        journaledBase_ = base;
    }
    return kept;
}

bool StoreFileWriter::pendingIsOurs() const {
    if (!journaled_) return false;
    const auto record = readJournal(pendingPath_);
    return record && record->content == *journaled_;
}

// Ends the write that another run or another program left in the journal. Returns it when that was not possible.
std::optional<JournalRecord> StoreFileWriter::settle() {
    if (!disk_.exists(pendingPath_)) return std::nullopt;
    auto record = readJournal(pendingPath_);
    if (!record) {
        disk_.remove(pendingPath_);
        return std::nullopt;
    }
    if (journaled_ && record->content == *journaled_) return std::nullopt;
    if (settleRecord(*record)) return std::nullopt;
    return record;
}

bool StoreFileWriter::settleRecord(JournalRecord& record) {
    const FileReading reading = readFile();
    if (reading.status == FileReading::Status::unreadable) return false;
    const bool isThere = reading.status == FileReading::Status::read;
    const bool untouched = isThere && record.base == reading.bytes;
    if (isThere && format_ && !untouched && !isRemnantOf(reading.bytes, record.content)) {
        if (format_->decodes(reading.bytes)) {
            record.content = format_->merge(record.base ? &*record.base : nullptr, record.content, reading.bytes);
            record.base = reading.bytes;
            if (!disk_.replaceAtomically(pendingPath_, encodeJournal(identity_, &reading.bytes, record.content),
                                         FileSystem::Durability::machine))
                return false;
        } else if (!keepAside(reading.stamp)) {
            return false;
        }
    }
    if ((!isThere || reading.bytes != record.content) && !disk_.writeInPlace(path_, record.content)) return false;
    disk_.sync(path_);
    disk_.rename(pendingPath_, writtenPath_);
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

std::optional<JournalRecord> StoreFileWriter::readJournal(const std::string& journalPath) const {
    // A record holds the content and the one before it.
    const FileReading reading = disk_.read(journalPath, 2 * StoreFile::maximumBytes + 8192);
    if (reading.status != FileReading::Status::read) return std::nullopt;
    auto record = decodeJournal(reading.bytes);
    if (!record || record->path != identity_) return std::nullopt;
    if (format_ && !format_->decodes(record->content)) return std::nullopt;
    return record;
}

}  // namespace sunpane
