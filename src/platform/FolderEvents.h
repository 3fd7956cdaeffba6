#pragma once

#include <functional>
#include <memory>
#include <string>

#include "base/SerialExecutor.h"

namespace sunpane {

/// Watches one folder until it is destroyed.
class FolderEventSource {
public:
    virtual ~FolderEventSource() = default;

    /// Whether the folder that now stands under the watched path is still the one being watched. False once it was
    /// deleted, moved or replaced; the owner then makes a new source.
    virtual bool isCurrent() const = 0;
};

/// Tells of changes to a folder's entries (not of subfolders' contents).
class FolderEvents {
public:
    /// `name` is the entry that was added, moved, deleted or written, as the file system spells it; empty when the
    /// folder itself is concerned, or when events were lost and anything may have changed.
    using Handler = std::function<void(const std::string& name)>;

    virtual ~FolderEvents() = default;

    /// Starts watching; `handler` runs on `executor` and never after the source is destroyed there. Null when the
    /// folder cannot be watched.
    virtual std::unique_ptr<FolderEventSource> watch(const std::string& folder, SerialExecutor& executor,
                                                     Handler handler) = 0;
};

}  // namespace sunpane
