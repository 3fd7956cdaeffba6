#pragma once

#include <QElapsedTimer>
#include <QQmlEngine>
#include <QQuickWindow>
#include <algorithm>
#include <cstdio>
#include <memory>
#include <vector>

#include "linux/desktop/QtRunLoop.h"
#include "linux/desktop/QtWorkspace.h"
#include "linux/desktop/X11Backdrop.h"
#include "linux/desktop/X11Events.h"
#include "linux/desktop/X11PanelWindow.h"
#include "linux/system/InotifyFolderEvents.h"
#include "linux/system/JsonUserDefaults.h"
#include "linux/system/LocalCloudFiles.h"
#include "linux/system/PosixFileSystem.h"
#include "linux/system/SystemClock.h"
#include "linux/system/ThreadWorkQueue.h"
#include "linux/system/XdgPaths.h"
#include "support/SimulatedAgenda.h"
#include "support/SimulatedDesktop.h"
#include "support/SimulatedPlatform.h"
#include "support/SimulatedPlayers.h"
#include "views/RootWindow.h"

namespace sunpane::bench {

/// Frame times in milliseconds.
class FrameTimes {
public:
    void add(double milliseconds) { times_.push_back(milliseconds); }
    void print(const char* name) {
        if (times_.empty()) return static_cast<void>(std::printf("%-12s no frames\n", name));
        const auto longest = std::max_element(times_.begin(), times_.end()) - times_.begin();
        std::sort(times_.begin(), times_.end());
        const auto at = [&](double share) {
            return times_[static_cast<std::size_t>(share * double(times_.size() - 1))];
        };
        const auto late = std::count_if(times_.begin(), times_.end(), [](double t) { return t > frameBudget; });
        std::printf(
            "%-12s %4zu frames: median %5.2f ms, 99 %% %5.2f ms, longest %5.2f ms; longest is frame %td; over 16.7 ms: "
            "%td\n",
            name, times_.size(), at(0.5), at(0.99), at(1), longest, late);
    }

private:
    static constexpr double frameBudget = 1000.0 / 60;
    std::vector<double> times_;
};

/// The panel with the user's briefing in a real window, its pointer and scroll events moved by the benchmark. Nothing
/// to meet and nothing playing, so that no other program has a part in the times.
struct PanelStage {
    SystemClock clock;
    QtRunLoop runLoop;
    ThreadWorkQueueFactory queues;
    LocalNotifications notifications;
    JsonUserDefaults defaults{JsonUserDefaults::defaultPath()};
    InotifyFolderEvents folderEvents;
    LocalCloudFiles cloudFiles;
    PosixFileSystem files;
    StoreFiles storeFiles{{files, cloudFiles, clock, runLoop, queues, sleepFor}, xdg::stateFolder()};
    testing::SimulatedPlatform simulated;
    testing::SimulatedAgenda agenda{simulated, defaults};
    testing::SimulatedPlayers players{simulated};
    NotchViewModel model{{clock,
                          runLoop,
                          notifications,
                          defaults,
                          {clock, queues, folderEvents, cloudFiles},
                          storeFiles,
                          agenda.fallback,
                          agenda.meetings,
                          players.nowPlaying}};
    X11Events events;
    QtWorkspace workspace{events};
    testing::SimulatedPointer pointer;
    ScrollSwipeHub scrollSwipes{pointer};
    testing::SimulatedMotion motion;
    X11Backdrop backdrop{events};
    ThemeStore theme{defaults, runLoop};
    QQmlEngine engine;
    RootWindow* window = nullptr;  // owned by the panel
    std::unique_ptr<X11PanelWindow> panel;
    /// Where the time of each frame goes, from the animation's tick to the pixels' hand-over.
    FrameTimes* times = nullptr;

    PanelStage() {
        model.start();
        RootWindow::registerTypes();
        engine.addImportPath(QStringLiteral("qrc:/"));
        auto presenter = std::make_unique<PanelPresenter>(
            PanelPresenter::Collaborators{model, agenda.meetings, agenda.fallback, players.nowPlaying, runLoop, clock,
                                          notifications, defaults, workspace, scrollSwipes, motion},
            PanelPresenter::Measures{{200, 32}, 720, 680});
        auto root = std::make_unique<RootWindow>(
            engine, std::move(presenter),
            PanelBackground::Collaborators{theme, backdrop, runLoop, queues, [] { return 0; }});
        window = root.get();
        panel = std::make_unique<X11PanelWindow>(std::move(root), Rect{250, 64, 780, 736}, events,
                                                 [this] { return model.expanded(); });
        QObject::connect(window, &RootWindow::outlineChanged, panel.get(), &X11PanelWindow::setOutline);
        QObject::connect(window, &QQuickWindow::afterAnimating, [this] { sinceTick_.start(); });
        QObject::connect(window, &QQuickWindow::frameSwapped, [this] {
            if (sinceTick_.isValid() && times != nullptr)
                times->add(static_cast<double>(sinceTick_.nsecsElapsed()) / 1e6);
            sinceTick_.invalidate();
        });
        panel->orderFrontRegardless();
    }

private:
    QElapsedTimer sinceTick_;
};

}  // namespace sunpane::bench
