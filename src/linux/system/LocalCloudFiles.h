#pragma once

#include "platform/CloudFiles.h"

namespace sunpane {

/// A local folder has all its content already: a request to download does nothing.
class LocalCloudFiles : public CloudFiles {
public:
    void startDownloading(const std::string& /*path*/) override {}
};

}  // namespace sunpane
