import QtQuick

// A paragraph that explains.
Text {
    property bool caption: false

    wrapMode: Text.Wrap
    textFormat: Text.PlainText
    color: Style.secondaryText
    font.family: Style.family
    font.pixelSize: caption ? Style.captionSize : Style.bodySize
    lineHeight: 1.2
    Accessible.role: Accessible.StaticText
    Accessible.name: text
}
