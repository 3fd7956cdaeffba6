import QtQuick

// A button of a prompt: filled when it is the answer that the prompt suggests.
Item {
    id: button

    required property string text
    property bool suggested: false
    signal clicked

    implicitHeight: 32
    activeFocusOnTab: true

    Accessible.role: Accessible.Button
    Accessible.name: text
    Accessible.focusable: true
    Accessible.defaultButton: suggested
    Accessible.onPressAction: clicked()
    Keys.onReturnPressed: clicked()
    Keys.onEnterPressed: clicked()
    Keys.onSpacePressed: clicked()

    Rectangle {
        anchors.fill: parent
        radius: 8
        color: button.suggested ? Style.focus : Qt.rgba(1, 1, 1, 0.09)
    }
    Rectangle {
        anchors.fill: parent
        radius: 8
        color: area.pressed ? Qt.rgba(0, 0, 0, 0.2) : Style.pressed
        visible: area.containsMouse
    }
    Text {
        anchors.centerIn: parent
        text: button.text
        color: Style.text
        font.family: Style.family
        font.pixelSize: Style.bodySize
        font.weight: button.suggested ? Font.DemiBold : Font.Normal
    }
    FocusRing {
        control: button
        // The accent would not show on itself.
        anchors.margins: -4
        radius: 12
    }
    MouseArea {
        id: area
        anchors.fill: parent
        hoverEnabled: true
        onClicked: button.clicked()
    }
}
