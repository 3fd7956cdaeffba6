#pragma once

#include <optional>

#include "app/NotchUndo.h"
#include "app/NotchViewModel.h"
#include "notch/ScrollSwipeHub.h"
#include "support/SimulatedAgenda.h"
#include "support/SimulatedDesktop.h"
#include "support/SimulatedFolderEvents.h"
#include "support/SimulatedPlayers.h"
#include "support/SimulatedStores.h"
#include "support/SimulatedUserDefaults.h"
#include "support/TemporaryFolder.h"

namespace sunpane::testing {

/// A view model over a simulated platform, and what else its users need. The briefings are in a real folder, the
/// stores' files beside them are not.
struct SimulatedViewModel : SimulatedStores {
    SimulatedFolderEvents folderEvents;
    SimulatedUserDefaults defaults;
    TemporaryFolder folder;
    LocalNotifications notifications;
    SimulatedAgenda agenda{platform, defaults};
    SimulatedPlayers players{platform};
    SimulatedPointer pointer;
    ScrollSwipeHub hub{pointer};
    NotchUndo undo;
    std::optional<NotchViewModel> model;

    SimulatedViewModel() {
        defaults.set("briefingsFolderPath", folder.path());
        restart();
    }

    /// Ends the view model and makes it anew, as the next run of the program does.
    void restart() {
        model.reset();
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
