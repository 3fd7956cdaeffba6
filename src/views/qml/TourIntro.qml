import QtQuick

// The first step: what the notch is for.
Column {
    id: intro

    required property var tour

    spacing: 18

    // A screen's upper edge, with the notch folded open.
    Rectangle {
        width: parent.width
        height: 132
        radius: Style.sectionRadius
        clip: true
        border.color: Style.hairline
        gradient: Gradient {
            GradientStop { position: 0; color: "#3b4a78" }
            GradientStop { position: 0.6; color: "#a3657e" }
            GradientStop { position: 1; color: "#e0a672" }
        }
        Rectangle {
            anchors.horizontalCenter: parent.horizontalCenter
            y: -16
            width: 250
            height: 122
            radius: 16
            color: "#0c0b0c"

            Column {
                x: 16
                y: 38
                width: parent.width - 32
                spacing: 7

                Repeater {
                    model: [0.55, 0.9, 0.72]
                    Rectangle {
                        required property real modelData
                        required property int index
                        width: parent.width
                        height: 18
                        radius: 5
                        color: index === 1 ? Style.priorityCard : Qt.rgba(1, 1, 1, 0.08)
                        border.color: index === 1 ? Style.priorityEdge : "transparent"
                        Rectangle {
                            x: 8
                            anchors.verticalCenter: parent.verticalCenter
                            width: (parent.width - 16) * parent.modelData
                            height: 4
                            radius: 2
                            color: Qt.rgba(1, 1, 1, 0.45)
                        }
                    }
                }
            }
        }
    }
    TourTitle {
        text: qsTr("Your AI's briefs\nlive in the notch now.")
    }
    BodyText {
        width: parent.width
        text: qsTr("A welcome brief is already waiting. Hover the notch at the top of your screen and it folds open.")
    }
    Column {
        width: parent.width
        spacing: 11

        TourBullet {
            emoji: "👆"
            text: qsTr("Hover the notch to open it, move away to close it.")
        }
        TourBullet {
            emoji: "👉"
            text: qsTr("Swipe an item RIGHT to flag it as a priority.")
        }
        TourBullet {
            emoji: "👈"
            text: qsTr("Swipe LEFT to clear it. Cleared items never come back.")
        }
        TourBullet {
            emoji: "🧠"
            text: qsTr("Every swipe lands in feedback.json. Tomorrow's brief reads it and gets smarter.")
        }
    }
}
