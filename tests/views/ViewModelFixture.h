#pragma once

#include <gtest/gtest.h>

#include <optional>

#include "app/NotchUndo.h"
#include "app/NotchViewModel.h"
#include "notch/ScrollSwipeHub.h"
#include "support/SimulatedAgenda.h"
#include "support/SimulatedDesktop.h"
#include "support/SimulatedFileSystem.h"
#include "support/SimulatedFolderEvents.h"
#include "support/SimulatedPlayers.h"
#include "support/SimulatedUserDefaults.h"
#include "support/TemporaryFolder.h"

namespace sunpane::testing {

/// A view model over a simulated platform, for what presents it.
struct ViewModelFixture : ::testing::Test {
    SimulatedPlatform platform;
    SimulatedFolderEvents folderEvents;
    SimulatedCloudFiles cloudFiles;
    SimulatedUserDefaults defaults;
    TemporaryFolder folder;
    SimulatedFileSystem files{platform.clock};
    StoreFiles storeFiles{{files, cloudFiles, platform.clock, platform.runLoop, platform.queues, [](Seconds) {}},
                          "/state"};
    LocalNotifications notifications;
    SimulatedAgenda agenda{platform, defaults};
    SimulatedPlayers players{platform};
    SimulatedPointer pointer;
    ScrollSwipeHub hub{pointer};
    NotchUndo undo;
    std::optional<NotchViewModel> model;

    ViewModelFixture() {
        defaults.set("briefingsFolderPath", folder.path());
        model.emplace(NotchViewModel::Collaborators{platform.clock,
                                                    platform.runLoop,
                                                    notifications,
                                                    defaults,
                                                    {platform.clock, platform.queues, folderEvents, cloudFiles},
                                                    storeFiles,
                                                    agenda.fallback,
                                                    agenda.meetings,
                                                    players.nowPlaying});
    }
};

}  // namespace sunpane::testing
