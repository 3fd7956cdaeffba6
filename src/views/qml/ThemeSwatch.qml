import QtQuick

// A theme to choose: what the panel would be washed with, and the theme's name below.
Pressable {
    id: swatch

    required property string label
    // A list of { color, location } from top to bottom, of at most five.
    required property var fill
    required property bool selected

    implicitWidth: 44
    implicitHeight: name.y + name.implicitHeight

    function stop(index) {
        return fill[Math.min(index, fill.length - 1)];
    }

    Accessible.role: Accessible.RadioButton
    Accessible.name: qsTr("%1 theme").arg(label)
    Accessible.checkable: true
    Accessible.checked: selected

    Rectangle {
        id: tile
        width: 44
        height: 34
        radius: 8
        gradient: Gradient {
            GradientStop { position: swatch.stop(0).location; color: swatch.stop(0).color }
            GradientStop { position: swatch.stop(1).location; color: swatch.stop(1).color }
            GradientStop { position: swatch.stop(2).location; color: swatch.stop(2).color }
            GradientStop { position: swatch.stop(3).location; color: swatch.stop(3).color }
            GradientStop { position: swatch.stop(4).location; color: swatch.stop(4).color }
        }
        Rectangle {
            anchors.fill: parent
            radius: parent.radius
            color: area.pressed ? Qt.rgba(0, 0, 0, 0.18) : area.containsMouse ? Qt.rgba(1, 1, 1, 0.12) : "transparent"
            border.color: Qt.rgba(1, 1, 1, 0.22)
        }
        // Stands off from the tile, so that it shows on every fill.
        Rectangle {
            anchors.fill: parent
            anchors.margins: -3
            radius: parent.radius + 3
            visible: swatch.selected
            color: "transparent"
            border.color: Style.text
            border.width: 2
        }
        FocusRing {
            anchors.margins: -6
            control: swatch
            radius: parent.radius + 6
        }
    }
    Text {
        id: name
        anchors.horizontalCenter: tile.horizontalCenter
        y: tile.height + 5
        text: swatch.label
        textFormat: Text.PlainText
        color: swatch.selected ? Style.text : Style.secondaryText
        font.family: Style.family
        font.pixelSize: Style.captionSize
        font.weight: swatch.selected ? Font.DemiBold : Font.Normal
    }
    MouseArea {
        id: area
        anchors.fill: parent
        hoverEnabled: true
        onClicked: swatch.press()
    }
}
