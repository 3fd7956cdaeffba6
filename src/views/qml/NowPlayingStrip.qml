import QtQuick
import Sunpane

// What plays, and the controls of its player.
Rectangle {
    id: strip

    // A NowPlayingPresenter.
    required property var track

    implicitHeight: 46
    radius: Style.sectionRadius
    color: Style.section
    border.color: Style.hairline

    Accessible.role: Accessible.Grouping
    Accessible.name: qsTr("Now playing: ") + track.title + ", " + track.artist

    Pressable {
        id: cover
        x: 8
        anchors.verticalCenter: parent.verticalCenter
        width: 30
        height: 30

        Accessible.name: strip.track.coverTooltip
        onClicked: strip.track.openSource()

        Rectangle {
            anchors.fill: parent
            radius: 7
            color: Style.pressed
            visible: !strip.track.hasCover
            SymbolIcon {
                anchors.centerIn: parent
                width: 16
                height: 16
                symbol: "music.note"
                color: Style.secondaryText
            }
        }
        CoverImage {
            anchors.fill: parent
            radius: 7
            image: strip.track.cover
        }
        Rectangle {
            anchors.fill: parent
            radius: 7
            color: Qt.rgba(1, 1, 1, 0.18)
            visible: coverArea.containsMouse
        }
        FocusRing {
            control: cover
            radius: 7
        }
        MouseArea {
            id: coverArea
            anchors.fill: parent
            hoverEnabled: true
            cursorShape: Qt.PointingHandCursor
            onClicked: strip.track.openSource()
        }
        Tooltip {
            text: strip.track.coverTooltip
            shown: coverArea.containsMouse && !coverArea.pressed
            anchors.left: parent.left
            anchors.bottom: parent.top
            anchors.bottomMargin: 6
        }
    }

    Column {
        anchors.verticalCenter: parent.verticalCenter
        anchors.left: cover.right
        anchors.leftMargin: 10
        anchors.right: buttons.left
        anchors.rightMargin: Style.gap
        spacing: 1

        Text {
            width: parent.width
            text: strip.track.title
            textFormat: Text.PlainText
            elide: Text.ElideRight
            maximumLineCount: 1
            color: Style.text
            font.family: Style.family
            font.pixelSize: 12
            font.weight: Font.DemiBold
        }
        Text {
            width: parent.width
            visible: text.length > 0
            text: strip.track.artist
            textFormat: Text.PlainText
            elide: Text.ElideRight
            maximumLineCount: 1
            color: Style.secondaryText
            font.family: Style.family
            font.pixelSize: Style.captionSize
        }
    }

    Row {
        id: buttons
        anchors.verticalCenter: parent.verticalCenter
        anchors.right: parent.right
        anchors.rightMargin: Style.gap
        spacing: 4

        Repeater {
            model: strip.track.buttonKeys

            // The whole square takes the click.
            Pressable {
                id: transport
                required property string modelData
                readonly property var look: strip.track.buttons[modelData]
                width: strip.track.hitArea
                height: width

                Accessible.name: look.label
                onClicked: strip.track.press(modelData)

                Rectangle {
                    anchors.fill: parent
                    radius: 6
                    color: area.pressed ? Qt.rgba(1, 1, 1, 0.18) : Qt.rgba(1, 1, 1, 0.1)
                    visible: area.containsMouse
                }
                SymbolIcon {
                    anchors.centerIn: parent
                    width: transport.look.symbolSize
                    height: width
                    symbol: transport.look.symbol
                    color: area.containsMouse ? Style.text : Style.secondaryText
                }
                FocusRing {
                    control: transport
                    radius: 6
                }
                MouseArea {
                    id: area
                    anchors.fill: parent
                    hoverEnabled: true
                    onClicked: transport.press()
                }
                Tooltip {
                    text: transport.look.label
                    shown: area.containsMouse && !area.pressed
                    anchors.right: parent.right
                    anchors.bottom: parent.top
                    anchors.bottomMargin: 6
                }
            }
        }
    }
}
