#pragma once

#include <QObject>
#include <QQmlEngine>
#include <QQuickWindow>
#include <QString>
#include <QVariantMap>
#include <memory>

namespace sunpane {

/// A window of the program beside the panel, from one QML file whose root is a `Window`. Takes no memory until it is
/// first shown, and is kept when it is closed. Main thread only.
class SecondaryWindow {
public:
    /// `file` is the QML file's name. `engine` outlives the window and knows the panel's types.
    SecondaryWindow(QQmlEngine& engine, QString file);
    ~SecondaryWindow();
    SecondaryWindow(const SecondaryWindow&) = delete;
    SecondaryWindow& operator=(const SecondaryWindow&) = delete;

    bool isVisible() const;

    /// Shows the window in front of the others and gives it the keyboard. It is made with `properties` when this is the
    /// first time.
    QQuickWindow& show(const QVariantMap& properties);

    /// Closes the window for good. May be called from within its own signals.
    void discard();

private:
    QQmlEngine& engine_;
    QString file_;
    std::unique_ptr<QObject> window_;
};

}  // namespace sunpane
