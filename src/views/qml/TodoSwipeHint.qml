import QtQuick
import Sunpane

// What lies behind a card or a row while it is swiped, and says what letting go would do.
Item {
    id: hint

    // How far it is swiped; positive to the right.
    required property real offset
    required property real threshold
    required property string removeLabel
    required property bool priority
    // Whether the row springs back; the hint then still says what the swipe did.
    required property bool settling
    property bool takesPriority
    readonly property bool decided: Math.abs(offset) > threshold

    visible: Math.abs(offset) > 1

    onPriorityChanged: latch()
    onSettlingChanged: latch()
    Component.onCompleted: latch()

    function latch() {
        if (!settling)
            takesPriority = priority;
    }

    Rectangle {
        anchors.fill: parent
        radius: 7
        color: hint.offset > 0 ? Style.priority : Style.remove
        opacity: Math.min(0.55, 0.5 * Math.abs(hint.offset) / 90)
    }
    SymbolIcon {
        anchors.verticalCenter: parent.verticalCenter
        x: hint.offset > 0 ? 12 : parent.width - width - 12
        width: 14
        height: 14
        scale: hint.decided ? 1.2 : 1
        symbol: hint.offset > 0 ? (hint.takesPriority ? "star.slash.fill" : "star.fill") : "trash.fill"
        color: Style.text
    }
    Text {
        anchors.verticalCenter: parent.verticalCenter
        x: parent.width - width - 32
        visible: hint.offset < -64
        text: hint.removeLabel
        color: Style.text
        font.family: Style.family
        font.pixelSize: 10
        font.weight: Font.DemiBold
    }
}
