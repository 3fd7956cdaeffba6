import QtQuick

// A line of text to fill in.
Rectangle {
    id: entry

    required property string label
    property alias text: input.text
    property alias maximumLength: input.maximumLength
    property alias validator: input.validator
    readonly property alias focused: input.activeFocus
    // Return, on what the validator accepts.
    signal submitted

    function takeFocus() {
        input.forceActiveFocus(Qt.OtherFocusReason);
        input.selectAll();
    }

    implicitHeight: 30
    radius: 8
    color: area.containsMouse || input.activeFocus ? Qt.rgba(1, 1, 1, 0.11) : Qt.rgba(1, 1, 1, 0.07)
    border.color: input.activeFocus ? Style.focus : Qt.rgba(1, 1, 1, 0.09)
    border.width: input.activeFocus ? 2 : 1

    MouseArea {
        id: area
        anchors.fill: parent
        hoverEnabled: true
        cursorShape: Qt.IBeamCursor
        onPressed: input.forceActiveFocus(Qt.MouseFocusReason)
    }
    TextInput {
        id: input
        x: 10
        anchors.verticalCenter: parent.verticalCenter
        width: parent.width - 20
        clip: true
        color: Style.text
        selectionColor: Style.focus
        selectByMouse: true
        maximumLength: 4096
        font.family: Style.family
        font.pixelSize: Style.bodySize
        activeFocusOnTab: true

        Accessible.role: Accessible.EditableText
        Accessible.name: entry.label
        Accessible.editable: true

        function submitWith(event) {
            if (acceptableInput && !event.isAutoRepeat)
                entry.submitted();
        }
        Keys.onReturnPressed: (event) => submitWith(event)
        Keys.onEnterPressed: (event) => submitWith(event)
    }
}
