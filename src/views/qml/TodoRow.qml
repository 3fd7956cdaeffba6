import QtQuick
import Sunpane

// One todo.
Item {
    id: row

    required property var presenter
    required property int index
    required property string todoId
    required property string text
    required property bool done
    required property bool priority
    required property string note

    implicitHeight: note.length > 0 ? 40 : presenter.rowHeight
    activeFocusOnTab: true

    Accessible.role: Accessible.CheckBox
    Accessible.name: text
    Accessible.description: [priority ? qsTr("priority") : "", note].filter((part) => part.length > 0).join(", ")
    Accessible.checkable: true
    Accessible.checked: done
    Accessible.focusable: true
    Accessible.onPressAction: presenter.toggle(todoId)
    Accessible.onToggleAction: presenter.toggle(todoId)
    Keys.onSpacePressed: presenter.toggle(todoId)

    Rectangle {
        anchors.fill: parent
        radius: 7
        color: Style.hover
        visible: hover.hovered
    }
    TickBox {
        id: tick
        x: 6
        y: 6
        done: row.done
        priority: row.priority
        onClicked: row.presenter.toggle(row.todoId)
    }
    Text {
        id: label
        anchors.left: tick.right
        anchors.leftMargin: 10
        anchors.right: parent.right
        anchors.rightMargin: 30
        y: 6
        text: row.text.replace(/\s+/g, " ")
        textFormat: Text.PlainText
        elide: Text.ElideRight
        maximumLineCount: 1
        color: row.done ? Style.tertiaryText : Style.text
        font.strikeout: row.done
        font.family: Style.family
        font.pixelSize: Style.bodySize
    }
    Text {
        anchors.left: label.left
        anchors.right: label.right
        anchors.top: label.bottom
        visible: row.note.length > 0
        text: row.note
        textFormat: Text.PlainText
        elide: Text.ElideRight
        color: Style.tertiaryText
        font.family: Style.family
        font.pixelSize: 10
    }
    HoverHandler {
        id: hover
    }
    FocusRing {
        control: row
        radius: 7
    }
}
