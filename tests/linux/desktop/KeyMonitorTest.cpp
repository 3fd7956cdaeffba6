#include <gtest/gtest.h>

#include <QGuiApplication>
#include <QKeyEvent>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickWindow>
#include <optional>

#include "linux/desktop/X11EventMonitors.h"
#include "support/SimulatedPlatform.h"

namespace sunpane {
namespace {

TEST(KeyMonitor, KnowsWhetherTheKeysAreForAText) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QT_QUICK_BACKEND", "software");
    int count = 1;
    char name[] = "keys";
    char* arguments[] = {name, nullptr};
    const QGuiApplication application(count, arguments);
    testing::SimulatedPlatform platform;
    X11Events events;
    X11EventMonitors monitors(events, platform.runLoop);
    std::optional<KeyEvent> heard;
    const auto listening = monitors.onLocalKeyDown([&heard](const KeyEvent& key) {
        heard = key;
        return false;
    });
    QQmlEngine engine;
    for (const auto& [content, inTextField] : std::initializer_list<std::pair<const char*, bool>>{
             {"Item { focus: true }", false},
             {"TextInput { focus: true }", true},
             {"TextEdit { focus: true }", true},
             {"TextEdit { focus: true; readOnly: true; selectByMouse: true }", true},
             {"TextInput { focus: true; readOnly: true }", true}}) {
        QQmlComponent component(&engine);
        component.setData("import QtQuick\nWindow { width: 99; height: 99; " + QByteArray(content) + " }", QUrl());
        const std::unique_ptr<QQuickWindow> window(qobject_cast<QQuickWindow*>(component.create()));
        ASSERT_TRUE(window) << qPrintable(component.errorString());
        window->show();
        window->requestActivate();
        QCoreApplication::processEvents();
        QKeyEvent key(QEvent::KeyPress, Qt::Key_Z, Qt::ControlModifier);
        QCoreApplication::sendEvent(window.get(), &key);
        ASSERT_TRUE(heard) << content;
        EXPECT_EQ(heard->characters, "z");
        EXPECT_TRUE(heard->control);
        EXPECT_EQ(heard->inTextField, inTextField) << content;
        heard.reset();
    }
}

}  // namespace
}  // namespace sunpane
