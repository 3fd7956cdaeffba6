import QtQuick

// One card.
Rectangle {
    id: card

    required property string markup
    required property string spoken
    property bool priority: false
    property bool cleared: false
    property bool joinable: false
    property bool imminent: false
    signal joinRequested
    signal menuRequested(real x, real y, bool byKeyboard)
    readonly property bool inColumn: true

    radius: Style.cardRadius
    color: priority ? Style.priorityCard : Style.card
    border.color: priority ? Style.priorityEdge : "transparent"
    implicitHeight: Math.max(label.implicitHeight + 17, joinable ? join.height + 12 : 0)
    activeFocusOnTab: true

    Accessible.role: Accessible.ListItem
    Accessible.name: spoken
    Accessible.description: priority ? qsTr("priority") : cleared ? qsTr("cleared") : ""
    Accessible.focusable: true
    Accessible.onPressAction: menuRequested(20, height, true)
    Keys.onMenuPressed: menuRequested(20, height, true)
    Keys.onReturnPressed: menuRequested(20, height, true)
    Keys.onEnterPressed: menuRequested(20, height, true)

    Rectangle {
        anchors.fill: parent
        radius: parent.radius
        color: Style.hover
        visible: hover.hovered
    }
    Text {
        id: label
        x: 10
        y: 9
        width: parent.width - 20 - (card.joinable ? join.width + Style.gap : 0)
        text: card.markup
        textFormat: Text.StyledText
        wrapMode: Text.Wrap
        color: card.cleared ? Style.tertiaryText : Style.text
        font.strikeout: card.cleared
        font.family: Style.family
        font.pixelSize: Style.bodySize
        lineHeight: 1.15
    }
    FocusRing {
        control: card
        radius: card.radius
    }
    HoverHandler {
        id: hover
    }
    MouseArea {
        anchors.fill: parent
        acceptedButtons: Qt.RightButton
        onClicked: (mouse) => card.menuRequested(mouse.x, mouse.y, false)
    }
    JoinCapsule {
        id: join
        anchors.right: parent.right
        anchors.rightMargin: Style.gap
        y: 6
        visible: card.joinable
        meeting: card.spoken
        imminent: card.imminent
        onClicked: card.joinRequested()
    }
}
