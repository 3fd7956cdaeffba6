// The peer of the panel's measurements: a window of the panel's size and kind that draws one black rectangle where the
// notch is, and lets a white one grow below it while the pointer is on it. With --poll it asks the X server for the
// pointer 20 times a second, and does nothing with the answer.

#include <QCursor>
#include <QGuiApplication>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <QScreen>
#include <QTimer>
#include <memory>

int main(int argc, char* argv[]) {
    const QGuiApplication application(argc, argv);
    const QRect screen = QGuiApplication::primaryScreen()->geometry();
    const QSize size(argc > 2 ? QByteArray(argv[1]).toInt() : 780, argc > 2 ? QByteArray(argv[2]).toInt() : 736);

    QQuickWindow window;
    QSurfaceFormat format = window.format();
    format.setAlphaBufferSize(8);
    window.setFormat(format);
    window.setColor(Qt::transparent);
    window.setFlags(Qt::FramelessWindowHint | Qt::BypassWindowManagerHint);
    window.setGeometry((screen.width() - size.width()) / 2, 0, size.width(), size.height());

    QQmlEngine engine;
    QQmlComponent component(&engine);
    component.setData(R"(import QtQuick
        Rectangle {
            color: 'black'; width: 200; height: 32; x: (780 - 200) / 2
            MouseArea { id: area; anchors.fill: parent; hoverEnabled: true }
            Rectangle {
                color: 'white'; width: 200; y: 32; height: area.containsMouse ? 480 : 0
                Behavior on height { NumberAnimation { duration: 400; easing.type: Easing.OutQuad } }
            }
        })",
                      QUrl());
    const std::unique_ptr<QObject> rectangle(component.create());
    qobject_cast<QQuickItem*>(rectangle.get())->setParentItem(window.contentItem());
    window.show();

    QTimer poll;
    QObject::connect(&poll, &QTimer::timeout, [] { static_cast<void>(QCursor::pos()); });
    poll.setTimerType(Qt::PreciseTimer);
    if (application.arguments().contains(QStringLiteral("--poll"))) poll.start(50);
    return QGuiApplication::exec();
}
