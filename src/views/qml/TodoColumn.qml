import QtQuick
import Sunpane

// The todo list beside the briefing: a field to write one down, then the todos in their order.
Rectangle {
    id: column

    required property var presenter
    readonly property var list: presenter.list
    readonly property bool empty: list.count === 0

    radius: Style.sectionRadius
    color: Style.section
    border.color: Style.hairline

    Accessible.role: Accessible.Grouping
    Accessible.name: qsTr("Todos")

    Text {
        id: heading
        x: Style.inset
        y: Style.inset
        text: qsTr("Todos")
        color: Style.text
        font.family: Style.family
        font.pixelSize: Style.bodySize
        font.weight: Font.DemiBold
        Accessible.role: Accessible.Heading
        Accessible.name: text
    }
    Text {
        anchors.baseline: heading.baseline
        anchors.left: heading.right
        anchors.leftMargin: Style.gap
        anchors.right: parent.right
        anchors.rightMargin: Style.inset
        horizontalAlignment: Text.AlignRight
        elide: Text.ElideRight
        visible: column.presenter.doneCount > 0
        text: qsTr("%1 done").arg(column.presenter.doneCount)
        color: Style.secondaryText
        font.family: Style.family
        font.pixelSize: Style.captionSize
        Accessible.role: Accessible.StaticText
        Accessible.name: text
    }
    Text {
        id: emptyText
        x: Style.inset
        anchors.top: heading.bottom
        anchors.topMargin: Style.gap
        width: parent.width - 2 * Style.inset
        height: visible ? contentHeight + Style.gap : 0
        visible: column.empty
        wrapMode: Text.Wrap
        text: qsTr("Nothing yet — add one below.")
        color: Style.secondaryText
        font.family: Style.family
        font.pixelSize: Style.bodySize
        Accessible.role: Accessible.StaticText
        Accessible.name: text
    }
    CaptureField {
        id: capture
        x: Style.inset
        anchors.top: emptyText.bottom
        width: parent.width - 2 * Style.inset
        onSubmitted: (text) => column.presenter.submit(text)
        onDismissed: column.presenter.collapse()
        Keys.onDownPressed: column.enterRows()
    }
    ListView {
        id: rows
        anchors.top: capture.bottom
        anchors.topMargin: Style.gap
        anchors.bottom: parent.bottom
        anchors.bottomMargin: Style.gap
        x: 6
        width: parent.width - 12
        model: column.list
        clip: contentHeight > height
        interactive: contentHeight > height
        boundsBehavior: Flickable.StopAtBounds
        keyNavigationEnabled: false

        Accessible.role: Accessible.List
        Accessible.name: qsTr("Todo list")

        delegate: TodoRow {
            width: rows.width
            presenter: column.presenter
        }

        add: Transition {
            NumberAnimation {
                property: "opacity"
                from: 0
                to: 1
                duration: column.presenter.motion.duration
            }
        }
        displaced: Transition {
            NumberAnimation {
                properties: "y"
                duration: column.presenter.motion.duration
                easing: column.presenter.motion.curve
            }
            NumberAnimation {
                property: "opacity"
                to: 1
            }
        }
        move: Transition {
            NumberAnimation {
                properties: "y"
                duration: column.presenter.motion.duration
                easing: column.presenter.motion.curve
            }
        }
    }

    function enterRows() {
    }

    Connections {
        target: column.presenter
        function onCaptureFocusRequested() {
            capture.takeFocus();
        }
    }
}
