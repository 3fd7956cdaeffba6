#include "views/AlertWindows.h"

#include <QCoreApplication>

namespace sunpane {

AlertWindows::AlertWindows(ViewEngine& engine) : window_(engine, QStringLiteral("AlertWindow.qml")) {}

void AlertWindows::show(Alert alert, std::function<void(bool)> answered) {
    if (waiting_.empty()) qApp->installEventFilter(this);
    waiting_.emplace_back(std::move(alert), std::move(answered));
    if (waiting_.size() == 1) showNext();
}

void AlertWindows::showNext() {
    const Alert& alert = waiting_.front().first;
    const auto text = [](const std::string& string) { return QString::fromStdString(string); };
    QQuickWindow& window = window_.show({{QStringLiteral("message"), text(alert.message)},
                                         {QStringLiteral("informativeText"), text(alert.informativeText)},
                                         {QStringLiteral("firstButton"), text(alert.firstButton)},
                                         {QStringLiteral("secondButton"), text(alert.secondButton)}});
    connect(&window, SIGNAL(answered(bool)), this, SLOT(take(bool)));
}

// Ending the program closes its windows, which elsewhere is an answer.
bool AlertWindows::eventFilter(QObject* watched, QEvent* event) {
    if (watched == qApp && event->type() == QEvent::Quit) waiting_.clear();
    return false;
}

void AlertWindows::take(bool first) {
    if (waiting_.empty()) return;  // closing the window after a choice
    const auto answered = std::move(waiting_.front().second);
    waiting_.pop_front();
    window_.discard();
    if (waiting_.empty()) {
        qApp->removeEventFilter(this);
    } else {
        showNext();
    }
    answered(first);
}

}  // namespace sunpane
