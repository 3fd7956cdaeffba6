#include <gtest/gtest.h>

#include <QQuickItem>

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

}  // namespace
}  // namespace sunpane
