import QtQuick

// A menu inside the panel. Opens at the pointer, or under the item that has the keyboard, and keeps the panel from
// folding while it is open. It may open while the button is still down: whoever has the pointer then hands its way on
// with `track` and `release`, and letting go over a row chooses it.
Item {
    id: menu

    required property var presenter
    property string name
    // Shown above the rows unless it is empty.
    property string heading
    // What can be chosen: objects with a `label`, a function `run`, and `keepsOpen` when that shows other entries.
    property var entries: []
    property bool isOpen: false
    // The row under the pointer or with the keyboard; -1 for none.
    property int current: -1
    // Where the keyboard goes afterwards: to the item, when the menu was opened from the keyboard.
    property Item returnTo: null
    // While other entries take the place of those that were shown.
    property bool switching: false
    // Where the pointer was when its way was first handed on. A trembling hand chooses nothing; once it has moved
    // further than that, whatever row it is over is meant, also back where it began.
    property var heldAt: null
    property bool meant: false

    anchors.fill: parent
    visible: isOpen
    z: 20

    function openAt(item, x, y, title, choices, byKeyboard) {
        switching = false;
        name = title;
        heading = "";
        entries = choices;
        returnTo = byKeyboard ? item : null;
        heldAt = null;
        meant = false;
        // A second hand, or the keyboard, may open another menu while a button holds this one open.
        if (!isOpen)
            presenter.setMenuOpen(true);
        isOpen = true;
        place(item, x, y, y);
        sheet.forceActiveFocus();
        // Where there is no room the menu is pushed under the pointer; no row is meant by that.
        current = byKeyboard ? 0 : -1;
    }

    // Opens below the item, or above it where there is no room, with no row chosen unless it was opened from the
    // keyboard.
    function openBeside(item, x, title, choices, byKeyboard) {
        openAt(item, x, item.height + 4, title, choices, byKeyboard);
        heading = title;
        place(item, x, item.height + 4, -4 - sheet.fullHeight);
    }

    // Shows other entries in place. A row is chosen at once only for the keyboard: the pointer is where it was by chance.
    function switchTo(title, choices) {
        switching = true;
        current = -1;
        name = title;
        heading = title;
        entries = choices;
        keepInside();
        if (returnTo)
            current = 0;
    }

    function place(item, x, y, yAbove) {
        const at = item.mapToItem(menu, x, y);
        const above = item.mapToItem(menu, x, yAbove).y;
        if (at.y + sheet.fullHeight > height - 8) {
            if (above >= 8)
                at.y = above;
            else if (yAbove !== y)
                at.x += besideHand;
        }
        sheet.x = Math.max(8, Math.min(at.x, width - sheet.width - 8));
        sheet.y = Math.max(8, Math.min(at.y, height - sheet.fullHeight - 8));
    }

    function close() {
        if (!isOpen)
            return;
        isOpen = false;
        current = -1;
        presenter.setMenuOpen(false);
        // The item may have gone while the menu was open, when the briefing changed.
        (returnTo ?? parent).forceActiveFocus();
    }

    function choose(index) {
        if (index < 0 || index >= entries.length)
            return;
        const entry = entries[index];
        if (!entry.keepsOpen)
            close();
        entry.run();
    }
    // The key that opened the menu may still be held down.
    function chooseWith(event) {
        if (!event.isAutoRepeat)
            choose(current);
    }

    // The pointer is at that place of `item` with the button down.
    function track(item, x, y) {
        if (!isOpen)
            return;
        const at = item.mapToItem(column, x, y);
        if (!heldAt)
            heldAt = at;
        if (Style.isMeant(at.x - heldAt.x, at.y - heldAt.y))
            meant = true;
        if (meant)
            current = rowAt(at.x, at.y);
    }
    // The button came up.
    function release(item, x, y) {
        track(item, x, y);
        if (isOpen)
            choose(current);
    }

    function rowAt(x, y) {
        if (x < 0 || x >= column.width)
            return -1;
        const row = Math.floor((y - sheet.headingHeight) / rowHeight);
        return row >= 0 && row < entries.length ? row : -1;
    }
    readonly property int rowHeight: 28
    // Where a menu has room neither below nor above its item, it opens to the right of the hand that holds the item.
    readonly property int besideHand: 64

    // The briefing may change, and the panel's height with it, while a menu is open.
    function keepInside() {
        sheet.y = Math.max(8, Math.min(sheet.y, height - sheet.fullHeight - 8));
    }
    onHeightChanged: keepInside()

    onCurrentChanged: {
        const row = rows.itemAt(current);
        if (row)
            row.forceActiveFocus();
        else if (isOpen)
            sheet.forceActiveFocus();
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
        // Nothing below notices the pointer, or two fingers would swipe it.
        hoverEnabled: true
        onPressed: menu.close()
        onWheel: {}
    }

    FocusScope {
        id: sheet
        width: Math.min(menu.width - 16, Math.max(190, headingText.implicitWidth + 28))
        // Known at once, before the rows are laid out.
        readonly property real fullHeight: headingHeight + menu.entries.length * menu.rowHeight + 8
        height: fullHeight
        clip: true
        readonly property int headingHeight: menu.heading.length > 0 ? 24 : 0

        Behavior on height {
            enabled: menu.switching
            NumberAnimation {
                duration: Style.motion(menu.presenter.menuSpring)
                easing: menu.presenter.menuSpring.curve
            }
        }
        Behavior on y {
            enabled: menu.switching
            NumberAnimation {
                duration: Style.motion(menu.presenter.menuSpring)
                easing: menu.presenter.menuSpring.curve
            }
        }

        Accessible.role: Accessible.PopupMenu
        Accessible.name: menu.name
        Keys.onReturnPressed: (event) => chooseWith(event)
        Keys.onEnterPressed: (event) => chooseWith(event)
        Keys.onSpacePressed: (event) => chooseWith(event)
        Keys.onEscapePressed: menu.close()
        Keys.onTabPressed: menu.close()
        Keys.onBacktabPressed: menu.close()
        Keys.onLeftPressed: {}
        Keys.onRightPressed: {}
        Keys.onDownPressed: menu.current = (menu.current + 1) % menu.entries.length
        Keys.onUpPressed: menu.current = (Math.max(menu.current, 0) + menu.entries.length - 1) % menu.entries.length

        Rectangle {
            anchors.fill: parent
            radius: 8
            color: "#2b2729"
            border.color: Qt.rgba(1, 1, 1, 0.14)
        }
        Column {
            id: column
            x: 4
            y: 4
            width: parent.width - 8

            Item {
                width: parent.width
                height: sheet.headingHeight
                Text {
                    id: headingText
                    x: 10
                    width: Math.min(implicitWidth, parent.width - 20)
                    anchors.verticalCenter: parent.verticalCenter
                    visible: parent.height > 0
                    text: menu.heading
                    textFormat: Text.PlainText
                    elide: Text.ElideRight
                    color: Style.secondaryText
                    font.family: Style.family
                    font.pixelSize: Style.captionSize
                    Accessible.ignored: true
                }
            }
            Repeater {
                id: rows
                model: menu.entries

                Rectangle {
                    id: row
                    required property int index
                    required property var modelData

                    width: column.width
                    height: menu.rowHeight
                    radius: 5
                    color: index === menu.current ? Style.focus : "transparent"

                    Accessible.role: Accessible.MenuItem
                    Accessible.name: modelData.label
                    Accessible.focusable: true
                    Accessible.onPressAction: menu.choose(index)

                    Text {
                        anchors.verticalCenter: parent.verticalCenter
                        x: 10
                        width: parent.width - 20
                        text: row.modelData.label
                        textFormat: Text.PlainText
                        elide: Text.ElideRight
                        color: Style.text
                        font.family: Style.family
                        font.pixelSize: Style.bodySize
                    }
                }
            }
        }
        MouseArea {
            anchors.fill: column
            hoverEnabled: true
            onPositionChanged: (mouse) => menu.current = menu.rowAt(mouse.x, mouse.y)
            onExited: menu.current = -1
            onClicked: (mouse) => menu.choose(menu.rowAt(mouse.x, mouse.y))
        }
    }
}
