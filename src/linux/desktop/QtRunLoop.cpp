#include "linux/desktop/QtRunLoop.h"

#include <QMetaObject>
#include <QThread>
#include <QTimer>
#include <chrono>
#include <cmath>
#include <memory>
#include <utility>

namespace sunpane {
namespace {

// Coarse timers may be off by a twentieth; up to here that would show, beyond it saves wake-ups.
constexpr Seconds longestPrecise = 10;

/// The timer behind a subscription. Lives on the main thread; the subscription may be cancelled on any.
struct TimerSlot {
    std::unique_ptr<QTimer> timer;
    bool cancelled = false;
};

}  // namespace

void QtRunLoop::post(Task task) {
    QMetaObject::invokeMethod(&context_, std::move(task), Qt::QueuedConnection);
}

Subscription QtRunLoop::after(Seconds delay, Task task) {
    return startTimer(delay, false, std::move(task));
}

Subscription QtRunLoop::every(Seconds interval, Task task) {
    return startTimer(interval, true, std::move(task));
}

Subscription QtRunLoop::startTimer(Seconds interval, bool repeats, Task task) {
    auto slot = std::make_shared<TimerSlot>();
    const auto onMain = [this](auto work) {
        if (QThread::currentThread() == context_.thread()) {
            work();
        } else {
            QMetaObject::invokeMethod(&context_, std::move(work), Qt::QueuedConnection);
        }
    };
    onMain([slot, interval, repeats, task = std::move(task)] {
        if (slot->cancelled) return;
        slot->timer = std::make_unique<QTimer>();
        slot->timer->setSingleShot(!repeats);
        slot->timer->setTimerType(interval <= longestPrecise ? Qt::PreciseTimer : Qt::CoarseTimer);
        slot->timer->setInterval(static_cast<int>(std::lround(interval * 1000)));
        // The task is copied out: it may cancel its own timer and with it the copy that the connection holds.
        QObject::connect(slot->timer.get(), &QTimer::timeout, [task] {
            const Task running = task;
            running();
        });
        slot->timer->start();
    });
    return Subscription([onMain, slot] {
        onMain([slot] {
            slot->cancelled = true;
            // Deleted later: this may run inside the timer's own signal.
            if (QTimer* timer = slot->timer.release()) {
                timer->stop();
                timer->deleteLater();
            }
        });
    });
}

}  // namespace sunpane
