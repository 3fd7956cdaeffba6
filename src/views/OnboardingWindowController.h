#pragma once

#include <QObject>
#include <QString>
#include <functional>
#include <memory>

#include "base/RunLoop.h"
#include "onboarding/Tour.h"
#include "views/SecondaryWindow.h"

namespace sunpane {

/// The window of the welcome tour, and the way of the tour to QML and back: made when it is opened. Holds no rules. One
/// instance, owned by the start-up code; main thread only.
class OnboardingWindowController : public QObject {
    Q_OBJECT
    /// 0 intro, 1 connect, 2 done.
    Q_PROPERTY(int step READ step NOTIFY changed)
    Q_PROPERTY(bool haveBrief READ haveBrief NOTIFY changed)
    Q_PROPERTY(int briefTab READ briefTab NOTIFY changed)
    Q_PROPERTY(bool copied READ copied NOTIFY changed)
    Q_PROPERTY(bool skippedAI READ skippedAI NOTIFY changed)
    Q_PROPERTY(QString prompt READ prompt NOTIFY changed)
    Q_PROPERTY(bool calendarConnected READ calendarConnected NOTIFY changed)
    Q_PROPERTY(bool calendarDeclined READ calendarDeclined NOTIFY changed)

public:
    /// All outlive it. `hasCompositor` tells whether windows may be seen through.
    OnboardingWindowController(ViewEngine& engine, Tour& tour, RunLoop& runLoop, std::function<bool()> hasCompositor);

    /// Brings the tour to the front; from its first step if it was closed.
    void show();
    /// Cuts off what cannot be seen through, once more after a compositor came or went.
    void fitShape();

    int step() const { return static_cast<int>(tour_.step()); }
    bool haveBrief() const { return tour_.path() == Tour::Path::haveBrief; }
    int briefTab() const { return tour_.briefTab(); }
    bool copied() const { return tour_.copied(); }
    bool skippedAI() const { return tour_.skippedAI(); }
    QString prompt() const { return QString::fromStdString(tour_.currentPrompt()); }
    bool calendarConnected() const { return tour_.calendarStatus() == CalendarAccess::full; }
    bool calendarDeclined() const {
        return !calendarConnected() && tour_.calendarStatus() != CalendarAccess::notDetermined;
    }

    Q_INVOKABLE void connectAI() { tour_.connectAI(); }
    Q_INVOKABLE void skipAI() { tour_.skipAI(); }
    Q_INVOKABLE void finish() { tour_.finish(); }
    Q_INVOKABLE void choosePath(int path) { tour_.choosePath(static_cast<Tour::Path>(path)); }
    Q_INVOKABLE void chooseBriefTab(int tab) { tour_.chooseBriefTab(tab); }
    Q_INVOKABLE void copy() { tour_.copy(); }
    Q_INVOKABLE void comeBack() { tour_.comeBack(); }
    Q_INVOKABLE void connectCalendar() { tour_.connectCalendar(); }
    Q_INVOKABLE void openCalendarSettings() { tour_.openCalendarSettings(); }
    Q_INVOKABLE void openAccountSettings() { tour_.openAccountSettings(); }
    Q_INVOKABLE void complete() { tour_.complete(); }

signals:
    void changed();

private:
    Tour& tour_;
    std::function<bool()> hasCompositor_;
    SecondaryWindow window_;
    std::shared_ptr<OnboardingWindowController*> self_;
    Subscription changes_;
};

}  // namespace sunpane
