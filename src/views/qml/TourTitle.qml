import QtQuick

// What a step of the tour is about.
Text {
    width: parent ? parent.width : 0
    wrapMode: Text.Wrap
    color: Style.text
    font.family: Style.family
    font.pixelSize: 26
    font.weight: Font.Bold
    lineHeight: 1.1
    Accessible.role: Accessible.Heading
    Accessible.name: text
}
