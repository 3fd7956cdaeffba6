#pragma once

#include <string>
#include <vector>

#include "core/stores/StoreFiles.h"
#include "core/stores/Todo.h"
#include "support/SimulatedFileSystem.h"
#include "support/SimulatedPlatform.h"

namespace sunpane::testing {

inline std::vector<std::string> texts(const std::vector<Todo>& todos) {
    std::vector<std::string> result;
    for (const Todo& todo : todos)
        result.push_back(todo.text);
    return result;
}

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
