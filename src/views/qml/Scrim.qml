import QtQuick

// Darkens the panel's background under words that stand on no surface of their own.
Rectangle {
    z: -1
    anchors.fill: parent
    anchors.margins: -6
    radius: 8
    color: Qt.rgba(0, 0, 0, Style.scrim)
}
