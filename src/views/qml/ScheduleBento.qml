import QtQuick
import Sunpane

// The next meeting, in one line, with the way into it.
Rectangle {
    id: strip

    required property var presenter

    implicitHeight: 34
    radius: Style.cardRadius
    color: Style.meeting
    border.color: Style.meetingEdge

    Accessible.role: Accessible.StaticText
    Accessible.name: qsTr("Next meeting: ") + presenter.meetingTitle + ", " + presenter.meetingTime

    SymbolIcon {
        id: icon
        anchors.verticalCenter: parent.verticalCenter
        x: Style.inset
        width: 15
        height: 15
        symbol: strip.presenter.canJoinMeeting ? "video.fill" : "calendar"
        color: Style.clear
    }
    Text {
        id: title
        anchors.verticalCenter: parent.verticalCenter
        anchors.left: icon.right
        anchors.leftMargin: Style.gap
        width: Math.min(implicitWidth, join.x - x - time.implicitWidth - 2 * Style.gap)
        text: strip.presenter.meetingTitle
        textFormat: Text.PlainText
        elide: Text.ElideRight
        maximumLineCount: 1
        color: Style.text
        font.family: Style.family
        font.pixelSize: Style.bodySize
        font.weight: Font.DemiBold
    }
    Text {
        id: time
        anchors.baseline: title.baseline
        anchors.left: title.right
        anchors.leftMargin: Style.gap
        text: strip.presenter.meetingTime
        textFormat: Text.PlainText
        color: Style.secondaryText
        font.family: Style.family
        font.pixelSize: Style.bodySize
    }
    JoinCapsule {
        id: join
        anchors.verticalCenter: parent.verticalCenter
        x: parent.width - (visible ? width : 0) - 6
        visible: strip.presenter.canJoinMeeting
        meeting: strip.presenter.meetingTitle
        imminent: strip.presenter.meetingImminent
        onClicked: strip.presenter.joinMeeting()
    }
}
