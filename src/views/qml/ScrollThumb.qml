import QtQuick

// Beside what scrolls: how much of it is in sight, and where. Not there when that is all of it.
Rectangle {
    id: thumb

    required property Flickable area
    property real inset: 3
    readonly property real way: area.height - height - 6
    readonly property real hidden: area.contentHeight - area.height

    parent: area
    // Sizes in whole pixels may miss a fraction of a point.
    visible: hidden > 1
    x: area.width - width - inset
    y: 3 + way * Math.max(0, Math.min(1, (area.contentY - area.originY) / hidden))
    width: 5
    height: Math.max(20, area.visibleArea.heightRatio * area.height - 6)
    radius: 2.5
    color: Qt.rgba(1, 1, 1, 0.22)
}
