#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <sstream>
#include <string>
#include <vector>

#include "cli/Command.h"
#include "support/SimulatedFileSystem.h"
#include "support/SimulatedFolderEvents.h"
#include "support/SimulatedPlatform.h"
#include "support/SimulatedUserDefaults.h"

namespace sunpane::testing {

/// Is asked to end once `meanwhile` is over.
class SimulatedInterrupt : public cli::Interrupt {
public:
    void arm() override { isArmed = true; }
    void wait() override { meanwhile(); }
    bool isArmed = false;
    std::function<void()> meanwhile = [] {};
};

/// The surroundings of a command, on a simulated machine whose disk is in memory.
struct CommandFixture : ::testing::Test {
    SimulatedPlatform platform;
    SimulatedFileSystem disk{platform.clock};
    SimulatedUserDefaults defaults;
    SimulatedFolderEvents events;
    SimulatedCloudFiles cloud;
    SimulatedInterrupt interrupt;
    WorkQueueFactory* queues = &platform.queues;
    std::ostringstream out;
    std::ostringstream err;

    /// A test adds what its commands need besides.
    cli::Environment environment() {
        return {.clock = platform.clock,
                .defaults = defaults,
                .queues = *queues,
                .folderEvents = events,
                .cloudFiles = cloud,
                .interrupt = interrupt,
                .out = out,
                .err = err,
                .files = &disk,
                .stateFolder = "/state",
                .wait = [](Seconds) {}};
    }
    int runIn(cli::Environment environment, const std::vector<std::string>& arguments) {
        out.str("");
        err.str("");
        return cli::runCommandLine(arguments, environment);
    }
};

}  // namespace sunpane::testing
