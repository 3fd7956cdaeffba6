import QtQuick

// Shows where the keyboard is. Clicks move no focus, so a ring appears only once the keyboard is in use.
Rectangle {
    property Item control: parent
    anchors.fill: parent
    visible: control.activeFocus
    color: "transparent"
    border.color: Style.focus
    border.width: 2
}
