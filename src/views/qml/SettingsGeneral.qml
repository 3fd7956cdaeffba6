import QtQuick

// What the program does by itself.
PageScroll {
    id: page

    required property var presenter

    SettingsGroup {
        SettingToggle {
            text: qsTr("Launch at login")
            caption: page.presenter.canLaunchAtLogin ? ""
                : qsTr("Run the installed Sunpane.app (not the debug binary) to enable this.")
            enabled: page.presenter.canLaunchAtLogin
            checked: page.presenter.launchAtLogin
            onToggled: (on) => page.presenter.setLaunchAtLogin(on)
        }
        BodyText {
            width: parent.width
            visible: text.length > 0
            caption: true
            color: Style.remove
            text: page.presenter.loginItemError
        }
    }
    SettingsGroup {
        SettingToggle {
            text: qsTr("Quick capture hotkey")
            caption: qsTr("⌃Space anywhere opens the notch with the todo input focused — type a thought, press Return, Esc to tuck it away.")
            checked: page.presenter.quickCapture
            onToggled: (on) => page.presenter.setQuickCapture(on)
        }
    }
    SettingsGroup {
        SettingToggle {
            text: qsTr("Calendar tasks become todos")
            caption: qsTr("Google Tasks and short personal events (45 min or less, nobody invited, no location) show up in the todo list automatically. Swipe one away and it returns to the schedule as a normal entry — Dawnly learns what isn't a task.")
            checked: page.presenter.calendarTodos
            onToggled: (on) => page.presenter.setCalendarTodos(on)
        }
    }
    SettingsGroup {
        title: qsTr("Todo calendars")

        Repeater {
            // By number: the list is a new one after every change, and whoever has the keyboard must keep it.
            model: page.presenter.calendars.length
            SettingToggle {
                required property int index
                // One that is about to go finds none.
                readonly property var calendar: page.presenter.calendars[index] ?? { identifier: "", title: "" }
                text: calendar.title
                checked: page.presenter.todoCalendars.indexOf(calendar.identifier) >= 0
                onToggled: (on) => page.presenter.setTodoCalendar(calendar.identifier, on)
            }
        }
        BodyText {
            width: parent.width
            caption: true
            text: qsTr("Everything on a checked calendar becomes a todo, timed or not. Tip: make a \"Todos\" calendar in Google, put tasks on it at any hour, check it here.")
        }
    }
}
