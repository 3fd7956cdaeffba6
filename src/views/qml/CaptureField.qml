import QtQuick
import Sunpane

// Where a new todo is written down.
Rectangle {
    id: field

    signal submitted(string text)
    signal dismissed
    signal edited
    readonly property alias focused: input.activeFocus
    readonly property alias text: input.text

    function show(text) {
        input.text = text;
    }
    function takeFocus() {
        input.forceActiveFocus(Qt.OtherFocusReason);
    }
    function leave() {
        input.focus = false;
    }

    implicitHeight: 32
    radius: 8
    color: area.containsMouse || input.activeFocus ? Qt.rgba(1, 1, 1, 0.11) : Qt.rgba(1, 1, 1, 0.07)
    border.color: input.activeFocus ? Style.focus : Qt.rgba(1, 1, 1, 0.09)
    border.width: input.activeFocus ? 2 : 1

    MouseArea {
        id: area
        anchors.fill: parent
        hoverEnabled: true
        cursorShape: Qt.IBeamCursor
        onPressed: field.takeFocus()
    }
    Text {
        x: 10
        anchors.verticalCenter: parent.verticalCenter
        width: parent.width - 20
        visible: input.text.length === 0 && input.preeditText.length === 0
        text: qsTr("Add a todo…")
        elide: Text.ElideRight
        color: Style.tertiaryText
        font.family: Style.family
        font.pixelSize: Style.bodySize
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
        // Far more than a todo needs; a whole book pasted by mistake is not one.
        maximumLength: 2000
        font.family: Style.family
        font.pixelSize: Style.bodySize
        activeFocusOnTab: true
        onTextChanged: field.edited()

        Accessible.role: Accessible.EditableText
        Accessible.name: qsTr("Add a todo…")
        Accessible.editable: true

        function submit() {
            // In this order, so that a program that dies in between has it twice and not lost.
            field.submitted(text);
            clear();
        }
        Keys.onReturnPressed: submit()
        Keys.onEnterPressed: submit()
        Keys.onEscapePressed: {
            field.leave();
            field.dismissed();
        }
        // At either end of the text these must not turn the briefing's pages.
        Keys.onLeftPressed: (event) => event.accepted = cursorPosition === 0 && !(event.modifiers & Qt.ShiftModifier)
        Keys.onRightPressed: (event) => event.accepted = cursorPosition === length && !(event.modifiers & Qt.ShiftModifier)
    }
}
