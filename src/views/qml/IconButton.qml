import QtQuick
import Sunpane

// A round button with a symbol.
Item {
    id: button

    required property string symbol
    required property string label
    signal clicked

    implicitWidth: 26
    implicitHeight: 26
    activeFocusOnTab: enabled
    opacity: enabled ? 1 : 0.35

    function press() {
        if (enabled)
            clicked();
    }

    Accessible.role: Accessible.Button
    Accessible.name: label
    Accessible.focusable: true
    Accessible.onPressAction: press()
    Keys.onReturnPressed: press()
    Keys.onEnterPressed: press()
    Keys.onSpacePressed: press()

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
