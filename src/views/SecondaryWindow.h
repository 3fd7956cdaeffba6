#pragma once

#include <QObject>
#include <QPoint>
#include <QQuickWindow>
#include <QString>
#include <QStringList>
#include <QVariantMap>
#include <memory>
#include <optional>

#include "views/ViewEngine.h"

namespace sunpane {

/// A window of the program beside the panel, from one QML file whose root is a `Window`. Takes memory only while it is
/// on screen; one that is opened again is where it was, and as it was in what `kept` names. Main thread only.
class SecondaryWindow : public QObject {
    Q_OBJECT

public:
    /// `file` is the QML file's name, `kept` are properties of its root. `engine` outlives the window and knows the
    /// panel's types.
    SecondaryWindow(ViewEngine& engine, QString file, QStringList kept = {});
    ~SecondaryWindow() override;

    /// Null while it is not on screen.
    QQuickWindow* window() const { return window_.get(); }
    bool isVisible() const;

    /// Shows the window in front of the others and gives it the keyboard. It is made with `properties` when it is not
    /// on screen.
    QQuickWindow& show(const QVariantMap& properties);

    /// Closes the window for good, so that the next is where and what a first one is. May be called from within its own
    /// signals.
    void discard();

private slots:
    void visibilityChanged();

private:
    void make(QVariantMap properties);
    void release();

    ViewEngine& engine_;
    QString file_;
    QStringList kept_;
    QVariantMap state_;
    std::optional<QPoint> position_;
    std::unique_ptr<QQuickWindow> window_;
};

}  // namespace sunpane
