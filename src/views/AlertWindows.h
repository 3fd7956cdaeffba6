#pragma once

#include <QEvent>
#include <QObject>
#include <deque>
#include <functional>
#include <utility>

#include "platform/Alerts.h"
#include "views/SecondaryWindow.h"

namespace sunpane {

/// Alerts as windows of the program, one after the other. Takes no memory while nothing is asked. One instance, owned
/// by the start-up code; main thread only.
class AlertWindows : public QObject, public Alerts {
    Q_OBJECT

public:
    explicit AlertWindows(ViewEngine& engine);

    void show(Alert alert, std::function<void(bool first)> answered) override;

    /// An alert that is open when the program ends stays unanswered.
    bool eventFilter(QObject* watched, QEvent* event) override;

private slots:
    void take(bool first);

private:
    void showNext();

    SecondaryWindow window_;
    std::deque<std::pair<Alert, std::function<void(bool)>>> waiting_;
};

}  // namespace sunpane
