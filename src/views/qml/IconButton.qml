import QtQuick
import Sunpane

// A round button with a symbol.
Pressable {
    id: button

    required property string symbol
    required property string label

    implicitWidth: 26
    implicitHeight: 26
    opacity: enabled ? 1 : 0.35

    Accessible.name: label

    Rectangle {
        anchors.fill: parent
        radius: width / 2
        color: area.pressed ? Qt.rgba(1, 1, 1, 0.18) : area.containsMouse ? Qt.rgba(1, 1, 1, 0.14) : Qt.rgba(1, 1, 1, 0.09)
    }
    SymbolIcon {
        anchors.centerIn: parent
        width: 13
        height: 13
        symbol: button.symbol
        color: Style.text
    }
    FocusRing {
        control: button
        radius: width / 2
    }
    MouseArea {
        id: area
        anchors.fill: parent
        hoverEnabled: true
        onClicked: button.press()
    }
    Tooltip {
        text: button.label
        shown: area.containsMouse && !area.pressed
        anchors.top: parent.bottom
        anchors.topMargin: 6
        anchors.right: parent.right
    }
}
