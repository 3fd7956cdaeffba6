import QtQuick

// A quiet button that is only its words.
Pressable {
    id: button

    required property string text
    readonly property bool inColumn: true
    // Windows beside the panel have a background of their own.
    property bool onPanel: true

    implicitWidth: label.implicitWidth + 2 * Style.inset
    implicitHeight: label.implicitHeight + 10

    Accessible.name: text

    Scrim {
        visible: button.onPanel
        anchors.margins: 0
    }
    Text {
        id: label
        anchors.centerIn: parent
        text: button.text
        color: area.containsMouse ? Style.text : Style.secondaryText
        font.family: Style.family
        font.pixelSize: Style.captionSize
    }
    FocusRing {
        control: button
        radius: 6
    }
    MouseArea {
        id: area
        anchors.fill: parent
        hoverEnabled: true
        onClicked: button.press()
    }
}
