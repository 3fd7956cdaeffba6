import QtQuick
import Sunpane

// A small symbol at the end of a todo, with its meaning beside it when the pointer rests there.
Item {
    id: badge

    required property string symbol
    required property string label
    required property var column
    property bool clickable: false
    property color tint: Style.secondaryText
    signal clicked

    width: visible ? 20 : 0
    height: parent.height

    // What the others say is in the row's description.
    Accessible.ignored: !clickable
    Accessible.role: Accessible.Button
    Accessible.name: label
    Accessible.onPressAction: clicked()

    Rectangle {
        anchors.centerIn: parent
        width: 20
        height: 20
        radius: 6
        color: area.pressed ? Qt.rgba(1, 1, 1, 0.18) : Qt.rgba(1, 1, 1, 0.1)
        visible: badge.clickable && area.containsMouse
    }
    SymbolIcon {
        anchors.centerIn: parent
        width: 13
        height: 13
        symbol: badge.symbol
        color: badge.clickable && area.containsMouse ? Style.text : badge.tint
    }
    MouseArea {
        id: area
        anchors.fill: parent
        hoverEnabled: true
        acceptedButtons: badge.clickable ? Qt.LeftButton : Qt.NoButton
        onContainsMouseChanged: badge.column.hint(badge, containsMouse ? badge.label : "", 150)
        onClicked: badge.clicked()
    }
    onVisibleChanged: {
        if (!visible)
            column.hint(badge, "", 0);
    }
}
