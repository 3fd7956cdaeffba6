// What a frame costs while two fingers scroll a list of 1,000 todos, and a briefing of 60 sections, beside a bare list
// of as many lines of text in a window of the same size: the processor time of the thread that does it all, from one
// frame to the next, so with the events, the new rows and the painting.

#include <time.h>

#include <QDir>
#include <QFile>
#include <QGuiApplication>
#include <QQmlComponent>
#include <QQuickItem>
#include <QTemporaryDir>
#include <QTimer>
#include <QWheelEvent>
#include <functional>

#include "PanelStage.h"
#include "linux/desktop/ToolkitChoice.h"

namespace {

using namespace sunpane;

constexpr int todos = 1000;
constexpr int sections = 60;
constexpr int cardsOfASection = 8;
constexpr int steps = 600;
constexpr int stepMilliseconds = 8;
constexpr int stepPoints = 16;            // 2,000 points a second
constexpr int stepsInOneDirection = 150;  // then back

void write(const QString& path, const QByteArray& text) {
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size()) qFatal("cannot write");
}

// A home folder with that many todos, every third with more to show than its words, and that many sections.
void furnish(const QString& home) {
    QByteArray list = R"({"todos":[)";
    for (int i = 0; i < todos; ++i) {
        list += QByteArray(i > 0 ? "," : "") + R"({"id":"00000000-0000-4000-8000-)" +
                QByteArray::number(i).rightJustified(12, '0') + R"(","text":"Look through the plan, part )" +
                QByteArray::number(i) + R"(","done":false,"createdAt":780000000)" +
                (i % 3 == 0 ? R"(,"source":"brief","remindAt":4000000000})" : "}");
    }
    QByteArray briefing = "# Morning\n";
    for (int i = 0; i < sections; ++i) {
        briefing += "### \xF0\x9F\x93\x85 Section " + QByteArray::number(i) + "\n";
        for (int j = 0; j < cardsOfASection; ++j)
            briefing += "- **Card " + QByteArray::number(j) + "** with a few *words* and `code`\n";
    }
    const QString folder = home + QStringLiteral("/briefings");
    write(folder + QStringLiteral("/todos.json"), list + R"(],"lastImportDay":"2026-11-23","dismissed":[]})");
    write(folder + QStringLiteral("/2026-11-23.md"), briefing);
    write(home + QStringLiteral("/dawnly/defaults.json"),
          R"({"briefingsFolderPath":")" + folder.toUtf8() +
              R"(","didWriteWelcomeBrief":true,"didCompleteOnboarding":true,"notchTheme":"dark"})");
    qputenv("XDG_CONFIG_HOME", home.toUtf8());
    qputenv("XDG_STATE_HOME", home.toUtf8());
}

// The processor time of this thread (ms).
double spent() {
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return 1e3 * static_cast<double>(now.tv_sec) + 1e-6 * static_cast<double>(now.tv_nsec);
}

/// Scrolls what is at a place of a window, there and back, and keeps what each frame cost.
class Fingers : public QObject {
public:
    Fingers(QQuickWindow& window, QPointF place) : window_(window), place_(place) {
        QObject::connect(&timer_, &QTimer::timeout, this, [this] { step(); });
        QObject::connect(&window_, &QQuickWindow::frameSwapped, this, [this] { frame(); });
    }
    void scroll(std::function<void()> done) {
        done_ = std::move(done);
        steps_ = 0;
        before_ = spent();
        turn(Qt::ScrollBegin, 0);
        timer_.start(stepMilliseconds);
    }

    bench::FrameTimes times;

private:
    void frame() {
        const double now = spent();
        if (timer_.isActive() && steps_ > 1) times.add(now - before_);
        before_ = now;
    }
    void step() {
        if (++steps_ > steps) {
            timer_.stop();
            turn(Qt::ScrollEnd, 0);
            return done_();
        }
        turn(Qt::ScrollUpdate, (steps_ / stepsInOneDirection) % 2 == 0 ? -stepPoints : stepPoints);
    }
    void turn(Qt::ScrollPhase phase, int points) {
        // Told as a touchpad's exact movement, which the list follows at once, so that every step is a frame's work.
        QWheelEvent event(place_, window_.mapToGlobal(place_), QPoint(0, points), QPoint(0, 8 * points), Qt::NoButton,
                          Qt::NoModifier, phase, false, Qt::MouseEventSynthesizedBySystem);
        QCoreApplication::sendEvent(&window_, &event);
    }

    QQuickWindow& window_;
    QPointF place_;
    QTimer timer_;
    std::function<void()> done_;
    int steps_ = 0;
    double before_ = 0;
};

std::unique_ptr<QQuickItem> bareList(QQmlEngine& engine, QQuickWindow& window) {
    QQmlComponent component(&engine);
    component.setData(R"(import QtQuick
        ListView {
            width: 254; height: 500; x: 476; y: 104; clip: true; model: 1000
            delegate: Text { required property int index; width: 254; height: 28; color: 'white'
                text: 'Look through the plan, part ' + index; font.pixelSize: 13; font.family: 'Inter' }
        })",
                      QUrl());
    std::unique_ptr<QQuickItem> list(qobject_cast<QQuickItem*>(component.create()));
    if (!list) qFatal("no list");
    list->setParentItem(window.contentItem());
    return list;
}

}  // namespace

int main(int argc, char* argv[]) {
    const QTemporaryDir home;
    furnish(home.path());
    chooseRenderer();
    const QGuiApplication application(argc, argv);
    bench::PanelStage stage;
    QQuickWindow bare;
    bare.setColor(Qt::black);
    bare.setFlags(Qt::FramelessWindowHint | Qt::BypassWindowManagerHint);
    bare.setGeometry(250, 64, 780, 736);
    const auto list = bareList(stage.engine, bare);

    Fingers overTodos(*stage.window, {600, 400});
    Fingers overBriefing(*stage.window, {250, 400});
    Fingers overList(bare, {600, 400});
    QTimer::singleShot(1500, [&] { stage.model.setExpanded(true); });
    QTimer::singleShot(3500, [&] {
        overTodos.scroll([&] {
            overBriefing.scroll([&] {
                bare.show();
                QTimer::singleShot(1000, [&] { overList.scroll([] { QGuiApplication::quit(); }); });
            });
        });
    });
    QGuiApplication::exec();
    overTodos.times.print("1,000 todos");
    overBriefing.times.print("60 sections");
    overList.times.print("bare list");
    return 0;
}
