import QtQuick

// The briefing's sections, one of which is open at a time.
Flickable {
    id: column

    required property var presenter
    signal cardMenuRequested(Item card, int sectionId, int index, real x, real y, bool byKeyboard)

    contentHeight: rows.height
    boundsBehavior: Flickable.StopAtBounds
    clip: contentHeight > height
    interactive: contentHeight > height

    Accessible.role: Accessible.List
    Accessible.name: qsTr("Briefing")

    // Keeps what the keyboard is on in view.
    function reveal(item) {
        const top = item.mapToItem(rows, 0, 0).y;
        if (top < contentY)
            contentY = Math.max(0, top - Style.gap);
        else if (top + item.height > contentY + height)
            contentY = Math.min(contentHeight - height, top + item.height - height + Style.gap);
    }

    Column {
        id: rows
        width: column.width
        spacing: Style.gap
        // The height that the column will have once nothing moves any more.
        property real settledHeight: 0

        function measure() {
            let total = 0;
            for (let i = 0; i < sections.count; ++i) {
                const section = sections.itemAt(i);
                if (section)
                    total += section.targetHeight + (i > 0 ? spacing : 0);
            }
            if (leftOut.visible)
                total += leftOut.implicitHeight + spacing;
            if (hiddenCards.visible)
                total += hiddenCards.implicitHeight + spacing;
            settledHeight = total;
            if (total > 0)
                column.presenter.reportContentHeight(total);
        }

        Repeater {
            id: sections
            model: column.presenter.column
            onCountChanged: Qt.callLater(rows.measure)

            SectionBento {
                required property int sectionId
                width: rows.width
                isOpen: column.presenter.openSection === sectionId
                spring: column.presenter.accordionSpring
                animated: column.presenter.expanded
                onToggled: column.presenter.toggleSection(sectionId)
                onJoinRequested: (index) => column.presenter.joinCard(sectionId, index)
                onTargetHeightChanged: Qt.callLater(rows.measure)
                onCardMenuRequested: (card, index, x, y, byKeyboard) => column.cardMenuRequested(card, sectionId, index, x, y, byKeyboard)
            }
        }

        Text {
            id: leftOut
            visible: column.presenter.column.leftOut > 0
            text: Style.counted(column.presenter.column.leftOut, qsTr("1 more section in the file"), qsTr("%1 more sections in the file"))
            color: Style.tertiaryText
            font.family: Style.family
            font.pixelSize: Style.captionSize
            onVisibleChanged: Qt.callLater(rows.measure)
        }
        TextButton {
            id: hiddenCards
            visible: column.presenter.hiddenCards > 0
            height: visible ? implicitHeight : 0
            text: Style.counted(column.presenter.hiddenCards, qsTr("Show the hidden card"), qsTr("Show %1 hidden cards"))
            onClicked: column.presenter.showHiddenCards()
            onVisibleChanged: Qt.callLater(rows.measure)
        }
    }

    Text {
        parent: column
        visible: !column.presenter.hasBriefing
        anchors.centerIn: parent
        width: Math.min(implicitWidth, parent.width)
        horizontalAlignment: Text.AlignHCenter
        wrapMode: Text.Wrap
        text: qsTr("No briefing yet — new ones land here automatically.")
        color: Style.secondaryText
        font.family: Style.family
        font.pixelSize: Style.bodySize
        Accessible.role: Accessible.StaticText
        Accessible.name: text
    }

    Rectangle {
        parent: column
        anchors.right: parent.right
        anchors.rightMargin: -10
        visible: column.interactive
        width: 4
        radius: 2
        color: Qt.rgba(1, 1, 1, 0.25)
        y: column.visibleArea.yPosition * column.height
        height: Math.max(24, column.visibleArea.heightRatio * column.height)
    }
}
