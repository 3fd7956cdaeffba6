#pragma once

#include <string>

namespace sunpane {

/// Files of a synced folder whose content may not be on this machine yet. Any thread.
class CloudFiles {
public:
    virtual ~CloudFiles() = default;

    /// Asks the system to fetch the content that the placeholder at `path` stands for. Returns at once; a failure, or
    /// a folder that is not synced, is ignored.
    virtual void startDownloading(const std::string& path) = 0;
};

}  // namespace sunpane
