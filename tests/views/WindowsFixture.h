#pragma once

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QQmlComponent>
#include <QQuickWindow>
#include <memory>

#include "views/RootWindow.h"
#include "views/ViewEngine.h"

namespace sunpane::testing {

/// The program's views in windows of no desktop, and a keyboard for them.
class WindowsFixture : public ::testing::Test {
public:
    static void SetUpTestSuite() {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        qputenv("QT_QUICK_BACKEND", "software");
        static int count = 1;
        static char name[] = "views";
        static char* arguments[] = {name, nullptr};
        application = std::make_unique<QGuiApplication>(count, arguments);
        QGuiApplication::setQuitOnLastWindowClosed(false);
        RootWindow::registerTypes();
    }
    static void TearDownTestSuite() { application.reset(); }

    void SetUp() override { engine.addImportPath(QStringLiteral("qrc:/")); }

    /// A window that has the keyboard, with what `content` says in it.
    QQuickWindow& show(const QByteArray& content) {
        QQmlComponent component(&engine);
        component.setData("import QtQuick\nimport Sunpane\nWindow { width: 400; height: 300; " + content + " }",
                          QUrl());
        shown.reset(qobject_cast<QQuickWindow*>(component.create()));
        if (!shown) qFatal("%s", qPrintable(component.errorString()));
        shown->show();
        shown->requestActivate();
        settle();
        return *shown;
    }
    static void settle() {
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    /// A key that goes down and stays down, as long as `repeats` more presses of it take.
    static void press(QWindow& window, int key, const QString& text = QString(), int repeats = 0) {
        for (int i = 0; i <= repeats; ++i) {
            QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier, text, i > 0);
            QCoreApplication::sendEvent(&window, &event);
        }
        settle();
    }
    static void type(QWindow& window, const QString& text) {
        for (const QChar c : text)
            press(window, c.toUpper().unicode(), c);
    }

    ViewEngine engine{[] {}};
    std::unique_ptr<QQuickWindow> shown;

private:
    static inline std::unique_ptr<QGuiApplication> application;
};

}  // namespace sunpane::testing
