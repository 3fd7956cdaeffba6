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
      format_(std::move(format)),
      onConflict_(std::move(onConflict)),
      // The same file has the same journals, however a program was given its path.
      place_{disk_, stateFolder_, disk_.canonicalPath(path_), StoreFile::maximumBytes,
             format_ ? format_->decodes : nullptr},
      lockPath_(pathInside(stateFolder_, journalName(place_.path) + ".lock")) {}

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
    queue_.post([activity = files_.beginActivity(), self = shared_from_this(), step] { (self.get()->*step)(); });
}

void StoreFileWriter::postToSyncQueue(Step step) {
    files_.syncQueue().post(
        [activity = files_.beginActivity(), self = shared_from_this(), step] { (self.get()->*step)(); });
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
    const Content& latest = next_ ? next_ : current_;
    return {latest != nullptr, !latest || latest == journaled_, onDisk_, current_, stamp_, adoptions_};
}

StoreFileWriter::Content StoreFileWriter::settleAtStart() {
    lock_ = waitForLock(lockPatienceAtStart);
    const bool isSettled = settle();
    lock_ = nullptr;
    if (isSettled) return nullptr;
    auto content = std::make_shared<const std::string>(std::move(unsettled_->content));
    const auto base = unsettled_->base ? std::make_shared<const std::string>(std::move(*unsettled_->base)) : nullptr;
    // From now on it is ours to write, and what the user does next replaces it.
    if (journal_) journal_->note(content, base);
    const std::lock_guard guard(mutex_);
    current_ = content;
    journaled_ = content;
    onDisk_ = base;
    queue_.post([self = shared_from_this()] { self->retryLater(); });
    return content;
}

StoreFileWriter::Content StoreFileWriter::recoverTruncated(const std::string& remnant) {
    const auto lock = waitForLock(lockPatienceAtStart);
    auto record = Journal::lastWritten(place_);
    if (!record || !isRemnantOf(remnant, record->content)) return nullptr;
    auto content = std::make_shared<const std::string>(std::move(record->content));
    const bool rewritten = lock && disk_.writeInPlace(path_, *content);
    disk_.sync(path_);
    const std::lock_guard guard(mutex_);
    onDisk_ = content;
    stamp_ = disk_.stamp(path_);
    if (!rewritten) {
        current_ = content;
        journaled_ = content;
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
        noteAhead();
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
    if (!journal_) claimJournal();
    isJournaled_ = note(written_, base_);
    journalPath_ = isJournaled_ ? journal_->notedPath() : "";
    isNextNoted_ = false;
    postToSyncQueue(&StoreFileWriter::write);
}

// At the start there was none to be had.
void StoreFileWriter::claimJournal() {
    for (int index = 0; index < Journal::maximumJournals && !journal_; ++index) {
        auto journal = Journal::take(place_, index);
        // What a dead program left goes first.
        if (journal && journal->unfinished().empty()) journal_ = std::move(journal);
    }
}

// What was handed over during a write must not wait for the end of it to be safe.
void StoreFileWriter::noteAhead() {
    Content waiting;
    {
        const std::lock_guard guard(mutex_);
        waiting = next_;
    }
    isNextNoted_ = waiting && note(waiting, isJournaled_ ? written_ : base_);
}

bool StoreFileWriter::note(const Content& content, const Content& base) {
    if (!journal_ || !journal_->note(content, base)) return false;
    const std::lock_guard guard(mutex_);
    journaled_ = content;
    return true;
}

void StoreFileWriter::write() {
    // What is derived can be derived again; the rest must be safe from a power cut before the file is emptied.
    if (format_ && isJournaled_) disk_.sync(journalPath_);
    lock_ = waitForLock(journal_ ? lockPatience : 0);
    // Two programs that write at once could leave a mix of both, unless the file is replaced.
    const bool mayWrite = lock_ || !isJournaled_;
    // What another run left unwritten goes first.
    outcome_ = mayWrite && settle() ? putContent() : Outcome::failed;
    post(&StoreFileWriter::completeWrite);
}

StoreFileWriter::Outcome StoreFileWriter::putContent() {
    if (const Outcome way = clearTheWay(); way != Outcome::written) return way;
    // Without a journal a write in place could destroy the only copy.
    if (!(isJournaled_ ? disk_.writeInPlace(path_, *written_) : disk_.replaceAtomically(path_, *written_))) {
        noteRemnant();
        return Outcome::failed;
    }
    lastWritten_ = written_;
    {
        // Before the wait for the disk, so that what another program writes meanwhile is not taken for ours.
        const auto stamp = disk_.stamp(path_);
        const std::lock_guard lock(mutex_);
        onDisk_ = written_;
        stamp_ = stamp;
    }
    if (format_) disk_.sync(path_);
    return Outcome::written;
}

void StoreFileWriter::noteRemnant() {
    FileReading left = readFile();
    remnant_ = left.status == FileReading::Status::read ? std::optional(std::move(left.bytes)) : std::nullopt;
}

void StoreFileWriter::completeWrite() {
    if (outcome_ == Outcome::written && isJournaled_) {
        journal_->markWritten(written_);
    } else if (outcome_ == Outcome::written && journal_ && !isNextNoted_) {
        journal_->markAllWritten();
    }
    finish(outcome_);
}

void StoreFileWriter::finish(Outcome outcome) {
    bool hasNext = false;
    {
        const std::lock_guard lock(mutex_);
        if (outcome == Outcome::written) current_ = nullptr;
        hasNext = next_ != nullptr;
    }
    isWriting_ = false;
    lock_ = nullptr;
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

// Decides whether what stands in the file may be overwritten; `written` means that it may.
StoreFileWriter::Outcome StoreFileWriter::clearTheWay() {
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
            if (isOurs(reading.bytes)) return Outcome::written;
            if (format_->decodes(reading.bytes)) {
                found_ = {base_, std::make_shared<const std::string>(std::move(reading.bytes)), reading.stamp, 0};
                return Outcome::conflict;
            }
    }
    return keepAside(reading.stamp) ? Outcome::written : Outcome::failed;
}

bool StoreFileWriter::isOurs(const std::string& bytes) const {
    if (base_ && isRemnantOf(bytes, *base_)) return true;
    if (lastWritten_ && isRemnantOf(bytes, *lastWritten_)) return true;
    return remnant_ == bytes || *written_ == bytes;
}

// Ends the writes that programs left in their journals when they died. False when that is not possible now. At the
// start the first journal that is free, or the one that holds what could not be written, becomes ours.
bool StoreFileWriter::settle() {
    const bool isStart = journal_ == nullptr && written_ == nullptr;
    for (int index = 0; index < Journal::maximumJournals; ++index) {
        if (journal_ && journal_->index() == index) continue;
        auto& settledAt = settledAt_.at(static_cast<std::size_t>(index));
        const auto changed = Journal::lastChange(place_, index);
        if (changed == settledAt && (!isStart || journal_)) continue;
        auto journal = Journal::take(place_, index);
        if (!journal) continue;
        const bool isSettled = settleJournal(*journal);
        if (isSettled) settledAt = Journal::lastChange(place_, index);
        if (isStart && (!isSettled || !journal_)) journal_ = std::move(journal);
        if (!isSettled) return false;
    }
    return true;
}

bool StoreFileWriter::settleJournal(Journal& journal) {
    const auto records = journal.unfinished();
    if (records.empty()) return true;
    const FileReading reading = readFile();
    const bool isThere = reading.status == FileReading::Status::read;
    const auto found = isThere ? std::optional(reading.bytes) : std::nullopt;
    const auto fits = [&](const JournalRecord& record) {
        return !isThere || !format_ || found == record.base || isRemnantOf(*found, record.content);
    };
    // From the latest on to which the file can be brought as it is.
    const auto fitting = std::find_if(records.rbegin(), records.rend(), fits);
    auto record = fitting == records.rend() ? records.begin() : std::prev(fitting.base());
    const bool isForeign = fitting == records.rend();
    const bool isUnknown = isForeign && !format_->decodes(*found);
    std::string content = record->content;
    if (isForeign && !isUnknown) content = format_->merge(record->base ? &*record->base : nullptr, content, *found);
    while (++record != records.end()) {
        content = content == record->base ? record->content : format_->merge(&*record->base, record->content, content);
    }
    const bool isReadable = reading.status != FileReading::Status::unreadable;
    unsettled_ = JournalRecord{0, false, place_.path, isReadable ? found : records.front().base, content};
    if (!isReadable || (lock_ == nullptr && found != content)) return false;
    if (isUnknown && !keepAside(reading.stamp)) return false;
    if (content != records.back().content) {
        // So that an end of this write, too, is found by the next start.
        if (!journal.note(std::make_shared<const std::string>(content),
                          found ? std::make_shared<const std::string>(*found) : nullptr)) {
            return false;
        }
        disk_.sync(journal.notedPath());
    }
    if (found != content && !disk_.writeInPlace(path_, content)) {
        noteRemnant();
        return false;
    }
    disk_.sync(path_);
    journal.markAllWritten();
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

}  // namespace sunpane
