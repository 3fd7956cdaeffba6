import QtQuick

// A switch with its name, and below it what it does.
Pressable {
    id: toggle

    required property string text
    property string caption: ""
    required property bool checked
    signal toggled(bool on)

    width: parent ? parent.width : 0
    implicitHeight: words.implicitHeight

    onClicked: toggled(!checked)

    Accessible.role: Accessible.CheckBox
    Accessible.name: text
    Accessible.description: caption
    Accessible.checkable: true
    Accessible.checked: checked
    Accessible.onToggleAction: press()

    Column {
        id: words
        width: parent.width - 52
        spacing: 4

        Text {
            width: parent.width
            height: Math.max(22, implicitHeight)
            verticalAlignment: Text.AlignVCenter
            wrapMode: Text.Wrap
            textFormat: Text.PlainText
            text: toggle.text
            opacity: toggle.enabled ? 1 : 0.5
            color: Style.text
            font.family: Style.family
            font.pixelSize: Style.bodySize
        }
        BodyText {
            width: parent.width
            visible: text.length > 0
            caption: true
            text: toggle.caption
            Accessible.ignored: true
        }
    }
    Rectangle {
        id: track
        anchors.right: parent.right
        width: 38
        height: 22
        radius: 11
        opacity: toggle.enabled ? 1 : 0.5
        color: toggle.checked ? Style.clear : area.containsMouse ? Qt.rgba(1, 1, 1, 0.24) : Qt.rgba(1, 1, 1, 0.16)

        Rectangle {
            x: toggle.checked ? parent.width - width - 2 : 2
            y: 2
            width: 18
            height: 18
            radius: 9
            color: area.pressed ? "#e4e4e4" : "#ffffff"
        }
        FocusRing {
            control: toggle
            anchors.margins: -3
            radius: height / 2
        }
    }
    MouseArea {
        id: area
        width: parent.width
        height: track.height
        hoverEnabled: true
        onClicked: toggle.press()
    }
}
