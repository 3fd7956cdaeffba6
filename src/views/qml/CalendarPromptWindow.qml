import QtQuick

// Asks the user whether the calendars may be read.
QuestionWindow {
    id: prompt

    signal answered(string choice)

    title: qsTr("Calendar access")
    symbol: "calendar"
    message: qsTr("Let Dawnly see your calendar?")
    informativeText: qsTr("It shows today's schedule when no briefing has arrived, offers a Join button for the next meeting and reminds you fifteen minutes before. Nothing of it leaves this machine.")
    onDismissed: answered("denied")

    LabelButton {
        focus: true
        width: parent.width
        text: qsTr("Allow Full Access")
        suggested: true
        onClicked: prompt.answered("full")
    }
    LabelButton {
        width: parent.width
        text: qsTr("Only Add Events")
        onClicked: prompt.answered("writeOnly")
    }
    LabelButton {
        width: parent.width
        text: qsTr("Don't Allow")
        onClicked: prompt.answered("denied")
    }
}
