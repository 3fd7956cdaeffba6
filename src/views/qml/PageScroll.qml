import QtQuick

// A page of controls that scrolls when it does not fit, and keeps what has the keyboard in sight.
Flickable {
    id: page

    default property alias controls: column.data
    property real padding: 24

    contentWidth: width
    contentHeight: column.implicitHeight + 2 * padding
    boundsBehavior: Flickable.StopAtBounds
    interactive: contentHeight > height
    clip: true

    function reveal(item) {
        for (let each = item; each; each = each.parent) {
            if (each !== column)
                continue;
            const top = item.mapToItem(column, 0, 0).y + column.y;
            const most = Math.max(0, contentHeight - height);
            if (top - padding < contentY)
                contentY = Math.max(0, top - padding);
            else if (top + item.height + padding > contentY + height)
                contentY = Math.min(most, top + item.height + padding - height);
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

    Rectangle {
        parent: page
        visible: page.interactive
        x: page.width - width - 3
        y: page.visibleArea.yPosition * page.height + 3
        width: 5
        height: Math.max(20, page.visibleArea.heightRatio * page.height - 6)
        radius: 2.5
        color: Qt.rgba(1, 1, 1, 0.22)
    }
}
