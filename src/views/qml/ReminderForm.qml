import QtQuick

// What a reminder sheet shows.
FocusScope {
    id: form

    required property var owner
    readonly property var reminders: owner.presenter.reminders
    property alias time: when.time
    property int repetition: 0
    // The controls in the order of the Tab key. None takes the key itself: its way would lead out of the sheet.
    readonly property var stops: [...when.stops, repeat, clear, cancel, confirm].filter((item) => item.visible)

    width: 340
    height: rows.height + 2 * Style.inset

    Accessible.role: Accessible.Dialog
    Accessible.name: qsTr("Remind me about") + " " + owner.subject

    function begin() {
        time = owner.time;
        repetition = owner.repetition;
        when.first.forceActiveFocus();
    }
    function move(forward) {
        const at = stops.findIndex((item) => item.activeFocus);
        const next = stops[(at + (forward ? 1 : stops.length - 1)) % stops.length];
        next.forceActiveFocus(forward ? Qt.TabFocusReason : Qt.BacktabFocusReason);
    }

    Keys.onEscapePressed: owner.close()
    // The key that chose the form from its menu may still be held down.
    function confirmWith(event) {
        if (!event.isAutoRepeat)
            owner.confirm();
    }
    Keys.onReturnPressed: (event) => confirmWith(event)
    Keys.onEnterPressed: (event) => confirmWith(event)
    Keys.onTabPressed: move(true)
    Keys.onBacktabPressed: move(false)
    Keys.onUpPressed: {}
    Keys.onDownPressed: {}
    Keys.onLeftPressed: {}
    Keys.onRightPressed: {}

    component Label: Text {
        color: Style.secondaryText
        font.family: Style.family
        font.pixelSize: Style.bodySize
        width: 60
        anchors.verticalCenter: parent.verticalCenter
    }

    Rectangle {
        anchors.fill: parent
        radius: Style.sectionRadius
        color: "#2b2729"
        border.color: Qt.rgba(1, 1, 1, 0.14)
    }
    // Keeps clicks beside the controls from closing the sheet.
    MouseArea {
        anchors.fill: parent
    }

    Column {
        id: rows
        x: Style.inset + 4
        y: Style.inset
        width: parent.width - 2 * x
        spacing: Style.gap + 2

        Column {
            width: parent.width
            spacing: 3
            Text {
                text: qsTr("Remind me about")
                color: Style.secondaryText
                font.family: Style.family
                font.pixelSize: Style.captionSize
            }
            Text {
                width: parent.width
                text: form.owner.subject
                textFormat: Text.PlainText
                wrapMode: Text.Wrap
                maximumLineCount: 2
                elide: Text.ElideRight
                color: Style.text
                font.family: Style.family
                font.pixelSize: Style.bodySize
                font.weight: Font.DemiBold
            }
        }
        Row {
            width: parent.width
            Label {
                text: qsTr("When")
            }
            DateTimePicker {
                id: when
                reminders: form.reminders
                time: 0
                width: parent.width - 60
            }
        }
        Row {
            width: parent.width
            Label {
                text: qsTr("Repeat")
            }
            ChoiceBar {
                id: repeat
                label: qsTr("Repeat")
                choices: form.reminders.repetitions
                current: form.repetition
                width: parent.width - 60
                onChosen: (index) => form.repetition = index
            }
        }
        Item {
            width: parent.width
            height: confirm.implicitHeight + 4
            LabelButton {
                id: clear
                activeFocusOnTab: false
                y: 4
                width: 76
                visible: form.owner.canClear
                text: qsTr("Clear")
                onClicked: form.owner.clearReminder()
            }
            LabelButton {
                id: cancel
                activeFocusOnTab: false
                y: 4
                width: 76
                anchors.right: confirm.left
                anchors.rightMargin: Style.gap
                text: qsTr("Cancel")
                onClicked: form.owner.close()
            }
            LabelButton {
                id: confirm
                activeFocusOnTab: false
                y: 4
                width: 128
                anchors.right: parent.right
                suggested: true
                text: qsTr("Set Reminder")
                onClicked: form.owner.confirm()
            }
        }
    }
}
