import QtQuick

// A message with one or two answers. Closing the window gives the second.
QuestionWindow {
    id: alert

    required property string firstButton
    required property string secondButton
    signal answered(bool first)

    onDismissed: answered(false)

    Row {
        width: parent.width
        layoutDirection: Qt.RightToLeft
        spacing: Style.gap
        Keys.onLeftPressed: (second.visible ? second : first).forceActiveFocus()
        Keys.onRightPressed: first.forceActiveFocus()

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
