import QtQuick

// What a control without words does. Whoever uses it says where it stands.
Rectangle {
    required property string text
    required property bool shown

    visible: shown && text.length > 0
    width: label.implicitWidth + 14
    height: label.implicitHeight + 8
    radius: 6
    color: "#3a3638"
    border.color: Style.hairline
    z: 10

    Text {
        id: label
        anchors.centerIn: parent
        text: parent.text
        textFormat: Text.PlainText
        color: Style.text
        font.family: Style.family
        font.pixelSize: Style.captionSize
    }
}
