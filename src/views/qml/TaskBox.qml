import QtQuick

// A text for an assistant, to read and to select from.
Rectangle {
    id: box

    required property string label
    required property string text

    implicitHeight: 132
    radius: Style.cardRadius
    color: Qt.rgba(0, 0, 0, 0.28)
    border.color: content.activeFocus ? Style.focus : Style.hairline
    border.width: content.activeFocus ? 2 : 1

    Flickable {
        id: scroll
        anchors.fill: parent
        anchors.margins: 10
        contentWidth: width
        contentHeight: content.implicitHeight
        boundsBehavior: Flickable.StopAtBounds
        clip: true

        TextEdit {
            id: content
            width: scroll.width - 8
            text: box.text
            textFormat: TextEdit.PlainText
            readOnly: true
            selectByMouse: true
            selectByKeyboard: true
            wrapMode: TextEdit.Wrap
            color: Style.secondaryText
            selectionColor: Style.focus
            font.family: Style.family
            font.pixelSize: Style.captionSize
            activeFocusOnTab: true

            Accessible.role: Accessible.EditableText
            Accessible.name: box.label
            Accessible.readOnly: true
            Accessible.multiLine: true

            onTextChanged: scroll.contentY = 0
            onCursorRectangleChanged: {
                if (!activeFocus)
                    return;
                if (cursorRectangle.y < scroll.contentY)
                    scroll.contentY = cursorRectangle.y;
                else if (cursorRectangle.y + cursorRectangle.height > scroll.contentY + scroll.height)
                    scroll.contentY = cursorRectangle.y + cursorRectangle.height - scroll.height;
            }
            // A text that cannot be changed leaves these to whoever moves the keyboard on.
            Keys.onTabPressed: nextItemInFocusChain(true).forceActiveFocus(Qt.TabFocusReason)
            Keys.onBacktabPressed: nextItemInFocusChain(false).forceActiveFocus(Qt.BacktabFocusReason)
        }
    }
    ScrollThumb {
        area: scroll
        inset: 0
    }
}
