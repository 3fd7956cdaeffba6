import QtQuick

// One thing to know, behind a symbol.
Row {
    id: bullet

    required property string emoji
    required property string text

    width: parent ? parent.width : 0
    spacing: 12

    Text {
        id: mark
        width: 24
        text: bullet.emoji
        horizontalAlignment: Text.AlignHCenter
        // Some marks are letters in other fonts.
        font.family: "Noto Color Emoji"
        font.pixelSize: 17
        Accessible.ignored: true
    }
    BodyText {
        width: parent.width - mark.width - parent.spacing
        anchors.verticalCenter: mark.verticalCenter
        color: Style.text
        text: bullet.text
        // A text of two lines begins where its symbol does.
        anchors.verticalCenterOffset: Math.max(0, (height - mark.height) / 2)
    }
}
