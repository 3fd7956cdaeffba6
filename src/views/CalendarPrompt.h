#pragma once

#include <QEvent>
#include <QObject>
#include <QString>
#include <functional>
#include <memory>

#include "platform/CalendarStore.h"

class QQmlEngine;

namespace sunpane {

/// Asks the user, in a window of its own, whether the calendars may be read. Takes no memory while nothing is asked.
/// Needs the views' types, which `RootWindow` registers. One instance, owned by the start-up code; main thread only.
class CalendarPrompt : public QObject {
    Q_OBJECT

public:
    CalendarPrompt();
    ~CalendarPrompt() override;

    /// Shows the window, beside another one of the program's that is open, and calls `answer` with what was chosen:
    /// full, `writeOnly` or `denied`, which closing the window also means. While the question is open it only comes to
    /// the front, and `answer` is never called.
    void ask(std::function<void(CalendarAccess)> answer);

    /// A question that is open when the program ends stays unanswered.
    bool eventFilter(QObject* watched, QEvent* event) override;

private slots:
    void take(const QString& choice);

private:
    void comeToFront();

    std::function<void(CalendarAccess)> answer_;
    std::unique_ptr<QQmlEngine> engine_;
    std::unique_ptr<QObject> window_;
};

}  // namespace sunpane
