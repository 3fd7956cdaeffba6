#include <gtest/gtest.h>

#include <QDir>
#include <QFileInfo>
#include <QQuickItem>

#include "support/TemporaryFolder.h"
#include "views/AlertWindows.h"
#include "views/FolderPickerWindow.h"
#include "views/WindowsFixture.h"

namespace sunpane {
namespace {

using Controls = testing::WindowsFixture;

TEST_F(Controls, AColourIsTakenOnlyWhenItsNumberIsWhole) {
    auto& window = show(
        "property string taken; ColorChoice { text: 'Top'; value: '#102030'; onPicked: (value) => taken "
        "= value.toString() }");
    press(window, Qt::Key_Tab);
    press(window, Qt::Key_Backspace);
    for (const char* unfinished : {"", "#", "f00", "#ff00"}) {
        press(window, Qt::Key_Home);
        press(window, Qt::Key_Delete, {}, 7);
        type(window, QLatin1String(unfinished));
        press(window, Qt::Key_Return);
        EXPECT_EQ(window.property("taken").toString().toStdString(), "") << unfinished;
    }
    press(window, Qt::Key_Home);
    press(window, Qt::Key_Delete, {}, 7);
    type(window, QStringLiteral("80ff00"));
    press(window, Qt::Key_Return);
    EXPECT_EQ(window.property("taken").toString().toStdString(), "#80ff00");
}

TEST_F(Controls, TheFolderPickerKeepsNamesAsTheyAre) {
    const testing::TemporaryFolder folder;
    for (const char* name : {" ahead", "behind ", "~", "plain"}) {
        const QString path = QString::fromStdString(folder / name);
        ASSERT_TRUE(QDir().mkdir(path));
        FolderPickerWindow picker(engine);
        std::optional<std::string> chosen;
        picker.pick(folder.path(), "Watch", [&](const auto& taken) { chosen = taken; });
        ASSERT_TRUE(picker.names().contains(QLatin1String(name)));
        picker.enter(QLatin1String(name));
        EXPECT_EQ(picker.problem().toStdString(), "") << name;
        picker.choose(picker.folder());
        EXPECT_EQ(chosen, path.toStdString());
        settle();
    }
    FolderPickerWindow picker(engine);
    std::optional<std::string> chosen;
    picker.pick(folder.path(), "Watch", [&](const auto& taken) { chosen = taken; });
    picker.choose(QStringLiteral("  ") + QString::fromStdString(folder / "typed\t"));
    EXPECT_EQ(chosen, folder / "typed");
    EXPECT_TRUE(QFileInfo(QString::fromStdString(folder / "typed")).isDir());
    settle();
}

TEST_F(Controls, EndingTheProgramAnswersNoAlert) {
    AlertWindows alerts(engine);
    int answers = 0;
    const auto ask = [&] { alerts.show({"Move?", "Why.", "Move", "Not Now"}, [&](bool) { ++answers; }); };
    ask();
    settle();
    ASSERT_NE(QGuiApplication::focusWindow(), nullptr);
    QGuiApplication::focusWindow()->close();
    settle();
    EXPECT_EQ(answers, 1) << "closing its window does";
    ask();
    ask();
    settle();
    QEvent quit(QEvent::Quit);
    QCoreApplication::sendEvent(qApp, &quit);
    settle();
    EXPECT_EQ(answers, 1);
}

}  // namespace
}  // namespace sunpane
