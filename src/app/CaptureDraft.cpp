#include "app/CaptureDraft.h"

#include <utility>

#include "base/Text.h"

namespace sunpane {

CaptureDraft::CaptureDraft(StoreFiles& files) : files_(files), path_(pathInside(files.stateFolder(), fileName)) {
    const FileReading left = files_.ports().files.read(path_, maximumBytes);
    if (left.status == FileReading::Status::read) text_ = text::toValidUtf8(left.bytes);
}

CaptureDraft::~CaptureDraft() {
    if (saving_) write();
    files_.queue().drain();
    files_.syncQueue().drain();
}

void CaptureDraft::set(std::string_view text) {
    if (text == text_) return;
    text_ = text;
    // An entered todo must not come back as a draft when the program dies now.
    if (text_.empty()) return write();
    if (!saving_) saving_ = files_.ports().runLoop.after(saveInterval, [this] { write(); });
}

void CaptureDraft::write() {
    saving_ = {};
    auto task = [activity = files_.beginActivity(), &disk = files_.ports().files, path = path_, text = text_,
                 folder = files_.stateFolder()] {
        if (text.empty()) {
            disk.remove(path);
        } else if (disk.createFolders(folder)) {
            disk.replaceAtomically(path, text);
        }
    };
    // By way of the queue that journals todos, so that the draft stays until the todo that came of it is safe.
    files_.queue().post([&syncQueue = files_.syncQueue(), task = std::move(task)] { syncQueue.post(task); });
}

}  // namespace sunpane
