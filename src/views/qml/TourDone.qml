import QtQuick
import Sunpane

// The last step: what happens next, and the calendar.
Column {
    id: done

    required property var tour
    readonly property var bullets: tour.skippedAI ? [
        ["📅", qsTr("Your next meeting lives under the notch — with a Join button when it's time.")],
        ["✅", qsTr("Todos: ⌃Space anywhere to capture one. Swipe right = priority, left = clear.")],
        ["🎵", qsTr("Whatever is playing — Spotify, Music, or a browser tab — gets a control strip.")],
        ["🤖", qsTr("Want AI briefs later? Settings has the two copy-paste prompts ready.")]
    ] : [
        ["📄", qsTr("Your AI writes one markdown file a day. Dawnly does the rest.")],
        ["⚙️", qsTr("Everything here lives in Settings too: folder, prompt, appearance.")],
        ["🔒", qsTr("No servers, no account. Your briefs never leave your machines.")]
    ]

    spacing: 18

    TourTitle {
        text: done.tour.skippedAI ? qsTr("Ready to go.\nNo AI required.") : qsTr("That's it.\nTomorrow starts in the notch.")
    }
    Column {
        width: parent.width
        spacing: 12

        Repeater {
            model: done.bullets
            TourBullet {
                required property var modelData
                emoji: modelData[0]
                text: modelData[1]
            }
        }
    }
    Rectangle {
        width: parent.width
        height: card.implicitHeight + 32
        radius: Style.sectionRadius
        color: done.tour.calendarConnected ? Style.windowMeeting : Style.windowSection
        border.color: done.tour.calendarConnected ? Style.meetingEdge : Style.hairline

        Column {
            id: card
            x: 16
            y: 16
            width: parent.width - 32
            spacing: Style.inset

            Row {
                width: parent.width
                spacing: Style.inset

                SymbolIcon {
                    id: mark
                    width: 22
                    height: 22
                    symbol: done.tour.calendarConnected ? "checkmark.circle.fill" : "calendar"
                    color: done.tour.calendarConnected ? Style.clear : Style.priority
                }
                Column {
                    width: parent.width - mark.width - action.width - 2 * parent.spacing
                    spacing: 4

                    Text {
                        visible: done.tour.calendarConnected
                        height: 22
                        verticalAlignment: Text.AlignVCenter
                        text: qsTr("Calendar connected")
                        color: Style.text
                        font.family: Style.family
                        font.pixelSize: Style.bodySize
                        font.weight: Font.DemiBold
                        Accessible.role: Accessible.StaticText
                        Accessible.name: text
                    }
                    BodyText {
                        width: parent.width
                        text: done.tour.calendarConnected ? qsTr("Your next meeting and its Join button are live — no AI needed.")
                            : done.tour.calendarDeclined ? qsTr("Access was declined. Enable it in System Settings → Privacy → Calendars.")
                            : qsTr("Meetings, a Join button, todos and music all work without the AI part.")
                    }
                }
                LabelButton {
                    id: action
                    visible: !done.tour.calendarConnected
                    width: visible ? implicitWidth : 0
                    text: done.tour.calendarDeclined ? qsTr("Open Settings") : qsTr("Connect")
                    onClicked: done.tour.calendarDeclined ? done.tour.openCalendarSettings() : done.tour.connectCalendar()
                }
            }
            Rectangle {
                width: parent.width
                height: 1
                color: Style.hairline
            }
            BodyText {
                width: parent.width
                caption: true
                text: qsTr("Google Calendar? Add the Google account to Apple's Calendar and it shows up here automatically.")
            }
            LabelButton {
                text: qsTr("Open Internet Accounts")
                onClicked: done.tour.openAccountSettings()
            }
        }
    }
}
