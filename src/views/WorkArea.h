#pragma once

#include <QMetaObject>
#include <QObject>
#include <QPointer>
#include <QRectF>
#include <QScreen>
#include <QWindow>

namespace sunpane {

/// Where on its screen a window may be: all of the screen but what the desktop's bars take. On a desktop of several
/// screens nobody tells how much of each that is, and the whole screen counts. Owned by the window's QML; main thread
/// only.
class WorkArea : public QObject {
    Q_OBJECT
    /// The primary screen counts until it is set.
    Q_PROPERTY(QWindow* window READ window WRITE setWindow NOTIFY areaChanged)
    /// In points, on the desktop of all screens.
    Q_PROPERTY(QRectF area READ area NOTIFY areaChanged)

public:
    explicit WorkArea(QObject* parent = nullptr);

    QWindow* window() const { return window_; }
    void setWindow(QWindow* window);
    QRectF area() const;

signals:
    void areaChanged();

private slots:
    void follow();

private:
    QPointer<QWindow> window_;
    QPointer<QScreen> screen_;
};

}  // namespace sunpane
