import QtQuick
import Sunpane

// A page, or an action, in the settings' list.
Pressable {
    id: entry

    required property string text
    required property string symbol
    property bool page: false
    property bool selected: false

    width: parent ? parent.width : 0
    implicitHeight: 32

    Accessible.role: page ? Accessible.PageTab : Accessible.Button
    Accessible.name: text
    Accessible.selectable: page
    Accessible.selected: selected
    Keys.onDownPressed: nextItemInFocusChain(true).forceActiveFocus(Qt.TabFocusReason)
    Keys.onUpPressed: nextItemInFocusChain(false).forceActiveFocus(Qt.BacktabFocusReason)

    Rectangle {
        anchors.fill: parent
        radius: 8
        color: entry.selected ? Qt.rgba(1, 1, 1, 0.14) : area.pressed ? Qt.rgba(1, 1, 1, 0.12)
            : area.containsMouse ? Qt.rgba(1, 1, 1, 0.06) : "transparent"
    }
    SymbolIcon {
        x: 10
        anchors.verticalCenter: parent.verticalCenter
        width: 16
        height: 16
        symbol: entry.symbol
        color: entry.selected ? Style.priority : Style.secondaryText
    }
    Text {
        x: 36
        width: parent.width - x - 8
        anchors.verticalCenter: parent.verticalCenter
        text: entry.text
        elide: Text.ElideRight
        color: Style.text
        font.family: Style.family
        font.pixelSize: Style.bodySize
        font.weight: entry.selected ? Font.DemiBold : Font.Normal
    }
    FocusRing {
        control: entry
        radius: 8
    }
    MouseArea {
        id: area
        anchors.fill: parent
        hoverEnabled: true
        onClicked: entry.press()
    }
}
