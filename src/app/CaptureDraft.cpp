#include "app/CaptureDraft.h"

#include "base/Text.h"

namespace sunpane {

CaptureDraft::CaptureDraft(StoreFiles& files) : files_(files), path_(pathInside(files.stateFolder(), fileName)) {
    const FileReading left = files_.ports().files.read(path_, maximumBytes);
    if (left.status == FileReading::Status::read) text_ = text::toValidUtf8(left.bytes);
}

CaptureDraft::~CaptureDraft() {
    if (saving_) write();
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
    files_.syncQueue().post([&disk = files_.ports().files, path = path_, text = text_, folder = files_.stateFolder()] {
        if (text.empty()) {
            disk.remove(path);
        } else if (disk.createFolders(folder)) {
            disk.replaceAtomically(path, text);
        }
    });
}

}  // namespace sunpane
