import QtQuick

// One card.
Rectangle {
    id: card

    required property string markup
    required property string spoken
    readonly property bool inColumn: true

    radius: Style.cardRadius
    color: Style.card
    border.color: "transparent"
    implicitHeight: label.implicitHeight + 17
    activeFocusOnTab: true

    Accessible.role: Accessible.ListItem
    Accessible.name: spoken
    Accessible.focusable: true

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
        width: parent.width - 20
        text: card.markup
        textFormat: Text.StyledText
        wrapMode: Text.Wrap
        color: Style.text
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
}
