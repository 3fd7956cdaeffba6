import QtQuick

// A menu inside the panel. Opens at the pointer, or under the item that has the keyboard, and keeps the panel from
// folding while it is open.
Item {
    id: menu

    required property var presenter
    property string name
    // What can be chosen: objects with a `label` and a function `run`.
    property var entries: []
    property bool isOpen: false
    // Where the keyboard goes afterwards: to the item, when the menu was opened from the keyboard.
    property Item returnTo: null

    anchors.fill: parent
    visible: isOpen
    z: 20

    function openAt(item, x, y, title, choices, byKeyboard) {
        const at = item.mapToItem(menu, x, y);
        name = title;
        entries = choices;
        returnTo = byKeyboard ? item : null;
        isOpen = true;
        sheet.x = Math.max(8, Math.min(at.x, width - sheet.width - 8));
        sheet.y = Math.max(8, Math.min(at.y, height - sheet.height - 8));
        presenter.setMenuOpen(true);
        rows.itemAt(0).forceActiveFocus();
    }

    function close() {
        if (!isOpen)
            return;
        isOpen = false;
        presenter.setMenuOpen(false);
        // The item may have gone while the menu was open, when the briefing changed.
        (returnTo ?? parent).forceActiveFocus();
    }

    function choose(index) {
        const run = entries[index].run;
        close();
        run();
    }

    Connections {
        target: menu.presenter
        function onChanged() {
            if (!menu.presenter.expanded)
                menu.close();
        }
    }

    // A click into another program moves the keyboard there.
    Connections {
        target: menu.Window.window
        function onActiveChanged() {
            if (!menu.Window.window.active)
                menu.close();
        }
    }

    MouseArea {
        anchors.fill: parent
        acceptedButtons: Qt.AllButtons
        onPressed: menu.close()
        onWheel: {}
    }

    Rectangle {
        id: sheet
        width: 190
        height: column.height + 8
        radius: 8
        color: "#2b2729"
        border.color: Qt.rgba(1, 1, 1, 0.14)

        Accessible.role: Accessible.PopupMenu
        Accessible.name: menu.name

        Column {
            id: column
            x: 4
            y: 4
            width: parent.width - 8

            Repeater {
                id: rows
                model: menu.entries

                Rectangle {
                    id: row
                    required property int index
                    required property var modelData

                    width: column.width
                    height: 28
                    radius: 5
                    color: activeFocus ? Style.focus : "transparent"

                    Accessible.role: Accessible.MenuItem
                    Accessible.name: modelData.label
                    Accessible.onPressAction: menu.choose(index)
                    Keys.onReturnPressed: menu.choose(index)
                    Keys.onEnterPressed: menu.choose(index)
                    Keys.onSpacePressed: menu.choose(index)
                    Keys.onEscapePressed: menu.close()
                    Keys.onTabPressed: menu.close()
                    Keys.onLeftPressed: {}
                    Keys.onRightPressed: {}
                    Keys.onDownPressed: rows.itemAt((index + 1) % rows.count).forceActiveFocus()
                    Keys.onUpPressed: rows.itemAt((index + rows.count - 1) % rows.count).forceActiveFocus()

                    Text {
                        anchors.verticalCenter: parent.verticalCenter
                        x: 10
                        text: row.modelData.label
                        color: Style.text
                        font.family: Style.family
                        font.pixelSize: Style.bodySize
                    }
                    MouseArea {
                        anchors.fill: parent
                        hoverEnabled: true
                        onEntered: row.forceActiveFocus()
                        onClicked: menu.choose(row.index)
                    }
                }
            }
        }
    }
}
