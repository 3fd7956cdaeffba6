import QtQuick

// What every control that is pressed has in common: a key presses it once, however long it is held down, and when the
// control goes the keyboard does not go with it.
Item {
    id: control

    signal clicked

    activeFocusOnTab: enabled

    function press() {
        if (enabled)
            clicked();
    }
    function pressWith(event) {
        if (!event.isAutoRepeat)
            press();
    }

    Accessible.role: Accessible.Button
    Accessible.focusable: true
    Accessible.onPressAction: press()
    Keys.onReturnPressed: (event) => pressWith(event)
    Keys.onEnterPressed: (event) => pressWith(event)
    Keys.onSpacePressed: (event) => pressWith(event)

    // Not when all around it goes too: whoever hides that knows where the keyboard belongs.
    onVisibleChanged: {
        if (visible || !focus || !parent.visible)
            return;
        const before = nextItemInFocusChain(false);
        const heir = before.parent === parent ? before : nextItemInFocusChain(true);
        if (activeFocus)
            heir.forceActiveFocus(Qt.TabFocusReason);
        else
            heir.focus = true; // for when its window is active again
    }
}
