import QtQuick

// The welcome tour: three steps in a window without a frame, which is moved by its background.
ProgramWindow {
    id: window

    required property var tour

    // Room for the shadow, which no window manager draws around a window without a frame.
    readonly property real shadow: 20
    readonly property real radius: 20

    width: Math.min(560 + 2 * shadow, workArea.area.width)
    height: Math.min(680 + 2 * shadow, workArea.area.height)
    flags: Qt.Window | Qt.FramelessWindowHint
    title: qsTr("Welcome to Dawnly")
    color: "transparent"

    onActiveChanged: {
        if (active)
            tour.comeBack();
    }

    Repeater {
        model: window.shadow
        Rectangle {
            required property int index
            anchors.fill: body
            anchors.margins: -index
            anchors.topMargin: 4 - index
            radius: body.radius + index
            color: "transparent"
            border.width: 1
            border.color: Qt.rgba(0, 0, 0, 0.34 * Math.pow(1 - index / window.shadow, 2))
        }
    }
    Rectangle {
        id: body
        anchors.fill: parent
        anchors.margins: window.shadow
        radius: window.radius
        border.color: Qt.rgba(1, 1, 1, 0.13)
        gradient: Gradient {
            GradientStop { position: 0; color: "#121112" }
            GradientStop { position: 1; color: "#231e21" }
        }

        DragHandler {
            target: null
            onActiveChanged: {
                if (active)
                    window.startSystemMove();
            }
        }

        FocusScope {
            anchors.fill: parent
            focus: true
            Keys.onEscapePressed: window.close()
            Keys.onDownPressed: page.scrollBy(40)
            Keys.onUpPressed: page.scrollBy(-40)

            PageScroll {
                id: page
                x: 12
                width: parent.width - 24
                anchors.top: parent.top
                anchors.topMargin: 32
                anchors.bottom: footer.top
                anchors.bottomMargin: Style.inset
                padding: 24

                Loader {
                    id: step
                    width: parent.width
                    sourceComponent: [intro, connect, done][window.tour.step]
                    onLoaded: {
                        page.contentY = 0;
                        next.forceActiveFocus(Qt.OtherFocusReason);
                    }
                }
            }

            Column {
                id: footer
                anchors.bottom: parent.bottom
                anchors.bottomMargin: 24
                x: 36
                width: parent.width - 72
                spacing: 10

                LabelButton {
                    id: next
                    focus: true
                    width: parent.width
                    implicitHeight: 38
                    suggested: true
                    text: [qsTr("Connect %1").arg(qsTr("your AI")), qsTr("Almost done"), qsTr("Start using Dawnly")][window.tour.step]
                    onClicked: {
                        if (window.tour.step === 0)
                            return window.tour.connectAI();
                        if (window.tour.step === 1)
                            return window.tour.finish();
                        window.tour.complete();
                        window.close();
                    }
                }
                TextButton {
                    anchors.horizontalCenter: parent.horizontalCenter
                    visible: window.tour.step === 0
                    onPanel: false
                    text: qsTr("Set up later in Settings")
                    onClicked: window.tour.skipAI()
                }
                Row {
                    anchors.horizontalCenter: parent.horizontalCenter
                    spacing: 6
                    Accessible.role: Accessible.StaticText
                    Accessible.name: qsTr("Step %1 of 3").arg(window.tour.step + 1)

                    Repeater {
                        model: 3
                        Rectangle {
                            required property int index
                            width: index === window.tour.step ? 18 : 6
                            height: 6
                            radius: 3
                            color: index === window.tour.step ? Style.text : Qt.rgba(1, 1, 1, 0.22)
                        }
                    }
                }
            }

            IconButton {
                anchors.right: parent.right
                anchors.rightMargin: 14
                y: 14
                symbol: "xmark"
                label: qsTr("Close")
                onClicked: window.close()
            }
        }
    }

    Component {
        id: intro
        TourIntro { tour: window.tour }
    }
    Component {
        id: connect
        TourConnect { tour: window.tour }
    }
    Component {
        id: done
        TourDone { tour: window.tour }
    }
}
