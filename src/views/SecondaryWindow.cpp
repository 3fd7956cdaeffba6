#include "views/SecondaryWindow.h"

#include <QGuiApplication>
#include <QQmlComponent>
#include <QScreen>
#include <QUrl>
#include <utility>

namespace sunpane {

SecondaryWindow::SecondaryWindow(ViewEngine& engine, QString file, QStringList kept)
    : engine_(engine), file_(std::move(file)), kept_(std::move(kept)) {}

SecondaryWindow::~SecondaryWindow() = default;

bool SecondaryWindow::isVisible() const {
    return window_ && window_->isVisible();
}

QQuickWindow& SecondaryWindow::show(const QVariantMap& properties) {
    if (!window_) make(properties);
    window_->show();
    window_->raise();
    window_->requestActivate();
    return *window_;
}

void SecondaryWindow::make(QVariantMap properties) {
    properties.insert(state_);
    QQmlComponent component(&engine_, QUrl(QStringLiteral("qrc:/Sunpane/") + file_));
    QObject* made = component.createWithInitialProperties(properties);
    window_.reset(qobject_cast<QQuickWindow*>(made));
    // The views are part of the program: one that does not load is a build gone wrong.
    if (!window_) qFatal("%s", qPrintable(component.errorString()));
    // The screen that it was on may be gone.
    if (position_ && QGuiApplication::screenAt(*position_) != nullptr) window_->setPosition(*position_);
    connect(window_.get(), &QWindow::visibleChanged, this, &SecondaryWindow::visibilityChanged);
}

void SecondaryWindow::visibilityChanged() {
    if (!window_ || window_->isVisible()) return;
    position_ = window_->position();
    for (const QString& name : kept_)
        state_[name] = window_->property(qPrintable(name));
    release();
}

void SecondaryWindow::discard() {
    position_.reset();
    state_.clear();
    if (!window_) return;
    disconnect(window_.get(), &QWindow::visibleChanged, this, nullptr);
    window_->setVisible(false);
    release();
}

void SecondaryWindow::release() {
    window_.release()->deleteLater();
    engine_.tidyUp();
}

}  // namespace sunpane
