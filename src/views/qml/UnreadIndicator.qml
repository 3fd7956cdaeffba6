import QtQuick

// A small light on the notch while the newest briefing has not been looked at.
Rectangle {
    width: 7
    height: 7
    radius: 3.5
    color: Style.priority
    Accessible.role: Accessible.Graphic
    Accessible.name: qsTr("New briefing")
}
