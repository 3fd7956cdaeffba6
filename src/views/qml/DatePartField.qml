import QtQuick

// One part of a time: stepped with the arrow keys or the wheel, or typed.
Rectangle {
    id: field

    required property string label
    required property string text
    // As a number, for the screen reader.
    required property int value
    required property int minimumValue
    required property int maximumValue
    // How many digits name it fully; 0 where it is not typed.
    property int digits: 2
    signal stepped(int steps)
    signal entered(int value)
    signal movedOn(bool forward)
    property string typed

    implicitWidth: shown.implicitWidth + 14
    implicitHeight: 26
    radius: 6
    color: activeFocus ? Style.focus : area.containsMouse ? Style.pressed : "transparent"

    Accessible.role: Accessible.SpinBox
    Accessible.name: label + ": " + text
    Accessible.focusable: true
    Accessible.onIncreaseAction: stepped(1)
    Accessible.onDecreaseAction: stepped(-1)

    onActiveFocusChanged: typed = ""
    Keys.onUpPressed: stepped(1)
    Keys.onDownPressed: stepped(-1)
    Keys.onLeftPressed: movedOn(false)
    Keys.onRightPressed: movedOn(true)
    Keys.onPressed: (event) => {
        if (event.key < Qt.Key_0 || event.key > Qt.Key_9 || event.modifiers & ~Qt.KeypadModifier)
            return;
        event.accepted = true;
        typed = (typed + (event.key - Qt.Key_0)).slice(-digits);
        if (digits !== 4 || typed.length === 4)
            entered(parseInt(typed));
        if (typed.length === digits) {
            typed = "";
            movedOn(true);
        }
    }

    Text {
        id: shown
        anchors.centerIn: parent
        text: field.digits === 4 && field.typed.length > 0 ? field.typed : field.text
        textFormat: Text.PlainText
        color: Style.text
        font.family: Style.family
        font.pixelSize: Style.bodySize
    }
    MouseArea {
        id: area
        anchors.fill: parent
        hoverEnabled: true
        onPressed: field.forceActiveFocus()
        onWheel: (wheel) => {
            field.forceActiveFocus();
            if (wheel.angleDelta.y !== 0)
                field.stepped(wheel.angleDelta.y > 0 ? 1 : -1);
        }
    }
}
