import QtQuick

// Joins an online meeting; brighter while the meeting is about to begin.
Pressable {
    id: capsule

    property string meeting: ""
    property bool imminent: false
    readonly property bool inColumn: true

    implicitWidth: label.implicitWidth + 26
    implicitHeight: 22

    Accessible.name: meeting.length > 0 ? qsTr("Join %1").arg(meeting) : label.text

    Rectangle {
        anchors.fill: parent
        radius: height / 2
        color: capsule.imminent ? Style.clear : Style.joinQuiet
        border.color: capsule.imminent ? "transparent" : Style.joinEdge
    }
    Rectangle {
        anchors.fill: parent
        radius: height / 2
        color: area.pressed ? Qt.rgba(0, 0, 0, 0.18) : Qt.rgba(1, 1, 1, 0.16)
        visible: area.containsMouse
    }
    Text {
        id: label
        anchors.centerIn: parent
        text: qsTr("Join")
        color: capsule.imminent ? Style.onAccent : Style.clear
        font.family: Style.family
        font.pixelSize: 12
        font.weight: Font.DemiBold
    }
    FocusRing {
        control: capsule
        radius: height / 2
    }
    MouseArea {
        id: area
        anchors.fill: parent
        hoverEnabled: true
        cursorShape: Qt.PointingHandCursor
        onClicked: capsule.press()
    }
}
