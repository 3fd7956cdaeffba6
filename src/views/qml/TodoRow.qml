import QtQuick
import Sunpane

// One todo: a box to tick, its text, and what else there is to know of it. Follows the pointer that drags it and the
// fingers that swipe it.
Item {
    id: row

    required property var column
    required property int index
    required property string todoId
    required property string text
    required property bool done
    required property bool priority
    required property string note
    required property string reminder
    required property real reminderTime
    required property string reminderRule
    required property string eventHelp
    required property bool inCalendar

    readonly property var presenter: column.presenter
    readonly property bool highlighted: presenter.highlighted === todoId
    readonly property bool lifted: area.mode === "vertical" || area.mode === "horizontal"
    property bool editing: false
    // Where the row is drawn, off its place in the list.
    property real offsetX: 0
    property real offsetY: 0
    // How far the pointer has dragged it down; the list may have scrolled besides.
    property real pulledBy: 0
    readonly property bool carried: area.mode === "vertical"
    // Makes room for the row that is being dragged past.
    readonly property real room: column.roomFor(index)
    property real shownRoom: room

    implicitHeight: note.length > 0 ? 36 : presenter.rowHeight
    z: lifted || offsetY !== 0 ? 2 : 0
    activeFocusOnTab: ListView.isCurrentItem || activeFocus
    onActiveFocusChanged: {
        if (activeFocus)
            column.rowFocused(index);
    }
    onIndexChanged: area.letGo()
    onEditingChanged: column.edits += editing ? 1 : -1
    Component.onDestruction: {
        if (editing)
            --column.edits;
        // Folded away under the pointer.
        if (presenter)
            presenter.pointerLeft(todoId);
    }

    Accessible.role: Accessible.CheckBox
    Accessible.name: text
    Accessible.description: [priority ? qsTr("priority") : "", reminder, inCalendar ? qsTr("In your calendar") : "", note].filter((part) => part.length > 0).join(", ")
    Accessible.checkable: true
    Accessible.checked: done
    Accessible.focusable: true
    Accessible.onPressAction: presenter.toggle(todoId)
    Accessible.onToggleAction: presenter.toggle(todoId)
    Accessible.onIncreaseAction: presenter.togglePriority(todoId)

    Keys.onPressed: (event) => {
        event.accepted = !editing && column.rowKey(row, event);
    }

    Behavior on shownRoom {
        enabled: !row.column.settling
        NumberAnimation {
            duration: Style.motion(row.presenter.liftSpring)
            easing: row.presenter.liftSpring.curve
        }
    }

    function slide(x) {
        back.stop();
        offsetX = x;
    }
    function springBack() {
        back.restart();
    }
    ParallelAnimation {
        id: back
        NumberAnimation {
            target: row
            property: "offsetX"
            to: 0
            duration: Style.motion(row.presenter.returnSpring)
            easing: row.presenter.returnSpring.curve
        }
        NumberAnimation {
            target: row
            property: "offsetY"
            to: 0
            duration: Style.motion(row.presenter.returnSpring)
            easing: row.presenter.returnSpring.curve
        }
    }

    function beginEdit() {
        if (editing)
            return;
        presenter.editBegins();
        editing = true;
        editor.item.begin(text);
    }
    function endEdit(commit, text) {
        if (!editing)
            return;
        // The loader is a focus scope, which would have the keyboard from now on, and the row no ring.
        const hadFocus = editor.activeFocus;
        editing = false;
        if (hadFocus)
            forceActiveFocus(Qt.OtherFocusReason);
        if (commit)
            presenter.rename(todoId, text);
    }

    TodoSwipeHint {
        width: parent.width
        height: parent.height
        offset: row.offsetX
        threshold: row.presenter.swipeThreshold
        removeLabel: qsTr("DELETE")
        priority: row.priority
        settling: back.running
    }

    Item {
        id: body
        // The list draws no row that it has scrolled out of sight, so one that is dragged goes over the list.
        parent: row.carried ? row.column.listView : row
        x: row.offsetX
        y: row.offsetY + row.shownRoom + (row.carried ? row.y - row.column.listView.contentY : 0)
        width: row.width
        height: row.height

        Rectangle {
            anchors.fill: parent
            radius: 7
            // Over other rows nothing may show through.
            color: area.mode === "vertical" ? "#2b2729" : area.pressed || row.lifted ? Style.pressed : Style.hover
            visible: hover.hovered || row.lifted || row.offsetX !== 0 || row.offsetY !== 0
        }
        Rectangle {
            anchors.fill: parent
            radius: 7
            color: Style.focus
            opacity: row.highlighted ? 0.4 : 0
            visible: opacity > 0
            Behavior on opacity {
                enabled: !row.highlighted
                NumberAnimation {
                    duration: 400
                    easing.type: Easing.OutQuad
                }
            }
        }
        MouseArea {
            id: area
            // What the pointer does: nothing, "press", "vertical" or "horizontal" dragging, or a way into the "menu".
            property string mode: ""
            property point start

            anchors.fill: parent
            enabled: !row.editing
            acceptedButtons: Qt.LeftButton | Qt.RightButton
            // The list is scrolled by the wheel; dragging moves its rows.
            preventStealing: true
            onPressed: (mouse) => {
                if (mouse.buttons !== mouse.button) {
                    // Another button is down already: whatever that one began ends with nothing done.
                    letGo();
                    return;
                }
                if (mouse.button === Qt.RightButton) {
                    row.column.openActions(row, mouse.x, mouse.y, false);
                    return;
                }
                start = mapToItem(row.column, mouse.x, mouse.y);
                mode = "press";
                ring.begin();
            }
            onPositionChanged: (mouse) => {
                if (mode === "menu")
                    row.column.panelMenu.track(area, mouse.x, mouse.y);
                else if (mode !== "")
                    drag(mapToItem(row.column, mouse.x, mouse.y));
            }
            onReleased: (mouse) => {
                const ended = mode;
                mode = "";
                ring.cancel();
                if (ended === "menu") {
                    row.column.panelMenu.release(area, mouse.x, mouse.y);
                } else if (ended === "vertical") {
                    row.column.drop(row);
                } else if (ended === "horizontal") {
                    const dx = row.offsetX;
                    row.springBack();
                    row.presenter.swipe(row.todoId, dx);
                }
            }
            onCanceled: letGo()

            function drag(at) {
                const dx = at.x - start.x, dy = at.y - start.y;
                const distance = Math.hypot(dx, dy);
                if (Style.isMeant(dx, dy))
                    ring.cancel();
                if (mode === "press" && distance >= row.presenter.dragDistance) {
                    mode = row.presenter.isVerticalDrag(dx, dy) ? "vertical" : "horizontal";
                    if (mode === "vertical")
                        row.column.lift(row);
                }
                if (mode === "vertical") {
                    back.stop();
                    row.pulledBy = dy;
                    row.column.pull(at.y, dy);
                } else if (mode === "horizontal") {
                    row.slide(dx);
                }
            }
            // Back to its place, with nothing done.
            function letGo() {
                if (mode === "")
                    return;
                if (mode === "vertical")
                    row.column.putBack();
                mode = "";
                ring.cancel();
                row.springBack();
            }
        }
        TickBox {
            id: tick
            x: 6
            y: 6
            done: row.done
            priority: row.priority
            onClicked: row.presenter.toggle(row.todoId)
        }
        HoldRing {
            id: ring
            anchors.centerIn: tick
            width: 24
            height: 24
            onHeld: {
                if (area.mode !== "press")
                    area.letGo();
                area.mode = area.pressed ? "menu" : "";
                row.column.openRemind(row, false);
            }
        }
        Text {
            id: label
            anchors.left: tick.right
            anchors.leftMargin: 10
            anchors.right: badges.left
            anchors.rightMargin: 4
            y: (row.presenter.rowHeight - height) / 2
            visible: !row.editing
            // A row has one line, whatever was pasted.
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
            anchors.right: parent.right
            anchors.rightMargin: 6
            y: 21
            visible: row.note.length > 0
            text: row.note
            textFormat: Text.PlainText
            elide: Text.ElideRight
            color: Style.tertiaryText
            font.family: Style.family
            font.pixelSize: 10
        }
        Row {
            id: badges
            anchors.right: parent.right
            anchors.rightMargin: 4
            height: row.presenter.rowHeight
            visible: !row.editing

            TodoBadge {
                visible: row.inCalendar
                symbol: "calendar.badge.checkmark"
                label: qsTr("In your calendar")
                tint: Style.clear
                column: row.column
            }
            TodoBadge {
                visible: row.eventHelp.length > 0
                symbol: "calendar.badge.plus"
                label: row.eventHelp
                column: row.column
                clickable: true
                onClicked: row.presenter.addToCalendar(row.todoId)
            }
            TodoBadge {
                visible: row.reminder.length > 0
                symbol: "bell.fill"
                label: row.reminder + qsTr(" — click to clear")
                tint: Style.priority
                column: row.column
                clickable: true
                onClicked: row.presenter.clearReminder(row.todoId)
            }
            TodoBadge {
                visible: row.priority
                symbol: "star.fill"
                label: qsTr("Priority")
                tint: Style.priority
                column: row.column
            }
        }
        Loader {
            id: editor
            active: row.editing
            anchors.left: tick.right
            anchors.leftMargin: 4
            anchors.right: parent.right
            anchors.rightMargin: 4
            height: row.presenter.rowHeight
            sourceComponent: TodoEditor {
                onCommitted: (text) => row.endEdit(true, text)
                onDiscarded: row.endEdit(false, "")
            }
        }
        FocusRing {
            control: row
            radius: 7
        }
    }
    HoverHandler {
        id: hover
        onHoveredChanged: {
            if (hovered)
                row.presenter.pointerEntered(row.todoId);
            else
                row.presenter.pointerLeft(row.todoId);
            if (label.truncated && !row.editing)
                row.column.hint(label, hovered ? row.text : "", 700);
        }
    }
}
