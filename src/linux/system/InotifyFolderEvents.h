#pragma once

#include "platform/FolderEvents.h"

namespace sunpane {

/// Folder events from inotify(7): entries created, moved, deleted, or closed after writing.
class InotifyFolderEvents : public FolderEvents {
public:
    std::unique_ptr<FolderEventSource> watch(const std::string& folder, SerialExecutor& executor,
                                             Handler handler) override;
};

}  // namespace sunpane
