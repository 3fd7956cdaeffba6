#include "views/SecondaryWindow.h"

#include <QQmlComponent>
#include <QUrl>
#include <utility>

namespace sunpane {

SecondaryWindow::SecondaryWindow(QQmlEngine& engine, QString file) : engine_(engine), file_(std::move(file)) {}

SecondaryWindow::~SecondaryWindow() = default;

bool SecondaryWindow::isVisible() const {
    const auto* window = qobject_cast<QQuickWindow*>(window_.get());
    return window != nullptr && window->isVisible();
}

QQuickWindow& SecondaryWindow::show(const QVariantMap& properties) {
    if (!window_) {
        QQmlComponent component(&engine_, QUrl(QStringLiteral("qrc:/Sunpane/") + file_));
        window_.reset(component.createWithInitialProperties(properties));
        // The views are part of the program: one that does not load is a build gone wrong.
        if (qobject_cast<QQuickWindow*>(window_.get()) == nullptr) qFatal("%s", qPrintable(component.errorString()));
    }
    auto& window = *qobject_cast<QQuickWindow*>(window_.get());
    window.show();
    window.raise();
    window.requestActivate();
    return window;
}

void SecondaryWindow::discard() {
    if (!window_) return;
    window_->setProperty("visible", false);
    window_.release()->deleteLater();
}

}  // namespace sunpane
