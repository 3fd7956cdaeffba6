// How long each frame of unfolding and folding takes, from the animation's tick to the pixels' hand-over, with a real
// briefing in a real window.

#include <QElapsedTimer>
#include <QGuiApplication>
#include <QQmlEngine>
#include <QQuickItem>
#include <QTimer>
#include <algorithm>
#include <cstdio>
#include <vector>

#include "linux/desktop/QtRunLoop.h"
#include "linux/desktop/QtWorkspace.h"
#include "linux/desktop/ToolkitChoice.h"
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

namespace {

constexpr int cycles = 20;
constexpr double frameBudget = 1000.0 / 60;

/// Frame times in milliseconds.
class FrameTimes {
public:
    void add(double milliseconds) { times_.push_back(milliseconds); }
    void print(const char* name) {
        const auto longest = std::max_element(times_.begin(), times_.end()) - times_.begin();
        std::sort(times_.begin(), times_.end());
        const auto at = [&](double share) {
            return times_[static_cast<std::size_t>(share * double(times_.size() - 1))];
        };
        const auto late = std::count_if(times_.begin(), times_.end(), [](double t) { return t > frameBudget; });
        std::printf(
            "%-10s %4zu frames: median %5.2f ms, 99 %% %5.2f ms, longest %5.2f ms; longest is frame %td; over 16.7 ms: "
            "%td\n",
            name, times_.size(), at(0.5), at(0.99), at(1), longest, late);
    }

private:
    std::vector<double> times_;
};

}  // namespace

int main(int argc, char* argv[]) {
    using namespace sunpane;
    chooseRenderer();
    const QGuiApplication application(argc, argv);
    SystemClock clock;
    QtRunLoop runLoop;
    ThreadWorkQueueFactory queues;
    LocalNotifications notifications;
    JsonUserDefaults defaults(JsonUserDefaults::defaultPath());
    InotifyFolderEvents folderEvents;
    LocalCloudFiles cloudFiles;
    PosixFileSystem files;
    StoreFiles storeFiles({files, cloudFiles, clock, runLoop, queues, sleepFor}, xdg::stateFolder());
    // Nothing to meet and nothing playing, so that no other program has a part in the times.
    testing::SimulatedPlatform simulated;
    testing::SimulatedAgenda agenda(simulated, defaults);
    testing::SimulatedPlayers players(simulated);
    NotchViewModel model({clock,
                          runLoop,
                          notifications,
                          defaults,
                          {clock, queues, folderEvents, cloudFiles},
                          storeFiles,
                          agenda.fallback,
                          agenda.meetings,
                          players.nowPlaying});
    model.start();

    X11Events events;
    QtWorkspace workspace{events};
    testing::SimulatedPointer pointer;
    ScrollSwipeHub scrollSwipes(pointer);
    X11Backdrop backdrop{events};
    ThemeStore theme{defaults};
    RootWindow::registerTypes();
    QQmlEngine engine;
    engine.addImportPath(QStringLiteral("qrc:/"));
    auto presenter = std::make_unique<PanelPresenter>(
        PanelPresenter::Collaborators{model, agenda.meetings, agenda.fallback, players.nowPlaying, runLoop, clock,
                                      notifications, defaults, workspace, scrollSwipes},
        PanelPresenter::Measures{{200, 32}, 720, 680});
    auto root = std::make_unique<RootWindow>(
        engine, std::move(presenter),
        PanelBackground::Collaborators{theme, backdrop, runLoop, queues, [] { return 0; }});
    RootWindow& window = *root;
    X11PanelWindow panel(std::move(root), {250, 64, 780, 736}, events);
    QObject::connect(&window, &RootWindow::outlineChanged, &panel, &X11PanelWindow::setOutline);
    panel.orderFrontRegardless();

    FrameTimes unfolding;
    FrameTimes folding;
    QElapsedTimer sinceTick;
    // The outline is made anew in each frame that moves, first of all that the frame does.
    QObject::connect(&window, &QQuickWindow::afterAnimating, [&] { sinceTick.start(); });
    QObject::connect(&window, &QQuickWindow::frameSwapped, [&] {
        if (!sinceTick.isValid()) return;
        (model.expanded() ? unfolding : folding).add(static_cast<double>(sinceTick.nsecsElapsed()) / 1e6);
        sinceTick.invalidate();
    });

    int switches = 0;
    QTimer toggling;
    QObject::connect(&toggling, &QTimer::timeout, [&] {
        if (++switches > 2 * cycles) return QGuiApplication::quit();
        model.setExpanded(!model.expanded());
    });
    QTimer::singleShot(1500, [&] { toggling.start(900); });
    QGuiApplication::exec();
    unfolding.print("unfolding");
    folding.print("folding");
    return 0;
}
