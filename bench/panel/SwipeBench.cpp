// How long each frame takes while two fingers move a card and while it springs back, from the animation's tick to the
// pixels' hand-over, with a real briefing in a real window.

#include <QGuiApplication>
#include <QMouseEvent>
#include <QTimer>

#include "PanelStage.h"
#include "linux/desktop/ToolkitChoice.h"

namespace {

using namespace sunpane;

constexpr int swipes = 20;
constexpr int stepsOfASwipe = 24;
constexpr int stepMilliseconds = 8;  // a touchpad tells its movements 125 times a second
constexpr double stepPoints = 4;     // so that every swipe counts
constexpr int restMilliseconds = 700;
constexpr QPointF card{200, 160};  // the first one, in the window

/// Swipes a card to the right, again and again.
class Fingers : public QObject {
public:
    explicit Fingers(bench::PanelStage& stage) : stage_(stage) {
        QObject::connect(&timer_, &QTimer::timeout, this, [this] { step(); });
    }

    void begin() {
        stage_.times = &moving;
        timer_.start(stepMilliseconds);
        // Only a card that the pointer is on can be swiped.
        if (!stage_.pointer.scroll({ScrollPhase::began})) qFatal("the pointer is on no card");
        steps_ = 0;
    }

    bench::FrameTimes moving;
    bench::FrameTimes springing;

private:
    void step() {
        if (++steps_ <= stepsOfASwipe) {
            stage_.pointer.scroll({.phase = ScrollPhase::changed, .deltaX = stepPoints});
            return;
        }
        timer_.stop();
        stage_.times = &springing;
        stage_.pointer.scroll({ScrollPhase::ended});
        if (++swipes_ == swipes) return QTimer::singleShot(restMilliseconds, qApp, &QGuiApplication::quit);
        QTimer::singleShot(restMilliseconds, this, [this] { begin(); });
    }

    bench::PanelStage& stage_;
    QTimer timer_;
    int steps_ = 0;
    int swipes_ = 0;
};

}  // namespace

int main(int argc, char* argv[]) {
    chooseRenderer();
    const QGuiApplication application(argc, argv);
    bench::PanelStage stage;
    Fingers fingers(stage);
    QTimer::singleShot(1500, [&] { stage.model.setExpanded(true); });
    QTimer::singleShot(2500, [&] {
        QMouseEvent move(QEvent::MouseMove, card, stage.window->mapToGlobal(card), Qt::NoButton, Qt::NoButton,
                         Qt::NoModifier);
        QCoreApplication::sendEvent(stage.window, &move);
    });
    QTimer::singleShot(3000, &fingers, [&] { fingers.begin(); });
    QGuiApplication::exec();
    fingers.moving.print("swiping");
    fingers.springing.print("springing");
    return 0;
}
