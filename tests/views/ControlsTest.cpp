#include <gtest/gtest.h>

#include <QDir>
#include <QFileInfo>
#include <QQuickItem>
#include <QScreen>

#include "support/TemporaryFolder.h"
#include "views/AlertWindows.h"
#include "views/FolderPickerWindow.h"
#include "views/WindowsFixture.h"

namespace sunpane {
namespace {

using Controls = testing::WindowsFixture;

TEST_F(Controls, AKeyPressesOnceHoweverLongItIsHeld) {
    for (const char* control :
         {"LabelButton { text: 'Clear'; ", "IconButton { symbol: 'xmark'; label: 'Close'; ",
          "SidebarEntry { text: 'General'; symbol: 'folder'; ", "SettingToggle { text: 'At login'; checked: false; "}) {
        auto& window = show("property int presses: 0; " + QByteArray(control) + "focus: true; onClicked: ++presses }");
        int presses = 0;
        for (const int key : {Qt::Key_Return, Qt::Key_Enter, Qt::Key_Space}) {
            press(window, key, {}, 5);
            EXPECT_EQ(window.property("presses").toInt(), ++presses) << control << key;
        }
    }
}

TEST_F(Controls, AControlThatGoesHandsTheKeyboardOn) {
    struct Case {
        const char* what;
        const char* content;
        const char* next;
    };
    const Case cases[] = {
        {"to the one before it in its row",
         "Item { TextButton { text: 'Entry' } } Row { LabelButton { text: 'Open' } LabelButton { focus: true; text: "
         "'Reset'; onClicked: visible = false } }",
         "Open"},
        {"to the next, when it is the row's first",
         "Column { TextButton { text: 'Entry' } Row { LabelButton { focus: true; text: 'Connect'; onClicked: visible = "
         "false } } LabelButton { text: 'Accounts' } }",
         "Accounts"},
    };
    for (const auto& [what, content, next] : cases) {
        auto& window = show(content);
        press(window, Qt::Key_Return);
        ASSERT_NE(window.activeFocusItem(), nullptr) << what;
        EXPECT_EQ(window.activeFocusItem()->property("text").toString().toStdString(), next) << what;
    }
    auto& left = show(
        "property alias connected: button.visible; LabelButton { text: 'Start' } Row { LabelButton { id: button; "
        "focus: "
        "true; text: 'Connect' } LabelButton { text: 'Accounts' } }");
    QWindow other;
    other.show();
    other.requestActivate();
    settle();
    ASSERT_FALSE(left.isActive());
    left.setProperty("connected", false);
    left.requestActivate();
    settle();
    ASSERT_NE(left.activeFocusItem(), nullptr);
    EXPECT_EQ(left.activeFocusItem()->property("text"), QStringLiteral("Accounts")) << "while another window is active";
    auto& window = show(
        "property int presses: 0; Item { id: page; LabelButton { focus: true; text: 'Go'; onClicked: "
        "page.visible = false } } LabelButton { text: 'Other'; onClicked: ++presses }");
    press(window, Qt::Key_Return);
    press(window, Qt::Key_Return);
    EXPECT_EQ(window.property("presses").toInt(), 0) << "a page that goes takes the keyboard with it";
}

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

TEST_F(Controls, APageScrollsForTheKeyboard) {
    auto& window = show(
        "property real at: page.contentY; PageScroll { id: page; anchors.fill: parent; BodyText { width: 300; text: "
        "'Words' } TaskBox { width: parent.width; label: 'Task'; text: 'Line\\n'.repeat(200) } Item { width: 1; "
        "height: "
        "600 } LabelButton { text: 'Last' } Item { width: 1; height: 400 } }");
    const auto at = [&] { return window.property("at").toDouble(); };
    press(window, Qt::Key_Tab);
    EXPECT_EQ(at(), 0) << "the box is in sight, however long its text is";
    press(window, Qt::Key_Tab);
    ASSERT_EQ(window.activeFocusItem()->property("text").toString().toStdString(), "Last");
    const double last = window.activeFocusItem()->mapToScene({0, 0}).y();
    EXPECT_GT(last, 0);
    EXPECT_LT(last, 300);
    const double before = at();
    press(window, Qt::Key_PageDown);
    EXPECT_GT(at(), before) << "what is below the last control";
    press(window, Qt::Key_PageDown, {}, 9);
    const double end = at();
    press(window, Qt::Key_PageUp);
    EXPECT_LT(at(), end);
}

TEST_F(Controls, TheFolderPickerIsUsedByKeyboard) {
    const testing::TemporaryFolder folder;
    for (int i = 0; i < 60; ++i)
        ASSERT_TRUE(QDir().mkdir(QString::fromStdString(folder / ("inside " + std::to_string(100 + i)))));
    FolderPickerWindow picker(engine);
    bool given = false;
    std::optional<std::string> chosen;
    picker.pick(folder.path(), "Watch", [&](const auto& taken) {
        given = true;
        chosen = taken;
    });
    settle();
    QWindow& window = *QGuiApplication::focusWindow();
    // From the path into the list.
    press(window, Qt::Key_Down);
    press(window, Qt::Key_End);
    press(window, Qt::Key_Return);
    EXPECT_EQ(picker.folder().toStdString(), folder / "inside 159");
    press(window, Qt::Key_Backspace);
    EXPECT_EQ(picker.folder().toStdString(), folder.path());
    press(window, Qt::Key_Tab);
    press(window, Qt::Key_Return);  // New Folder…
    type(window, QStringLiteral("x"));
    press(window, Qt::Key_Escape);
    EXPECT_FALSE(given) << "leaves the name only";
    press(window, Qt::Key_Escape);
    EXPECT_TRUE(given);
    EXPECT_EQ(chosen, std::nullopt);
    EXPECT_EQ(picker.names().size(), 60);
    settle();
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

TEST_F(Controls, AnAlertWithALongTextFitsOnTheScreen) {
    AlertWindows alerts(engine);
    std::optional<bool> answer;
    const auto ask = [&](int lines) -> QWindow& {
        std::string why;
        for (int i = 0; i < lines; ++i)
            why += "Line\n";
        alerts.show({"Move?", why, "Move", "Not Now"}, [&](bool first) { answer = first; });
        settle();
        return *QGuiApplication::focusWindow();
    };
    const int few = ask(1).height();
    press(*QGuiApplication::focusWindow(), Qt::Key_Escape);
    EXPECT_EQ(answer, false);
    QWindow& window = ask(200);
    EXPECT_GT(window.height(), few);
    EXPECT_LT(window.height(), window.screen()->availableGeometry().height());
    press(window, Qt::Key_PageDown);
    press(window, Qt::Key_Return);
    EXPECT_EQ(answer, true);
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
