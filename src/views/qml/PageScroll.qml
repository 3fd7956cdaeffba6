import QtQuick

// A page of controls that scrolls when it does not fit, and keeps what has the keyboard in sight. Page Up and Page Down
// turn it, whatever in its window has the keyboard.
Flickable {
    id: page

    default property alias controls: column.data
    property real padding: 24

    contentWidth: width
    contentHeight: column.implicitHeight + 2 * padding
    boundsBehavior: Flickable.StopAtBounds
    interactive: contentHeight > height + 1
    clip: true

    function reveal(item) {
        let shown = item;
        for (let each = item; each && each !== page; each = each.parent) {
            // Of what scrolls in a box of its own the box is meant.
            if (each.clip)
                shown = each;
            if (each !== column)
                continue;
            const top = shown.mapToItem(column, 0, 0).y + column.y;
            const most = Math.max(0, contentHeight - height);
            if (top - padding < contentY)
                contentY = Math.max(0, top - padding);
            else if (top + shown.height + padding > contentY + height)
                contentY = Math.min(most, top + shown.height + padding - height);
            return;
        }
    }

    Column {
        id: column
        x: page.padding
        y: page.padding
        width: page.width - 2 * page.padding
        spacing: Style.inset
    }

    Connections {
        target: page.Window.window
        function onActiveFocusItemChanged() {
            if (page.Window.window.activeFocusItem)
                page.reveal(page.Window.window.activeFocusItem);
        }
    }

    // Words without a control among them are read with these.
    function scrollBy(points) {
        contentY = Math.max(0, Math.min(contentHeight - height, contentY + points));
    }
    Shortcut {
        sequence: "PgDown"
        onActivated: page.scrollBy(0.9 * page.height)
    }
    Shortcut {
        sequence: "PgUp"
        onActivated: page.scrollBy(-0.9 * page.height)
    }

    ScrollThumb {
        area: page
    }
}
