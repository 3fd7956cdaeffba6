#include "views/CalendarPrompt.h"

#include <QGuiApplication>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickWindow>
#include <QScreen>
#include <QUrl>
#include <algorithm>
#include <utility>

namespace sunpane {
namespace {

// The window beside the panel that the user has before him, such as the tour; null when there is none.
const QWindow* otherWindow(const QWindow& window) {
    for (const QWindow* other : QGuiApplication::topLevelWindows()) {
        const bool isPanel = other->flags().testFlag(Qt::BypassWindowManagerHint);
        if (other != &window && other->isVisible() && !isPanel) return other;
    }
    return nullptr;
}

// Beside that window, as far as the screen has room: what it says of the calendars helps to answer.
void placeBeside(QWindow& window, const QWindow& other) {
    const QScreen* screen = other.screen();
    if (screen == nullptr) return;
    constexpr int frame = 6;
    const QRect room = screen->availableGeometry();
    const int rightmost = room.right() + 1 - window.width() - frame;
    window.setX(std::max(room.left(), std::min(other.frameGeometry().right() + 1 + frame, rightmost)));
}

}  // namespace

CalendarPrompt::CalendarPrompt() = default;
CalendarPrompt::~CalendarPrompt() = default;

void CalendarPrompt::ask(std::function<void(CalendarAccess)> answer) {
    if (answer_) return comeToFront();
    answer_ = std::move(answer);
    engine_ = std::make_unique<QQmlEngine>();
    engine_->addImportPath(QStringLiteral("qrc:/"));
    QQmlComponent component(engine_.get(), QUrl(QStringLiteral("qrc:/Sunpane/CalendarPromptWindow.qml")));
    window_.reset(component.create());
    auto* window = qobject_cast<QQuickWindow*>(window_.get());
    if (window == nullptr) qFatal("%s", qPrintable(component.errorString()));
    connect(window, SIGNAL(answered(QString)), this, SLOT(take(QString)));
    // Ending the program closes its windows, which elsewhere is a refusal.
    qApp->installEventFilter(this);
    connect(engine_.get(), &QQmlEngine::quit, qApp, &QCoreApplication::quit);
    if (const QWindow* other = otherWindow(*window)) placeBeside(*window, *other);
    window->show();
    comeToFront();
}

void CalendarPrompt::comeToFront() {
    auto* window = qobject_cast<QQuickWindow*>(window_.get());
    window->raise();
    window->requestActivate();
}

bool CalendarPrompt::eventFilter(QObject* watched, QEvent* event) {
    if (watched == qApp && event->type() == QEvent::Quit) answer_ = nullptr;
    return false;
}

void CalendarPrompt::take(const QString& choice) {
    const auto answer = std::exchange(answer_, nullptr);
    if (!answer) return;  // closing the window after a choice
    qApp->removeEventFilter(this);
    // This runs inside the window's own signal, which must return before it goes.
    window_->setProperty("visible", false);
    window_.release()->deleteLater();
    engine_.release()->deleteLater();
    if (choice == QLatin1String("full")) return answer(CalendarAccess::full);
    answer(choice == QLatin1String("writeOnly") ? CalendarAccess::writeOnly : CalendarAccess::denied);
}

}  // namespace sunpane
