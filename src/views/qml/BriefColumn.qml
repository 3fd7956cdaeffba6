import QtQuick

// The briefing's sections, one of which is open at a time.
Flickable {
    id: column

    required property var presenter
    required property ReminderMenu menu
    required property ReminderSheet sheet
    readonly property var cards: presenter.cards
    readonly property CarriedCard carried: CarriedCard {
        parent: column
    }
    // What happened, for the screen reader.
    signal announced(string text)

    // Another day is read from its top.
    readonly property string briefing: presenter.briefingId
    onBriefingChanged: {
        cancelFlick();
        contentY = 0;
    }

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

    // Lays everything out now instead of before the next frame. Whether it has another height than was known.
    function settle() {
        for (let i = 0; i < sections.count; ++i)
            sections.itemAt(i)?.settle();
        return rows.measure();
    }

    // A card may be higher than the panel.
    Keys.onPressed: (event) => {
        const lowest = Math.max(0, contentHeight - height);
        if (event.key === Qt.Key_PageDown)
            contentY = Math.min(lowest, contentY + 0.9 * height);
        else if (event.key === Qt.Key_PageUp)
            contentY = Math.max(0, contentY - 0.9 * height);
        else
            return;
        event.accepted = true;
    }

    Connections {
        target: column.cards
        function onAnnounced(text) {
            column.announced(text);
        }
    }

    // Whether a card that is dragged to `x`, in its own coordinates, has left the column for the todos.
    function isBeside(card, x) {
        return card.mapToItem(column, x, 0).x > width + Style.gap;
    }
    // What a menu is about from now on. A sheet that asks about one card goes on asking about that.
    function choose(card) {
        return !sheet.isOpen && cards.choose(card.sectionId, card.index);
    }
    function openCardMenu(card, x, y, byKeyboard) {
        if (!choose(card))
            return;
        menu.openAt(card, x, y, qsTr("Card"), [
            {
                label: qsTr("Copy"),
                run: () => {
                    cards.copyChosen();
                    announced(qsTr("Copied"));
                }
            },
            {
                label: qsTr("Add to Todos"),
                run: () => {
                    cards.addChosenToTodos();
                    announced(qsTr("Added to the todos"));
                }
            }
        ], byKeyboard);
    }

    function openReminderMenu(card, x, byKeyboard) {
        if (!choose(card))
            return;
        menu.openBeside(card, x, qsTr("Remind me · adds to todos"), menu.times((time) => remind(time, ""), () => openSheet(card, byKeyboard), null), byKeyboard);
    }

    function remind(time, rule) {
        cards.remindOfChosen(time, rule);
        announced(qsTr("Reminder set"));
    }
    function openSheet(card, byKeyboard) {
        sheet.openFor(cards.chosenText(), 0, "", remind, null, byKeyboard ? card : null);
    }

    function openLinks(card) {
        const links = cards.links(card.sectionId, card.index);
        const open = (link) => cards.openLink(card.sectionId, card.index, link);
        if (links.length === 1)
            open(0);
        else if (links.length > 1)
            menu.openBeside(card, Style.inset, qsTr("Open link"), links.map((label, link) => ({
                        label: label,
                        run: () => open(link)
                    })), true);
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
            return total > 0 && column.presenter.reportContentHeight(total);
        }

        Repeater {
            id: sections
            model: column.presenter.column
            onCountChanged: Qt.callLater(rows.measure)

            SectionBento {
                width: rows.width
                host: column
                isOpen: column.presenter.openSection === sectionId
                spring: column.presenter.accordionSpring
                animated: column.presenter.expanded
                onToggled: column.presenter.toggleSection(sectionId)
                onTargetHeightChanged: Qt.callLater(rows.measure)
            }
        }

        Text {
            id: leftOut
            visible: column.presenter.column.leftOut > 0
            text: Style.counted(column.presenter.column.leftOut, qsTr("1 more section in the file"), qsTr("%1 more sections in the file"))
            color: Style.tertiaryText
            font.family: Style.family
            font.pixelSize: Style.captionSize
            Accessible.role: Accessible.StaticText
            Accessible.name: text
            onVisibleChanged: Qt.callLater(rows.measure)

            Scrim {}
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

        Scrim {}
    }

    HoverHandler {
        id: over
    }
    Rectangle {
        parent: column
        anchors.right: parent.right
        anchors.rightMargin: 4
        visible: column.interactive && (over.hovered || column.moving)
        width: 4
        radius: 2
        color: Qt.rgba(1, 1, 1, 0.25)
        y: column.visibleArea.yPosition * column.height
        height: Math.max(24, column.visibleArea.heightRatio * column.height)
    }
}
