import QtQuick

// What can be said of a card: flag it, clear it, hide it, and take that back. Opens at the pointer, or under the card
// that has the keyboard, and keeps the panel from folding while it is open.
Item {
    id: menu

    required property var presenter
    property Item card: null
    property int sectionId: -1
    property int cardIndex: -1
    property bool isOpen: false
    // Where the keyboard goes afterwards: to the card, when it came from there.
    property bool returnsFocus: false

    anchors.fill: parent
    visible: isOpen
    z: 20

    function openFor(item, section, index, x, y, byKeyboard) {
        const at = item.mapToItem(menu, x, y);
        card = item;
        isOpen = true;
        returnsFocus = byKeyboard;
        sectionId = section;
        cardIndex = index;
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
        // The card may have gone while the menu was open, when the briefing changed.
        if (card && returnsFocus)
            card.forceActiveFocus();
        else
            parent.forceActiveFocus();
    }

    function choose(index) {
        const section = sectionId;
        const place = cardIndex;
        close();
        if (index === 0)
            presenter.togglePriority(section, place);
        else if (index === 1)
            presenter.toggleCleared(section, place);
        else
            presenter.hideCard(section, place);
    }

    Connections {
        target: menu.presenter
        function onChanged() {
            if (!menu.presenter.expanded)
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
        Accessible.name: qsTr("Card")

        Column {
            id: column
            x: 4
            y: 4
            width: parent.width - 8

            Repeater {
                id: rows
                model: [
                    menu.card && menu.card.priority ? qsTr("Remove Priority") : qsTr("Flag as Priority"),
                    menu.card && menu.card.cleared ? qsTr("Restore") : qsTr("Clear"),
                    qsTr("Hide")
                ]

                Rectangle {
                    id: row
                    required property int index
                    required property string modelData

                    width: column.width
                    height: 28
                    radius: 5
                    color: activeFocus ? Style.focus : "transparent"

                    Accessible.role: Accessible.MenuItem
                    Accessible.name: modelData
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
                        text: row.modelData
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
