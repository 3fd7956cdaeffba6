#include "core/stores/StoreFileWriter.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "base/Dates.h"

namespace sunpane {

StoreFileWriter::StoreFileWriter(StoreFiles& files, std::string path, std::optional<StoreFormat> format,
                                 ConflictHandler onConflict)
    : ports_(files.ports()),
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
    queue_.post([self = shared_from_this()] { self->process(); });
}

void StoreFileWriter::adopt(Content content, const FileStamp& stamp) {
    const std::lock_guard lock(mutex_);
    onDisk_ = std::move(content);
    stamp_ = stamp;
    ++adoptions_;
}

StoreFileWriter::View StoreFileWriter::view() const {
    const std::lock_guard lock(mutex_);
    return {next_ || current_, onDisk_, current_, stamp_, adoptions_};
}

StoreFileWriter::Content StoreFileWriter::settleAtStart() {
    if (!disk_.exists(pendingPath_)) return nullptr;
    const auto lock = waitForLock(lockPatienceAtStart);
    auto unfinished = settle();
    if (!unfinished) return nullptr;
    auto content = std::make_shared<const std::string>(std::move(unfinished->content));
    const std::lock_guard guard(mutex_);
    current_ = content;
    if (unfinished->base) onDisk_ = std::make_shared<const std::string>(std::move(*unfinished->base));
    journaled_ = content;
    queue_.post([self = shared_from_this()] { self->retryLater(); });
    return content;
}

StoreFileWriter::Content StoreFileWriter::recoverTruncated(const std::string& remnant) {
    const auto lock = waitForLock(lockPatienceAtStart);
    auto record = readJournal(writtenPath_);
    if (!record || !isRemnantOf(remnant, record->content)) return nullptr;
    auto content = std::make_shared<const std::string>(std::move(record->content));
    const bool rewritten = disk_.writeInPlace(path_, *content);
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
    Content content;
    Content onDisk;
    std::uint64_t adoptions = 0;
    {
        const std::lock_guard lock(mutex_);
        scheduled_ = false;
        if (next_) {
            current_ = std::exchange(next_, nullptr);
            std::move(nextCompletions_.begin(), nextCompletions_.end(), std::back_inserter(currentCompletions_));
            nextCompletions_.clear();
        }
        content = current_;
        onDisk = onDisk_;
        adoptions = adoptions_;
    }
    if (content) finish(write(content, onDisk), adoptions);
}

void StoreFileWriter::finish(Outcome outcome, std::uint64_t adoptions) {
    if (outcome == Outcome::written) {
        retry_.cancel();
        {
            const std::lock_guard lock(mutex_);
            onDisk_ = std::exchange(current_, nullptr);
            lastWritten_ = onDisk_;
            stamp_ = disk_.stamp(path_);
        }
        for (auto& completion : currentCompletions_)
            ports_.runLoop.post(std::move(completion));
        currentCompletions_.clear();
        return;
    }
    if (outcome == Outcome::conflict) {
        found_.adoptions = adoptions;
        onConflict_(found_);
    }
    retryLater();
}

StoreFileWriter::Outcome StoreFileWriter::write(const Content& content, const Content& onDisk) {
    const auto lock = waitForLock(lockPatience);
    // Our own journal would replace the note of another program's interrupted write.
    if (settle()) return Outcome::failed;
    const bool journaled = journal(content, onDisk.get());
    const Outcome way = clearTheWay(*content, onDisk);
    if (way != Outcome::written) return way;

    // Without a journal a write in place could destroy the only copy, so the file is replaced as a whole.
    const bool written = journaled ? disk_.writeInPlace(path_, *content) : disk_.replaceAtomically(path_, *content);
    if (!written) {
        const FileReading left = readFile();
        remnant_ = left.status == FileReading::Status::read ? std::optional(left.bytes) : std::nullopt;
        return Outcome::failed;
    }
    if (journaled) {
        disk_.rename(pendingPath_, writtenPath_);
    } else {
        disk_.remove(pendingPath_);
        disk_.remove(writtenPath_);
    }
    journaled_ = nullptr;
    remnant_.reset();
    return Outcome::written;
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

bool StoreFileWriter::journal(const Content& content, const std::string* base) {
    const std::string record = encodeJournal(identity_, base, *content);
    bool kept = disk_.replaceAtomically(pendingPath_, record);
    if (!kept && disk_.createFolders(stateFolder_)) kept = disk_.replaceAtomically(pendingPath_, record);
    if (kept) journaled_ = content;
    return kept;
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
            if (!disk_.replaceAtomically(pendingPath_, encodeJournal(identity_, &reading.bytes, record.content)))
                return false;
        } else if (!keepAside(reading.stamp)) {
            return false;
        }
    }
    if ((!isThere || reading.bytes != record.content) && !disk_.writeInPlace(path_, record.content)) return false;
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

std::unique_ptr<FileLock> StoreFileWriter::waitForLock(Seconds patience) {
    for (Seconds waited = 0;; waited += lockPoll) {
        if (auto lock = disk_.tryLock(lockPath_)) return lock;
        if (waited >= patience) return nullptr;
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
