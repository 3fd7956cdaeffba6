import QtQuick
import Sunpane

// Asks the user whether the calendars may be read.
ProgramWindow {
    id: prompt

    signal answered(string choice)

    width: 420
    height: content.implicitHeight + 48
    minimumWidth: width
    maximumWidth: width
    minimumHeight: height
    maximumHeight: height
    flags: Qt.Dialog | Qt.CustomizeWindowHint | Qt.WindowTitleHint | Qt.WindowSystemMenuHint | Qt.WindowCloseButtonHint
        | Qt.WindowStaysOnTopHint
    title: qsTr("Calendar access")
    lift: 1 / 3

    // The window's size must be known before it is shown.
    Component.onCompleted: {
        content.forceLayout();
        place();
    }
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
            LabelButton {
                id: allow
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
    }

    function moveFocus(forward) {
        const next = (activeFocusItem ?? allow).nextItemInFocusChain(forward);
        if (next)
            next.forceActiveFocus(forward ? Qt.TabFocusReason : Qt.BacktabFocusReason);
    }
}
