// How long each frame of unfolding and folding takes, from the animation's tick to the pixels' hand-over, with a real
// briefing in a real window.

#include <QGuiApplication>
#include <QTimer>

#include "PanelStage.h"
#include "linux/desktop/ToolkitChoice.h"

namespace {

constexpr int cycles = 20;

}  // namespace

int main(int argc, char* argv[]) {
    using namespace sunpane;
    chooseRenderer();
    const QGuiApplication application(argc, argv);
    bench::FrameTimes unfolding;
    bench::FrameTimes folding;
    bench::PanelStage stage;
    stage.times = &folding;

    int switches = 0;
    QTimer toggling;
    QObject::connect(&toggling, &QTimer::timeout, [&] {
        if (++switches > 2 * cycles) return QGuiApplication::quit();
        stage.times = stage.model.expanded() ? &folding : &unfolding;
        stage.model.setExpanded(!stage.model.expanded());
    });
    QTimer::singleShot(1500, [&] { toggling.start(900); });
    QGuiApplication::exec();
    unfolding.print("unfolding");
    folding.print("folding");
    return 0;
}
