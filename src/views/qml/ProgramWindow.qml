import QtQuick
import QtQuick.Window
import Sunpane

// A window beside the panel. It opens in the middle of its screen and stays where the user drags it, also on another.
Window {
    id: window

    // What part of the room above and below it is above, and how near to the top that may bring it.
    property real lift: 1 / 2
    property real leastTop: 0
    // How large it may be. A window manager puts a frame around it, and a title above.
    readonly property real mostWidth: workArea.area.width - 24
    readonly property real mostHeight: workArea.area.height - 56
    readonly property WorkArea workArea: WorkArea {
        window: window
    }

    // Closed with its title bar, and neither minimised nor maximised, which would hide what it asks.
    flags: Qt.Dialog | Qt.CustomizeWindowHint | Qt.WindowTitleHint | Qt.WindowSystemMenuHint | Qt.WindowCloseButtonHint
    title: "Dawnly"
    color: Style.panelBottom

    // Once: bound to the screen, it would jump when it is dragged to another. Again when the size becomes known later.
    function place() {
        const area = workArea.area;
        x = area.x + Math.round((area.width - width) / 2);
        y = area.y + Math.round(Math.max(leastTop, (area.height - height) * lift));
    }

    Component.onCompleted: place()

    Shortcut {
        sequence: "Ctrl+Q"
        onActivated: Qt.quit()
    }
    Shortcut {
        sequence: "Ctrl+W"
        onActivated: window.close()
    }
}
