import QtQuick

// The field in which a todo's text is changed. Leaving it keeps what was written; Escape does not.
Rectangle {
    id: editor

    signal committed(string text)
    signal discarded

    // The keyboard went to another program, or the panel folded.
    readonly property bool hasKeyboard: Window.active
    onHasKeyboardChanged: {
        if (!hasKeyboard)
            committed(input.text);
    }
    // A newer copy of the program takes over, or the session ends.
    Connections {
        target: Qt.application
        function onAboutToQuit() {
            editor.committed(input.text);
        }
    }

    radius: 6
    color: Qt.rgba(1, 1, 1, 0.1)
    border.color: Style.focus
    border.width: 2

    function begin(text) {
        // A text that another program wrote may be longer than what one types.
        input.maximumLength += text.length;
        input.text = text;
        input.forceActiveFocus(Qt.OtherFocusReason);
        input.selectAll();
    }

    TextInput {
        id: input
        x: 6
        width: parent.width - 12
        anchors.verticalCenter: parent.verticalCenter
        clip: true
        color: Style.text
        selectionColor: Style.focus
        selectByMouse: true
        maximumLength: 2000
        font.family: Style.family
        font.pixelSize: Style.bodySize

        Accessible.role: Accessible.EditableText
        Accessible.name: qsTr("Edit todo")
        Accessible.editable: true

        // The key that opened the editor may still be held down.
        function commitWith(event) {
            if (!event.isAutoRepeat)
                editor.committed(text);
        }
        Keys.onReturnPressed: (event) => commitWith(event)
        Keys.onEnterPressed: (event) => commitWith(event)
        Keys.onEscapePressed: editor.discarded()
        Keys.onTabPressed: editor.committed(text)
        Keys.onBacktabPressed: editor.committed(text)
        Keys.onUpPressed: {}
        Keys.onDownPressed: {}
        Keys.onLeftPressed: (event) => event.accepted = cursorPosition === 0 && selectedText === ""
        Keys.onRightPressed: (event) => event.accepted = cursorPosition === length && selectedText === ""
        onActiveFocusChanged: {
            if (!activeFocus)
                editor.committed(text);
        }
    }
}
