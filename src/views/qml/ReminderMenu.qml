import QtQuick

// A menu that can also offer the times of a reminder.
PanelMenu {
    id: menu

    // The entries of a reminder menu. `setTime` is called with the time chosen (s since 1970), `custom` when the user
    // wants to give one, and `clear` for the last row, which is there only with it.
    function times(setTime, custom, clear) {
        const reminders = presenter.reminders;
        const last = reminders.options.length - 1;
        const choices = reminders.options.map((label, index) => ({
                    label: label,
                    run: index < last ? () => setTime(reminders.timeOf(index)) : () => afterwards.call(custom)
                }));
        if (clear)
            choices.push({
                label: qsTr("Clear reminder"),
                run: clear
            });
        return choices;
    }

    // What another menu is about the sheet would not ask for.
    onIsOpenChanged: {
        if (isOpen)
            afterwards.stop();
    }
    // The sheet comes once the menu has gone, unless the panel has gone with it.
    Timer {
        id: afterwards
        property var action: null
        interval: 180
        onTriggered: {
            if (menu.presenter.expanded)
                action();
        }
        function call(next) {
            action = next;
            restart();
        }
    }
}
