import QtQuick
import Sunpane

// Shows behind a card that is being swiped what letting go of it would do.
Item {
    id: hint

    // How far the card is moved, positive to the right.
    required property real offset
    // Whether a swipe to the left removes the card for good.
    required property bool removes
    // Whether a swipe to the right takes a flag away.
    required property bool flagged
    // Whether the card is in the user's hand.
    required property bool inHand
    // What this swipe does, still while the card springs back with it done.
    property bool saysRemove
    property bool saysUnflag
    readonly property color ink: offset < 0 && !saysRemove ? Style.onAccent : "white"
    readonly property color wash: offset > 0 ? Style.priority : saysRemove ? Style.remove : Style.clear

    visible: Math.abs(offset) > 0.5

    onRemovesChanged: latch(offset === 0)
    onFlaggedChanged: latch(offset === 0)
    onOffsetChanged: latch(offset === 0)
    // A card can be swiped again before it is back.
    onInHandChanged: latch(inHand)
    Component.onCompleted: latch(true)

    function latch(begins) {
        if (!begins)
            return;
        saysRemove = removes;
        saysUnflag = flagged;
    }

    Rectangle {
        anchors.fill: parent
        radius: Style.cardRadius
        color: hint.wash
        opacity: Math.min(1, Math.abs(hint.offset) / 90)
    }
    SymbolIcon {
        anchors.verticalCenter: parent.verticalCenter
        x: Style.inset
        width: 14
        height: 14
        visible: hint.offset > x + width
        symbol: hint.saysUnflag ? "star.slash.fill" : "star.fill"
        color: Style.starInk
    }
    // The words appear as the card uncovers them.
    Item {
        anchors.right: parent.right
        width: Math.max(0, -hint.offset)
        height: parent.height
        clip: true
        visible: hint.offset < 0

        Row {
            anchors.verticalCenter: parent.verticalCenter
            anchors.right: parent.right
            anchors.rightMargin: Style.inset
            spacing: 4
            Text {
                id: word
                text: hint.saysRemove ? qsTr("REMOVE") : qsTr("CLEAR")
                color: hint.ink
                font.family: Style.family
                font.pixelSize: Style.captionSize
                font.weight: Font.Bold
            }
            SymbolIcon {
                anchors.verticalCenter: word.verticalCenter
                width: 13
                height: 13
                symbol: hint.saysRemove ? "trash.fill" : "checkmark"
                color: hint.ink
            }
        }
    }
}
