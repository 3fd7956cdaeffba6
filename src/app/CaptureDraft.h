#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "base/Instant.h"
#include "base/Subscription.h"
#include "core/stores/StoreFiles.h"

namespace sunpane {

/// What stands in the panel's field for a new todo and was not entered yet. Kept in the state folder, so that the next
/// start has it, whether this one ends in good order, is replaced by a newer copy, or dies a moment after the last key.
/// A text that is taken away after it became a todo goes only once the todo is in its journal.
///
/// Owned by the view model; main thread only. Failures are silent.
class CaptureDraft {
public:
    static constexpr const char* fileName = "draft.txt";
    /// A text that changes is written at most this often (s).
    static constexpr Seconds saveInterval = 0.5;
    /// A longer file is not read. The field takes far less.
    static constexpr std::size_t maximumBytes = std::size_t{64} << 10;

    /// Reads what the last start left.
    explicit CaptureDraft(StoreFiles& files);
    /// Waits until the text is written.
    ~CaptureDraft();
    CaptureDraft(const CaptureDraft&) = delete;
    CaptureDraft& operator=(const CaptureDraft&) = delete;

    const std::string& text() const { return text_; }
    void set(std::string_view text);

private:
    void write();

    StoreFiles& files_;
    std::string path_;
    std::string text_;
    // Set while the text is not handed to the queue yet.
    Subscription saving_;
};

}  // namespace sunpane
