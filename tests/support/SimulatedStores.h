#pragma once

#include "core/stores/StoreFiles.h"
#include "support/SimulatedFileSystem.h"
#include "support/SimulatedPlatform.h"

namespace sunpane::testing {

/// A simulated machine with the files of stores.
struct SimulatedStores {
    SimulatedPlatform platform;
    SimulatedCloudFiles cloudFiles;
    SimulatedFileSystem files{platform.clock};
    StoreFiles storeFiles{{files, cloudFiles, platform.clock, platform.runLoop, platform.queues,
                           [this](Seconds seconds) { platform.time.advance(seconds); }},
                          "/state"};
};

}  // namespace sunpane::testing
