import QtQuick
import QtQuick.Window
import Sunpane

// Asks the user whether the calendars may be read.
Window {
    id: prompt

    signal answered(string choice)

    width: 420
    height: content.implicitHeight + 48
    minimumWidth: width
    maximumWidth: width
    minimumHeight: height
    maximumHeight: height
    flags: Qt.Dialog | Qt.WindowStaysOnTopHint
    title: qsTr("Calendar access")
    color: Style.panelBottom
    x: Screen.virtualX + (Screen.width - width) / 2
    y: Screen.virtualY + (Screen.height - height) / 3

    // The window's size must be known before it is shown.
    Component.onCompleted: content.forceLayout()
    onClosing: answered("denied")

    FocusScope {
        anchors.fill: parent
        focus: true
        Keys.onEscapePressed: prompt.answered("denied")
        Keys.onDownPressed: prompt.moveFocus(true)
        Keys.onUpPressed: prompt.moveFocus(false)

        Column {
            id: content
            x: 24
            y: 24
            width: prompt.width - 48
            spacing: Style.inset

            SymbolIcon {
                width: 34
                height: 34
                symbol: "calendar"
                color: Style.priority
            }
            Text {
                width: parent.width
                wrapMode: Text.Wrap
                text: qsTr("Let Dawnly see your calendar?")
                color: Style.text
                font.family: Style.family
                font.pixelSize: Style.titleSize
                font.weight: Font.DemiBold
                Accessible.role: Accessible.Heading
                Accessible.name: text
            }
            Text {
                width: parent.width
                wrapMode: Text.Wrap
                text: qsTr("It shows today's schedule when no briefing has arrived, offers a Join button for the next meeting and reminds you fifteen minutes before. Nothing of it leaves this machine.")
                color: Style.secondaryText
                font.family: Style.family
                font.pixelSize: Style.bodySize
                lineHeight: 1.2
                Accessible.role: Accessible.StaticText
                Accessible.name: text
            }
            Item {
                width: 1
                height: 4
            }
            PromptButton {
                id: allow
                focus: true
                width: parent.width
                text: qsTr("Allow Full Access")
                suggested: true
                onClicked: prompt.answered("full")
            }
            PromptButton {
                width: parent.width
                text: qsTr("Only Add Events")
                onClicked: prompt.answered("writeOnly")
            }
            PromptButton {
                width: parent.width
                text: qsTr("Don't Allow")
                onClicked: prompt.answered("denied")
            }
        }
    }

    function moveFocus(forward) {
        const next = (activeFocusItem ?? allow).nextItemInFocusChain(forward);
        if (next)
            next.forceActiveFocus(forward ? Qt.TabFocusReason : Qt.BacktabFocusReason);
    }
}
