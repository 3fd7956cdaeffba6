import QtQuick

// Asks when to remind of something, and how often. Lies over the panel's content, keeps the panel from folding while it
// is open, and is made only then.
Item {
    id: sheet

    required property var presenter
    property bool isOpen: false
    property string subject
    property real time: 0
    property int repetition: 0
    property bool canClear: false
    property var set: null
    property var clear: null
    property Item returnTo: null

    anchors.fill: parent
    visible: isOpen
    z: 21

    // Opens for what `text` says. `at` is the time to begin with (s since 1970; 0 for one that suits), `rule` the
    // store's word for the repetition or empty. `onSet` is called with a time and a rule; `onClear` is null where there
    // is no reminder to clear. The keyboard goes back to `item` when that is given.
    function openFor(text, at, rule, onSet, onClear, item) {
        subject = text;
        time = at > 0 ? at : presenter.reminders.suggestion();
        repetition = presenter.reminders.repetitionOf(rule);
        set = onSet;
        clear = onClear;
        canClear = onClear !== null;
        returnTo = item;
        if (!isOpen)
            presenter.setMenuOpen(true);
        isOpen = true;
        content.item.begin();
    }

    function close() {
        if (!isOpen)
            return;
        isOpen = false;
        presenter.setMenuOpen(false);
        set = null;
        clear = null;
        (returnTo ?? parent).forceActiveFocus();
    }

    function confirm() {
        const apply = set;
        const at = content.item.time;
        const rule = presenter.reminders.ruleOf(content.item.repetition);
        close();
        apply(at, rule);
    }
    function clearReminder() {
        const apply = clear;
        close();
        apply();
    }

    Connections {
        target: sheet.presenter
        function onChanged() {
            if (!sheet.presenter.expanded)
                sheet.close();
        }
    }

    Rectangle {
        anchors.fill: parent
        // Round where the panel is, at the bottom only.
        anchors.topMargin: -radius
        radius: Style.panelRadius
        color: Qt.rgba(0, 0, 0, 0.35)
        MouseArea {
            anchors.fill: parent
            acceptedButtons: Qt.AllButtons
            // Nothing below notices the pointer, or two fingers would swipe it.
            hoverEnabled: true
            onPressed: sheet.close()
            onWheel: {}
        }
    }

    Loader {
        id: content
        active: sheet.isOpen
        anchors.horizontalCenter: parent.horizontalCenter
        y: Math.max(8, (sheet.height - height) / 2)
        sourceComponent: ReminderForm {
            owner: sheet
        }
    }
}
