import QtQuick
import Sunpane

// A button with words, and a symbol before them where one is given; filled when it is the answer that is suggested.
Pressable {
    id: button

    required property string text
    property string symbol: ""
    property bool suggested: false

    implicitWidth: label.implicitWidth + 28
    implicitHeight: 30

    Accessible.name: text
    Accessible.defaultButton: suggested

    Rectangle {
        anchors.fill: parent
        radius: 8
        color: button.suggested ? Style.focus : Qt.rgba(1, 1, 1, 0.09)
        border.color: button.suggested ? "transparent" : Style.hairline
    }
    Rectangle {
        anchors.fill: parent
        radius: 8
        color: area.pressed ? Qt.rgba(0, 0, 0, 0.2) : Style.pressed
        visible: area.containsMouse
    }
    onSymbolChanged: appearing.restart()

    Row {
        id: label
        anchors.centerIn: parent
        spacing: 7

        SymbolIcon {
            id: mark
            anchors.verticalCenter: parent.verticalCenter
            visible: button.symbol.length > 0
            width: 13
            height: 13
            symbol: button.symbol
            color: Style.text
            NumberAnimation {
                id: appearing
                target: mark
                property: "opacity"
                from: 0
                to: 1
                duration: 200
            }
        }
        Text {
            anchors.verticalCenter: parent.verticalCenter
            text: button.text
            color: Style.text
            font.family: Style.family
            font.pixelSize: Style.bodySize
            font.weight: button.suggested ? Font.DemiBold : Font.Normal
        }
    }
    FocusRing {
        control: button
        // The accent would not show on itself.
        anchors.margins: button.suggested ? -4 : -2
        radius: 8 - anchors.margins
    }
    MouseArea {
        id: area
        anchors.fill: parent
        hoverEnabled: true
        onClicked: button.press()
    }
}
