import QtQuick

// A message with one or two answers. Closing the window gives the second.
ProgramWindow {
    id: alert

    required property string message
    required property string informativeText
    required property string firstButton
    required property string secondButton
    signal answered(bool first)

    width: 420
    height: content.implicitHeight + 48
    minimumWidth: width
    maximumWidth: width
    minimumHeight: height
    maximumHeight: height
    flags: Qt.Dialog | Qt.CustomizeWindowHint | Qt.WindowTitleHint | Qt.WindowSystemMenuHint | Qt.WindowCloseButtonHint
        | Qt.WindowStaysOnTopHint
    lift: 1 / 3

    // The window's size must be known before it is shown.
    Component.onCompleted: {
        content.forceLayout();
        place();
    }
    onClosing: answered(false)

    FocusScope {
        anchors.fill: parent
        focus: true
        Accessible.role: Accessible.AlertMessage
        Accessible.name: alert.message
        Keys.onEscapePressed: alert.answered(false)
        Keys.onLeftPressed: (second.visible ? second : first).forceActiveFocus()
        Keys.onRightPressed: first.forceActiveFocus()

        Column {
            id: content
            x: 24
            y: 24
            width: alert.width - 48
            spacing: Style.inset

            Text {
                width: parent.width
                wrapMode: Text.Wrap
                text: alert.message
                color: Style.text
                font.family: Style.family
                font.pixelSize: Style.titleSize
                font.weight: Font.DemiBold
                Accessible.role: Accessible.Heading
                Accessible.name: text
            }
            BodyText {
                width: parent.width
                text: alert.informativeText
            }
            Item {
                width: 1
                height: 4
            }
            Row {
                width: parent.width
                layoutDirection: Qt.RightToLeft
                spacing: Style.gap

                LabelButton {
                    id: first
                    focus: true
                    width: second.visible ? (parent.width - parent.spacing) / 2 : parent.width
                    text: alert.firstButton
                    suggested: true
                    onClicked: alert.answered(true)
                }
                LabelButton {
                    id: second
                    visible: text.length > 0
                    width: (parent.width - parent.spacing) / 2
                    text: alert.secondButton
                    onClicked: alert.answered(false)
                }
            }
        }
    }
}
