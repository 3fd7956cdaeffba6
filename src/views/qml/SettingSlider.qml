import QtQuick

// A value between two ends that are named.
Item {
    id: slider

    required property string text
    property string lowLabel: ""
    property string highLabel: ""
    required property real value
    property real minimumValue: 0
    property real maximumValue: 1
    property real stepSize: 0.05
    // The colours along the track, from left to right; the accent up to the knob where there are none.
    property var colors: []
    signal moved(real value)

    readonly property real place: (Math.min(Math.max(value, minimumValue), maximumValue) - minimumValue)
        / (maximumValue - minimumValue)

    width: parent ? parent.width : 0
    implicitHeight: name.implicitHeight + 26 + (lowLabel.length > 0 ? 16 : 0)
    activeFocusOnTab: true

    function moveTo(next) {
        const within = Math.min(Math.max(next, minimumValue), maximumValue);
        if (within !== value)
            moved(within);
    }

    Accessible.role: Accessible.Slider
    Accessible.name: text
    Accessible.focusable: true
    Accessible.onIncreaseAction: moveTo(value + stepSize)
    Accessible.onDecreaseAction: moveTo(value - stepSize)
    Keys.onRightPressed: moveTo(value + stepSize)
    Keys.onUpPressed: moveTo(value + stepSize)
    Keys.onLeftPressed: moveTo(value - stepSize)
    Keys.onDownPressed: moveTo(value - stepSize)
    Keys.onPressed: (event) => {
        if (event.key === Qt.Key_Home)
            moveTo(minimumValue);
        else if (event.key === Qt.Key_End)
            moveTo(maximumValue);
        else
            return;
        event.accepted = true;
    }

    Text {
        id: name
        text: slider.text
        color: Style.text
        font.family: Style.family
        font.pixelSize: Style.bodySize
    }
    Item {
        id: lane
        y: name.implicitHeight + 4
        width: parent.width
        height: 22
        readonly property real reach: width - knob.width

        Rectangle {
            anchors.verticalCenter: parent.verticalCenter
            width: parent.width
            height: 6
            radius: 3
            color: Qt.rgba(1, 1, 1, 0.14)

            Rectangle {
                visible: slider.colors.length === 0
                width: lane.reach * slider.place + knob.width / 2
                height: parent.height
                radius: 3
                color: Style.focus
            }
            // One strip for each pair of colours, because a gradient has a fixed number of stops.
            Row {
                visible: slider.colors.length > 0
                anchors.fill: parent
                Repeater {
                    model: Math.max(0, slider.colors.length - 1)
                    Rectangle {
                        required property int index
                        width: lane.width / (slider.colors.length - 1)
                        height: 6
                        gradient: Gradient {
                            orientation: Gradient.Horizontal
                            GradientStop { position: 0; color: slider.colors[index] }
                            GradientStop { position: 1; color: slider.colors[index + 1] }
                        }
                    }
                }
            }
        }
        Rectangle {
            id: knob
            x: lane.reach * slider.place
            anchors.verticalCenter: parent.verticalCenter
            width: 18
            height: 18
            radius: 9
            color: area.pressed ? "#e4e4e4" : "#ffffff"
            border.color: Qt.rgba(0, 0, 0, 0.25)
            FocusRing {
                control: slider
                anchors.margins: -3
                radius: height / 2
            }
        }
        MouseArea {
            id: area
            anchors.fill: parent
            hoverEnabled: true
            preventStealing: true
            function follow(x) {
                slider.moveTo(slider.minimumValue + (slider.maximumValue - slider.minimumValue)
                    * (x - knob.width / 2) / lane.reach);
            }
            onPressed: (mouse) => follow(mouse.x)
            onPositionChanged: (mouse) => {
                if (pressed)
                    follow(mouse.x);
            }
        }
    }
    Text {
        anchors.top: lane.bottom
        text: slider.lowLabel
        color: Style.tertiaryText
        font.family: Style.family
        font.pixelSize: Style.captionSize
    }
    Text {
        anchors.top: lane.bottom
        anchors.right: parent.right
        text: slider.highLabel
        color: Style.tertiaryText
        font.family: Style.family
        font.pixelSize: Style.captionSize
    }
}
