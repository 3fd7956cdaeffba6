#pragma once

#include <functional>
#include <memory>
#include <string>

#include "core/stores/StoreFiles.h"
#include "support/SimulatedFileSystem.h"
#include "support/SimulatedPlatform.h"

namespace sunpane::testing {

/// A machine with a disk in memory and a briefings folder on it.
struct StoreFixture {
    static constexpr const char* folder = "/home/me/briefings";
    static constexpr const char* stateFolder = "/home/me/state";

    SimulatedPlatform platform;
    SimulatedFileSystem disk{platform.clock};
    SimulatedCloudFiles cloud;
    Seconds waited = 0;
    std::function<void()> whileWaiting;
    std::unique_ptr<StoreFiles> files;

    StoreFixture() {
        disk.makeFolder("/home/me");
        start();
    }
    ~StoreFixture() { files.reset(); }

    static std::string path(const std::string& name) { return std::string(folder) + "/" + name; }

    void start() {
        const auto wait = [this](Seconds seconds) {
            waited += seconds;
            if (whileWaiting) whileWaiting();
        };
        files = std::make_unique<StoreFiles>(
            StoreFiles::Ports{disk, cloud, platform.clock, platform.runLoop, platform.queues, wait}, stateFolder);
    }

    /// The process ends, orderly or not, and a new one starts.
    void restart() {
        files.reset();
        disk.revive();
        start();
    }

    void settle() { platform.time.runPending(); }
    void pass(Seconds seconds) { platform.time.advance(seconds); }
    std::string content(const std::string& name) const { return disk.content(path(name)).value_or("(no file)"); }
};

}  // namespace sunpane::testing
