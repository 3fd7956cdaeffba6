#include "core/stores/StoreFile.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "core/stores/StoreFileWriter.h"

namespace sunpane {

StoreFile::StoreFile(StoreFiles& files, std::string path, std::optional<StoreFormat> format)
    : files_(files), path_(std::move(path)), self_(std::make_shared<StoreFile*>(this)) {
    auto onConflict = [&runLoop = files.ports().runLoop,
                       weak = std::weak_ptr(self_)](const StoreFileWriter::Conflict& conflict) {
        runLoop.post([weak, conflict] {
            const auto self = weak.lock();
            if (!self) return;
            StoreFile& file = **self;
            // Once the store has taken over a newer content, a write that includes it is on its way.
            if (!file.conflict_ || conflict.adoptions != file.writer_->view().adoptions) return;
            file.writer_->adopt(conflict.theirs, conflict.stamp);
            file.conflict_({*conflict.theirs, true, conflict.base.get()});
        });
    };
    writer_ = std::make_shared<StoreFileWriter>(files, path_, std::move(format), std::move(onConflict));
}

StoreFile::~StoreFile() = default;

bool StoreFile::load(const Taker& take) {
    // A store of this process that was on the same file before may still be writing.
    if (files_.isBusy()) files_.drain();
    if (const Content unwritten = writer_->settleAtStart()) return take({*unwritten});
    FileReading reading = writer_->readFile();
    if (reading.status != FileReading::Status::read) return false;
    const auto content = std::make_shared<const std::string>(std::move(reading.bytes));
    if (take({*content})) {
        writer_->adopt(content, reading.stamp);
        return true;
    }
    const Content whole = writer_->recoverTruncated(*content);
    return whole && take({*whole});
}

StoreFile::Reload StoreFile::reload(const Taker& take) {
    FileReading reading = writer_->readFile();
    if (reading.status != FileReading::Status::read) return Reload::failed;
    const auto view = writer_->view();
    const auto content = std::make_shared<const std::string>(std::move(reading.bytes));
    if (!view.unwritten) {
        if (!take({*content})) return Reload::failed;
        writer_->adopt(content, reading.stamp);
        return Reload::taken;
    }
    // Memory is ahead of what we wrote ourselves.
    if ((view.onDisk && *view.onDisk == *content) || (view.writing && *view.writing == *content)) return Reload::taken;
    if (!take({*content, true, view.onDisk.get()})) return Reload::failed;
    writer_->adopt(content, reading.stamp);
    return Reload::merged;
}

bool StoreFile::changedOnDisk() const {
    const auto view = writer_->view();
    if (view.unwritten) return false;
    const auto stamp = files_.ports().files.stamp(path_);
    return stamp && stamp != view.stamp;
}

std::optional<FileTime> StoreFile::modificationTime() const {
    const auto stamp = files_.ports().files.stamp(path_);
    return stamp ? std::optional(stamp->modified) : std::nullopt;
}

std::optional<FileTime> StoreFile::knownTime() const {
    const auto view = writer_->view();
    return view.stamp ? std::optional(view.stamp->modified) : std::nullopt;
}

bool StoreFile::wentWithItsFolder() {
    if (!files_.ports().files.exists(path_.substr(0, path_.rfind('/')))) {
        folderIsGone_ = true;
        return false;
    }
    const auto view = writer_->view();
    return std::exchange(folderIsGone_, false) && view.onDisk && !view.unwritten && !files_.awaitsDownload(path_);
}

void StoreFile::writeAsync(std::string content, std::function<void()> completion) {
    writer_->submit(std::move(content),
                    [weak = std::weak_ptr(self_), write = ++handedOver_, inner = std::move(completion)] {
                        const auto self = weak.lock();
                        if (!self) return;
                        if (inner) inner();
                        (*self)->noteWritten(write);
                    });
}

Subscription StoreFile::whenWritten(std::function<void()> then) {
    if (written_ == handedOver_) {
        then();
        return {};
    }
    const std::uint64_t waiter = nextWaiter_++;
    waiters_.emplace(waiter, Waiter{handedOver_, std::move(then)});
    return Subscription([weak = std::weak_ptr(self_), waiter] {
        if (const auto self = weak.lock()) (*self)->waiters_.erase(waiter);
    });
}

void StoreFile::noteWritten(std::uint64_t write) {
    written_ = std::max(written_, write);
    std::vector<Waiter> ready;
    while (!waiters_.empty() && waiters_.begin()->second.write <= written_) {
        ready.push_back(std::move(waiters_.begin()->second));
        waiters_.erase(waiters_.begin());
    }
    for (const Waiter& waiter : ready)
        waiter.then();
}

bool StoreFile::hasUnwritten() const {
    return writer_->view().unwritten;
}

bool StoreFile::isSafe() const {
    return writer_->view().isSafe;
}

}  // namespace sunpane
