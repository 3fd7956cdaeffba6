import QtQuick

// What a control without words does. Whoever uses it says where it stands.
Rectangle {
    required property string text
    required property bool shown
    property real maximumWidth: 400

    visible: shown && text.length > 0
    width: Math.min(label.implicitWidth + 14, maximumWidth)
    height: label.height + 8
    radius: 6
    color: "#3a3638"
    border.color: Style.hairline
    z: 10

    Text {
        id: label
        anchors.centerIn: parent
        text: parent.text
        width: parent.width - 14
        wrapMode: Text.Wrap
        // A todo may be longer than the screen is high; its beginning tells which it is.
        maximumLineCount: 10
        elide: Text.ElideRight
        textFormat: Text.PlainText
        color: Style.text
        font.family: Style.family
        font.pixelSize: Style.captionSize
    }
}
