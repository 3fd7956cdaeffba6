import QtQuick

// Copies something and confirms it for a moment.
LabelButton {
    id: button

    property bool copied: false
    signal copy

    symbol: copied ? "checkmark" : "doc.on.doc"
    Accessible.description: copied ? qsTr("Copied") : ""
    onClicked: {
        copy();
        copied = true;
        back.restart();
    }

    Timer {
        id: back
        interval: 2000
        onTriggered: button.copied = false
    }
}
