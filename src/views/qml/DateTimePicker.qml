import QtQuick
import Sunpane

// A day and a time of day, chosen part by part.
Rectangle {
    id: picker

    required property var reminders
    // Seconds since 1970.
    required property real time
    readonly property Item first: day
    readonly property var stops: [day, month, year, hour, minute]
    property int last: 0

    implicitHeight: 30
    radius: 7
    color: Style.card
    border.color: Style.hairline

    function step(part, steps) {
        time = reminders.stepped(time, part, steps);
    }
    function enter(part, value) {
        time = reminders.withPart(time, part, value);
    }
    function moveFrom(part, forward) {
        const next = part + (forward ? 1 : -1);
        if (next >= 0 && next < stops.length)
            stops[next].forceActiveFocus();
    }

    component Part: DatePartField {
        required property int part
        text: picker.reminders.partText(picker.time, part)
        value: picker.reminders.partValue(picker.time, part)
        minimumValue: picker.reminders.leastOf(part)
        maximumValue: picker.reminders.mostOf(part)
        onStepped: (steps) => picker.step(part, steps)
        onEntered: (value) => picker.enter(part, value)
        onMovedOn: (forward) => picker.moveFrom(part, forward)
        onActiveFocusChanged: if (activeFocus)
            picker.last = part
    }

    Row {
        anchors.verticalCenter: parent.verticalCenter
        x: 2
        Part {
            id: day
            part: 0
            label: qsTr("Day")
        }
        Part {
            id: month
            part: 1
            label: qsTr("Month")
        }
        Part {
            id: year
            part: 2
            digits: 4
            label: qsTr("Year")
        }
        Item {
            width: 6
            height: 1
        }
        Part {
            id: hour
            part: 3
            label: qsTr("Hour")
        }
        Text {
            anchors.verticalCenter: parent.verticalCenter
            text: ":"
            color: Style.secondaryText
            font.family: Style.family
            font.pixelSize: Style.bodySize
        }
        Part {
            id: minute
            part: 4
            label: qsTr("Minute")
        }
    }
    // For the pointer alone; the keyboard has the arrow keys.
    Column {
        anchors.right: parent.right
        anchors.rightMargin: 4
        anchors.verticalCenter: parent.verticalCenter
        Repeater {
            model: [1, -1]
            Item {
                id: arrow
                required property int modelData
                width: 20
                height: 13
                Accessible.role: Accessible.Button
                Accessible.name: modelData > 0 ? qsTr("Later") : qsTr("Earlier")
                Accessible.onPressAction: picker.step(picker.last, modelData)
                Rectangle {
                    anchors.fill: parent
                    radius: 4
                    color: area.pressed ? Qt.rgba(1, 1, 1, 0.18) : Style.pressed
                    visible: area.containsMouse
                }
                SymbolIcon {
                    anchors.centerIn: parent
                    width: 9
                    height: 9
                    symbol: "chevron.down"
                    rotation: arrow.modelData > 0 ? 180 : 0
                    color: Style.text
                }
                MouseArea {
                    id: area
                    anchors.fill: parent
                    hoverEnabled: true
                    onClicked: picker.step(picker.last, arrow.modelData)
                }
            }
        }
    }
}
