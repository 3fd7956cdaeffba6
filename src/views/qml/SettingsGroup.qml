import QtQuick

// Controls that belong together, on a card under their name.
Column {
    id: group

    property string title: ""
    default property alias controls: inside.data

    width: parent.width
    spacing: 6

    Text {
        visible: group.title.length > 0
        x: 2
        text: group.title
        color: Style.secondaryText
        font.family: Style.family
        font.pixelSize: Style.captionSize
        font.weight: Font.DemiBold
        Accessible.role: Accessible.Heading
        Accessible.name: text
    }
    Rectangle {
        width: parent.width
        height: inside.implicitHeight + 28
        radius: Style.sectionRadius
        color: Style.windowSection
        border.color: Style.hairline

        Column {
            id: inside
            x: 16
            y: 14
            width: parent.width - 32
            spacing: Style.inset
        }
    }
}
