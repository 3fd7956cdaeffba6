import QtQuick
import Sunpane

// The todo list beside the briefing: a field to write one down, then the todos in their order.
Rectangle {
    id: todoColumn

    required property var presenter
    // The panel's menu, which also offers times for reminders, and the sheet that asks for one.
    required property var panelMenu
    required property var reminderSheet
    required property var speaker
    readonly property var list: presenter.list
    readonly property bool empty: list.count === 0
    // How many rows are being edited.
    property int edits: 0
    readonly property bool holdsText: edits > 0

    // The row that is dragged up or down, as it was lifted, and where it would land.
    property int dragFrom: -1
    property int dragTo: -1
    property real dragHeight: 0
    // The row itself, how far the list was scrolled then, and how fast (points/s) it scrolls under the row.
    property Item lifted: null
    property real liftedAt: 0
    property real scrollSpeed: 0
    readonly property Item listView: rows
    // While a row that was let go is put into its place, which it has on the screen already.
    property bool settling: false

    radius: Style.sectionRadius
    color: Style.section
    border.color: dropArea.containsDrag || activeFocus ? Style.focus : Style.hairline
    border.width: dropArea.containsDrag || activeFocus ? 2 : 1

    Accessible.role: Accessible.Grouping
    Accessible.name: qsTr("Todos")

    // What a row and its neighbours do while it is dragged.

    function roomFor(index) {
        if (dragFrom < 0 || index === dragFrom)
            return 0;
        if (index > dragFrom && index <= dragTo)
            return -dragHeight;
        return index < dragFrom && index >= dragTo ? dragHeight : 0;
    }
    function lift(row) {
        // The current row stays alive however far the list is scrolled.
        rows.currentIndex = row.index;
        lifted = row;
        liftedAt = rows.contentY;
        dragHeight = row.height;
        dragTo = row.index;
        dragFrom = row.index;
    }
    // The lifted row was dragged to `y` in the column, `dy` from where it was lifted.
    function pull(y, dy) {
        scrollSpeed = presenter.scrollSpeed(y - rows.y, rows.height, dy);
        follow();
    }
    function follow() {
        lifted.offsetY = lifted.pulledBy + rows.contentY - liftedAt;
        dragTo = presenter.dropRow(lifted.index, lifted.offsetY);
    }
    // Where in the list a lifted row of that height lands when its place is that of `target`.
    function placeAt(target, height) {
        return dragTo > dragFrom ? target.y + target.height - height : target.y;
    }
    function putBack() {
        lifted = null;
        scrollSpeed = 0;
        dragFrom = -1;
    }
    FrameAnimation {
        running: todoColumn.lifted !== null && todoColumn.scrollSpeed !== 0
        onTriggered: {
            const lowest = rows.originY + Math.max(0, rows.contentHeight - rows.height);
            // No leap after a frame that took long.
            const step = todoColumn.scrollSpeed * Math.min(frameTime, 0.05);
            rows.contentY = Math.max(rows.originY, Math.min(rows.contentY + step, lowest));
        }
    }
    function drop(row) {
        let shownAt = row.y + row.offsetY;
        const to = dragTo;
        const target = rows.itemAtIndex(to);
        const place = target ? placeAt(target, row.height) : 0;
        settling = true;
        putBack();
        if (to !== row.index)
            presenter.moveTo(row.todoId, to);
        rows.forceLayout();
        if (target) {
            // The list keeps its rows where they are when one above them goes, but these have made room already.
            const shift = row.y - place;
            rows.contentY += shift;
            shownAt += shift;
        }
        settling = false;
        row.offsetY = shownAt - row.y;
        row.springBack();
    }

    // Menus.

    function openRemind(row, byKeyboard) {
        panelMenu.openBeside(row, 32, qsTr("Remind me"), timesFor(row, byKeyboard), byKeyboard);
    }
    function openActions(row, x, y, byKeyboard) {
        const id = row.todoId;
        const times = timesFor(row, byKeyboard);
        panelMenu.openAt(row, x, y, qsTr("Todo"), [
            {
                label: qsTr("Edit…"),
                run: () => todoColumn.edit(id)
            },
            {
                label: row.priority ? qsTr("Remove PRIO") : qsTr("Mark as PRIO"),
                run: () => presenter.togglePriority(id)
            },
            {
                label: qsTr("Remind me…"),
                keepsOpen: true,
                run: () => panelMenu.switchTo(qsTr("Remind me"), times)
            },
            {
                label: qsTr("Delete"),
                run: () => presenter.remove(id)
            }
        ], byKeyboard);
    }
    // Whoever chooses may do so when the row has long changed or gone, so nothing here asks it again.
    function timesFor(row, byKeyboard) {
        const id = row.todoId, text = row.text, at = row.reminderTime, rule = row.reminderRule;
        const clear = at > 0 ? () => presenter.clearReminder(id) : null;
        const ask = () => reminderSheet.openFor(text, at, rule, (time, rule) => presenter.setReminder(id, time, rule), clear, byKeyboard ? row : null);
        return panelMenu.times((time) => presenter.setReminder(id, time, ""), ask, clear);
    }
    function edit(id) {
        const row = rows.itemAtIndex(list.rowOf(id));
        if (row)
            row.beginEdit();
    }

    // The keyboard.

    readonly property bool hasFocus: capture.focused || (rows.currentItem !== null && rows.currentItem.activeFocus)

    function takeFocus() {
        capture.takeFocus();
    }
    function focusRow(index) {
        if (index < 0 || index >= rows.count) {
            if (index < 0)
                capture.takeFocus();
            return;
        }
        rows.currentIndex = index;
        rows.positionViewAtIndex(index, ListView.Contain);
        rows.currentItem.forceActiveFocus(Qt.OtherFocusReason);
    }
    function rowFocused(index) {
        rows.currentIndex = index;
        rows.positionViewAtIndex(index, ListView.Contain);
    }
    // Does what the key means on that row; false when it means nothing there.
    function rowKey(row, event) {
        if (walk(row, event))
            return true;
        const action = actionOf(row, event);
        // A key that is held down walks through the rows and does nothing else again and again.
        if (action && !event.isAutoRepeat)
            action();
        return action !== null;
    }
    function walk(row, event) {
        switch (event.key) {
        case Qt.Key_Up:
        case Qt.Key_Down:
            const step = event.key === Qt.Key_Up ? -1 : 1;
            if (event.modifiers & Qt.AltModifier) {
                const id = row.todoId;
                presenter.moveTo(id, presenter.rowBeside(row.index, step));
                rows.forceLayout();
                rows.positionViewAtIndex(list.rowOf(id), ListView.Contain);
            } else
                focusRow(row.index + step);
            return true;
        case Qt.Key_Home:
            focusRow(0);
            return true;
        case Qt.Key_End:
            focusRow(rows.count - 1);
            return true;
        }
        return false;
    }
    // Null for a key that means nothing on a row.
    function actionOf(row, event) {
        const shifted = event.modifiers === Qt.ShiftModifier;
        const openMenu = () => openActions(row, 32, row.height, true);
        const togglePriority = () => presenter.togglePriority(row.todoId);
        switch (event.key) {
        case Qt.Key_Space:
            return () => presenter.toggle(row.todoId);
        case Qt.Key_Return:
        case Qt.Key_Enter:
        case Qt.Key_F2:
            return () => row.beginEdit();
        case Qt.Key_Delete:
        case Qt.Key_Backspace:
            return () => removeFromKeyboard(row);
        case Qt.Key_Right:
            // Without Shift these leaf through the briefings.
            return shifted ? togglePriority : null;
        case Qt.Key_Left:
            return shifted ? () => removeFromKeyboard(row) : null;
        case Qt.Key_F10:
            return shifted ? openMenu : null;
        case Qt.Key_Menu:
            return openMenu;
        }
        // With these they are somebody else's.
        if (event.modifiers & (Qt.ControlModifier | Qt.AltModifier | Qt.MetaModifier))
            return null;
        switch (event.key) {
        case Qt.Key_M:
            return openMenu;
        case Qt.Key_P:
            return togglePriority;
        case Qt.Key_R:
            return () => openRemind(row, true);
        case Qt.Key_C:
            return () => presenter.addToCalendar(row.todoId);
        }
        return null;
    }
    function removeFromKeyboard(row) {
        const id = row.todoId;
        // The keyboard goes on to a row that stays. Not to the field, which has an undo of its own.
        if (rows.count > 1)
            focusRow(row.index + 1 < rows.count ? row.index + 1 : row.index - 1);
        else
            forceActiveFocus(Qt.OtherFocusReason);
        presenter.remove(id);
    }

    Text {
        id: heading
        x: Style.inset
        y: Style.inset
        text: qsTr("Todos")
        color: Style.text
        font.family: Style.family
        font.pixelSize: Style.bodySize
        font.weight: Font.DemiBold
        Accessible.role: Accessible.Heading
        Accessible.name: text
    }
    Text {
        anchors.baseline: heading.baseline
        anchors.left: heading.right
        anchors.leftMargin: Style.gap
        anchors.right: parent.right
        anchors.rightMargin: Style.inset
        horizontalAlignment: Text.AlignRight
        elide: Text.ElideRight
        visible: todoColumn.presenter.doneCount > 0
        text: qsTr("%1 done").arg(todoColumn.presenter.doneCount)
        color: Style.secondaryText
        font.family: Style.family
        font.pixelSize: Style.captionSize
        Accessible.role: Accessible.StaticText
        Accessible.name: text
    }
    Text {
        id: emptyText
        x: Style.inset
        anchors.top: heading.bottom
        anchors.topMargin: Style.gap
        width: parent.width - 2 * Style.inset
        height: visible ? contentHeight + Style.gap : 0
        visible: todoColumn.empty
        wrapMode: Text.Wrap
        text: qsTr("Nothing yet — add one below.")
        color: Style.secondaryText
        font.family: Style.family
        font.pixelSize: Style.bodySize
        Accessible.role: Accessible.StaticText
        Accessible.name: text
    }
    CaptureField {
        id: capture
        x: Style.inset
        anchors.top: emptyText.bottom
        width: parent.width - 2 * Style.inset
        onSubmitted: (text) => todoColumn.presenter.submit(text)
        onDismissed: todoColumn.presenter.collapse()
        onEdited: todoColumn.presenter.setDraft(text)
        Component.onCompleted: show(todoColumn.presenter.draft())
        Keys.onDownPressed: todoColumn.focusRow(Math.min(rows.currentIndex < 0 ? 0 : rows.currentIndex, rows.count - 1))
    }
    ListView {
        id: rows
        anchors.top: capture.bottom
        anchors.topMargin: Style.gap
        anchors.bottom: parent.bottom
        anchors.bottomMargin: 4
        x: 6
        width: parent.width - 12
        model: todoColumn.list
        clip: true
        interactive: contentHeight > height
        boundsBehavior: Flickable.StopAtBounds
        keyNavigationEnabled: false
        highlightFollowsCurrentItem: false
        // A row that is out of sight for a moment need not be made anew.
        cacheBuffer: 120
        onContentYChanged: {
            if (todoColumn.lifted)
                todoColumn.follow();
        }

        Accessible.role: Accessible.List
        Accessible.name: qsTr("Todo list")

        delegate: TodoRow {
            width: rows.width
            column: todoColumn
        }

        // Where a dragged row will land: rows with a note are higher than a drag's steps, so it may not be over it.
        Rectangle {
            parent: rows.contentItem
            readonly property Item target: todoColumn.dragFrom < 0 ? null : rows.itemAtIndex(todoColumn.dragTo)
            visible: target !== null
            width: rows.width
            height: todoColumn.dragHeight
            y: target ? todoColumn.placeAt(target, height) : 0
            radius: 7
            color: "transparent"
            border.color: Style.focus
        }

        component Glide: NumberAnimation {
            properties: "y"
            duration: Style.motion(todoColumn.presenter.motion)
            easing: todoColumn.presenter.motion.curve
        }
        // An interrupted motion of another kind must leave no row half transparent or beside its place.
        component Whole: PropertyAction {
            property: "opacity"
            value: 1
        }
        add: Transition {
            NumberAnimation {
                property: "opacity"
                from: 0
                to: 1
                duration: 160
            }
        }
        remove: Transition {
            NumberAnimation {
                property: "opacity"
                to: 0
                duration: todoColumn.presenter.motion.duration
            }
        }
        displaced: Transition {
            enabled: !todoColumn.settling
            Whole {}
            Glide {}
        }
        move: Transition {
            enabled: !todoColumn.settling
            Whole {}
            Glide {}
        }
    }
    Rectangle {
        anchors.right: parent.right
        anchors.rightMargin: 2
        visible: rows.interactive && (over.hovered || rows.moving)
        width: 3
        radius: 1.5
        color: Qt.rgba(1, 1, 1, 0.25)
        y: rows.y + rows.visibleArea.yPosition * rows.height
        height: Math.max(24, rows.visibleArea.heightRatio * rows.height)
    }

    DropArea {
        id: dropArea
        anchors.fill: parent
        onEntered: (drag) => drag.accepted = drag.hasText
        onDropped: (drop) => {
            const card = todoColumn.presenter.cardType;
            todoColumn.presenter.addDropped(drop.formats.includes(card) ? drop.getDataAsString(card) : drop.text);
            drop.accept(Qt.CopyAction);
        }
    }

    HoverHandler {
        id: over
    }

    // One tooltip for all rows, outside the list, which would cut it off.

    function hint(item, text, delay) {
        if (text.length === 0 && tip.over !== item)
            return;
        tipDelay.stop();
        tip.waiting = false;
        tip.over = text.length > 0 ? item : null;
        tip.words = text;
        if (text.length === 0)
            return;
        tipDelay.interval = delay;
        tip.waiting = true;
        tipDelay.start();
    }
    Timer {
        id: tipDelay
        onTriggered: {
            // The row may have gone meanwhile.
            if (!tip.over)
                return;
            const at = tip.over.mapToItem(todoColumn, 0, tip.over.height + 2);
            tip.x = Math.max(Style.gap, Math.min(at.x, todoColumn.width - tip.width - Style.gap));
            tip.y = at.y + tip.height <= todoColumn.height ? at.y : at.y - tip.over.height - tip.height - 6;
            tip.waiting = false;
        }
    }
    Tooltip {
        id: tip
        property Item over: null
        property string words: ""
        property bool waiting: false
        text: words
        shown: over !== null && !waiting && !todoColumn.panelMenu.isOpen && todoColumn.dragFrom < 0
        maximumWidth: todoColumn.width - 2 * Style.gap
        z: 10
    }

    // The hotkey was pressed before there was a field.
    Component.onCompleted: {
        if (presenter.isCapturing())
            capture.takeFocus();
    }

    // The row that two fingers swipe.
    property Item swiped: null
    Connections {
        target: todoColumn.presenter
        function onCaptureFocusRequested() {
            capture.takeFocus();
        }
        function onCaptureEnded() {
            capture.leave();
        }
        function onAnnounced(text) {
            todoColumn.speaker.announce(text);
        }
        function onSwipeChanged() {
            const index = todoColumn.list.rowOf(todoColumn.presenter.swipedId);
            const row = index < 0 ? null : rows.itemAtIndex(index);
            if (todoColumn.swiped && todoColumn.swiped !== row)
                todoColumn.swiped.springBack();
            todoColumn.swiped = row;
            if (row)
                row.slide(todoColumn.presenter.swipeX);
        }
        function onHighlightedChanged() {
            const index = todoColumn.list.rowOf(todoColumn.presenter.highlighted);
            if (index >= 0)
                rows.positionViewAtIndex(index, ListView.Contain);
        }
    }
}
