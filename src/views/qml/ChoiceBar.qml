import QtQuick

// A few choices side by side, one of which is taken.
Rectangle {
    id: bar

    required property string label
    required property var choices
    required property int current
    signal chosen(int index)

    implicitHeight: 30
    radius: 7
    color: Style.card
    border.color: Style.hairline

    Accessible.role: Accessible.ComboBox
    Accessible.name: label + ": " + (choices[current] ?? "")
    Accessible.focusable: true
    Keys.onLeftPressed: bar.chosen(Math.max(0, current - 1))
    Keys.onRightPressed: bar.chosen(Math.min(choices.length - 1, current + 1))
    Keys.onUpPressed: bar.chosen(Math.max(0, current - 1))
    Keys.onDownPressed: bar.chosen(Math.min(choices.length - 1, current + 1))

    Row {
        x: 2
        y: 2
        Repeater {
            model: bar.choices
            Rectangle {
                id: choice
                required property int index
                required property string modelData
                readonly property bool taken: index === bar.current
                width: (bar.width - 4) / bar.choices.length
                height: bar.height - 4
                radius: 6
                color: taken ? Qt.rgba(1, 1, 1, 0.18) : area.containsMouse ? Style.pressed : "transparent"

                Accessible.role: Accessible.RadioButton
                Accessible.name: modelData
                Accessible.checkable: true
                Accessible.checked: taken
                Accessible.onPressAction: bar.chosen(index)

                Text {
                    anchors.centerIn: parent
                    width: Math.min(implicitWidth, parent.width - 4)
                    elide: Text.ElideRight
                    text: choice.modelData
                    color: choice.taken ? Style.text : Style.secondaryText
                    font.family: Style.family
                    font.pixelSize: Style.captionSize + 1
                }
                MouseArea {
                    id: area
                    anchors.fill: parent
                    hoverEnabled: true
                    onPressed: {
                        bar.forceActiveFocus();
                        bar.chosen(choice.index);
                    }
                }
            }
        }
    }
    FocusRing {
        control: bar
        radius: bar.radius
    }
}
