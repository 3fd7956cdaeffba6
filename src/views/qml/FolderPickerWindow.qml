import QtQuick
import Sunpane

// Walks through folders, or takes a path that is typed.
ProgramWindow {
    id: dialog

    required property var picker

    width: Math.min(520, mostWidth)
    height: Math.min(440, mostHeight)
    // The buttons side by side.
    minimumWidth: Math.min(width, 420)
    minimumHeight: Math.min(height, 280)
    flags: Qt.Dialog
    title: qsTr("Choose Folder")
    lift: 1 / 3
    leastTop: 28

    onClosing: picker.cancel()
    Component.onCompleted: path.takeFocus()

    FocusScope {
        anchors.fill: parent
        focus: true
        Keys.onEscapePressed: dialog.picker.cancel()

        IconButton {
            id: up
            x: 20
            y: 22
            symbol: "arrow.up"
            label: qsTr("Enclosing folder")
            enabled: dialog.picker.hasParent
            onClicked: dialog.picker.leave()
        }
        TextEntry {
            id: path
            anchors.left: up.right
            anchors.leftMargin: Style.gap
            anchors.right: parent.right
            anchors.rightMargin: 20
            y: 20
            label: qsTr("Folder")
            onSubmitted: dialog.picker.choose(text)
            Keys.onDownPressed: names.forceActiveFocus(Qt.TabFocusReason)

            Connections {
                target: dialog.picker
                function onChanged() {
                    if (dialog.picker.problem.length === 0)
                        path.text = dialog.picker.folder;
                }
            }
            Component.onCompleted: text = dialog.picker.folder
        }

        Rectangle {
            id: frame
            anchors.top: path.bottom
            anchors.topMargin: Style.inset
            anchors.bottom: problem.top
            anchors.bottomMargin: Style.gap
            x: 20
            width: parent.width - 40
            radius: Style.cardRadius
            color: Qt.rgba(0, 0, 0, 0.28)
            border.color: names.activeFocus ? Style.focus : Style.hairline
            border.width: names.activeFocus ? 2 : 1

            ListView {
                id: names
                anchors.fill: parent
                anchors.margins: 6
                clip: true
                activeFocusOnTab: true
                model: dialog.picker.names
                boundsBehavior: Flickable.StopAtBounds
                highlightMoveDuration: 0

                Accessible.role: Accessible.List
                Accessible.name: qsTr("Folders")
                Keys.onReturnPressed: (event) => enterWith(event)
                Keys.onEnterPressed: (event) => enterWith(event)
                Keys.onRightPressed: (event) => enterWith(event)
                Keys.onLeftPressed: dialog.picker.leave()
                Keys.onPressed: (event) => {
                    const page = Math.max(1, Math.floor(height / rowHeight) - 1);
                    event.accepted = true;
                    switch (event.key) {
                    case Qt.Key_Backspace:
                        return dialog.picker.leave();
                    case Qt.Key_PageDown:
                        return goTo(currentIndex + page);
                    case Qt.Key_PageUp:
                        return goTo(currentIndex - page);
                    case Qt.Key_Home:
                        return goTo(0);
                    case Qt.Key_End:
                        return goTo(count - 1);
                    }
                    event.accepted = false;
                }
                readonly property int rowHeight: 28
                function goTo(index) {
                    currentIndex = Math.max(0, Math.min(index, count - 1));
                }
                function enterWith(event) {
                    if (currentItem && !event.isAutoRepeat)
                        dialog.picker.enter(currentItem.modelData);
                }

                delegate: Rectangle {
                    id: row
                    required property string modelData
                    required property int index
                    readonly property bool current: ListView.isCurrentItem && names.activeFocus
                    width: names.width - 8
                    height: names.rowHeight
                    radius: 6
                    color: current ? Qt.rgba(0.04, 0.52, 1, 0.45) : area.pressed ? Style.pressed
                        : area.containsMouse ? Style.hover : "transparent"

                    Accessible.role: Accessible.ListItem
                    Accessible.name: modelData
                    Accessible.onPressAction: dialog.picker.enter(modelData)

                    SymbolIcon {
                        x: 8
                        anchors.verticalCenter: parent.verticalCenter
                        width: 15
                        height: 15
                        symbol: "folder"
                        color: Style.secondaryText
                    }
                    Text {
                        x: 32
                        width: parent.width - x - 8
                        anchors.verticalCenter: parent.verticalCenter
                        text: row.modelData
                        textFormat: Text.PlainText
                        elide: Text.ElideMiddle
                        color: Style.text
                        font.family: Style.family
                        font.pixelSize: Style.bodySize
                    }
                    MouseArea {
                        id: area
                        anchors.fill: parent
                        hoverEnabled: true
                        onClicked: dialog.picker.enter(row.modelData)
                    }
                }
            }
            ScrollThumb {
                area: names
                inset: 0
            }
            BodyText {
                anchors.centerIn: parent
                visible: names.count === 0
                caption: true
                text: qsTr("No folders in here")
            }
        }
        Item {
            id: problem
            x: 20
            width: parent.width - 40
            anchors.bottom: buttons.top
            anchors.bottomMargin: height > 0 ? Style.gap : 0
            height: complaint.text.length > 0 ? complaint.implicitHeight : 0

            BodyText {
                id: complaint
                width: parent.width
                caption: true
                color: Style.remove
                // A path may be long.
                maximumLineCount: 3
                elide: Text.ElideRight
                text: dialog.picker.problem
            }
        }
        Item {
            id: buttons
            anchors.bottom: parent.bottom
            anchors.bottomMargin: 20
            x: 20
            width: parent.width - 40
            height: 30

            TextEntry {
                id: newName
                visible: false
                width: 150
                label: qsTr("Name of the new folder")
                maximumLength: 255
                onSubmitted: {
                    dialog.picker.create(text);
                    if (dialog.picker.problem.length > 0)
                        return;
                    visible = false;
                    path.takeFocus();
                }
                Keys.onEscapePressed: {
                    visible = false;
                    newFolder.forceActiveFocus(Qt.TabFocusReason);
                }
            }
            LabelButton {
                id: newFolder
                visible: !newName.visible
                text: qsTr("New Folder…")
                onClicked: {
                    newName.text = "";
                    newName.visible = true;
                    newName.takeFocus();
                }
            }
            Row {
                anchors.right: parent.right
                spacing: Style.gap

                LabelButton {
                    text: qsTr("Cancel")
                    onClicked: dialog.picker.cancel()
                }
                LabelButton {
                    text: dialog.picker.prompt
                    suggested: true
                    onClicked: dialog.picker.choose(path.text)
                }
            }
        }
    }
}
