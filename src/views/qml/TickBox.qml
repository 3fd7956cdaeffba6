import QtQuick
import Sunpane

// The circle that completes a todo.
Item {
    id: box

    required property bool done
    required property bool priority
    signal clicked

    implicitWidth: 16
    implicitHeight: 16

    Rectangle {
        anchors.fill: parent
        radius: width / 2
        color: box.done ? Style.clear : area.containsMouse ? Qt.rgba(1, 1, 1, 0.12) : "transparent"
        opacity: box.done ? 0.85 : 1
        border.width: box.done ? 0 : 1.6
        border.color: box.priority ? Style.priority : area.containsMouse ? Style.secondaryText : Style.tertiaryText
        scale: area.pressed ? 0.88 : 1
    }
    SymbolIcon {
        anchors.centerIn: parent
        width: 10
        height: 10
        visible: box.done
        symbol: "checkmark"
        color: Style.onAccent
    }
    MouseArea {
        id: area
        anchors.fill: parent
        anchors.margins: -6
        hoverEnabled: true
        onClicked: box.clicked()
    }
}
