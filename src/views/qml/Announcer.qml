import QtQuick

// Tells a screen reader what happened where no control of its own says so.
Item {
    id: announcer

    property string text

    width: 1
    height: 1
    visible: text.length > 0
    Accessible.role: Accessible.AlertMessage
    Accessible.name: text

    function announce(what) {
        text = "";
        text = what;
        silence.restart();
    }

    Timer {
        id: silence
        interval: 2000
        onTriggered: announcer.text = ""
    }
}
