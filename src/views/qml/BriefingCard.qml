import QtQuick
import Sunpane

// Everything inside the open panel: the header with the way from day to day, and below it the briefing and the todos.
Item {
    id: card

    required property var presenter
    readonly property real columnGap: 14
    readonly property real columns: width - 2 * Style.margin - columnGap
    // A narrow panel leaves the briefing more than half.
    readonly property real todoWidth: Math.min(254, Math.round(0.42 * columns))
    readonly property real briefWidth: columns - todoWidth

    // Text that the user began and that would be lost with the card.
    readonly property bool holdsText: todos.holdsText

    // Wherever no card has a menu of its own.
    MouseArea {
        anchors.fill: parent
        acceptedButtons: Qt.RightButton
        onPressed: (mouse) => card.openMenu(mouse.x, mouse.y, null)
    }

    // `item` is what the keyboard is on, null when the pointer asked.
    function openMenu(x, y, item) {
        menu.openAt(card, x, y, qsTr("Panel"), [
            {
                label: qsTr("Open Briefings Folder"),
                run: () => presenter.openBriefingsFolder()
            },
            {
                label: qsTr("Settings…"),
                run: () => presenter.openSettings()
            },
            {
                label: qsTr("Quit Sunpane"),
                run: () => presenter.quit()
            }
        ], false);
        menu.returnTo = item;
        if (item)
            menu.current = 0;
    }
    // What asks the user something has the keyboard until it is answered.
    readonly property bool asks: menu.isOpen || sheet.isOpen
    function openMenuFromKeyboard(item) {
        if (asks)
            return;
        openMenu(header.x, header.y + header.height, item);
    }

    Item {
        id: header
        x: Style.margin
        y: card.presenter.notchHeight + Style.gap
        width: parent.width - 2 * Style.margin
        height: card.presenter.headerHeight

        SymbolIcon {
            id: icon
            anchors.verticalCenter: parent.verticalCenter
            width: 20
            height: 20
            symbol: card.presenter.icon
            color: Style.priority
        }
        Column {
            anchors.verticalCenter: parent.verticalCenter
            anchors.left: icon.right
            anchors.leftMargin: 10
            anchors.right: buttons.left
            anchors.rightMargin: Style.inset
            spacing: 2

            Text {
                width: parent.width
                text: card.presenter.title
                textFormat: Text.PlainText
                elide: Text.ElideRight
                maximumLineCount: 1
                color: Style.text
                font.family: Style.family
                font.pixelSize: Style.titleSize
                font.weight: Font.DemiBold
                Accessible.role: Accessible.Heading
                Accessible.name: text
            }
            Text {
                width: parent.width
                visible: text.length > 0
                text: card.presenter.subtitle
                textFormat: Text.PlainText
                elide: Text.ElideRight
                color: Style.secondaryText
                font.family: Style.family
                font.pixelSize: Style.captionSize
                Accessible.role: Accessible.StaticText
                Accessible.name: text
            }
        }
        Row {
            id: buttons
            anchors.verticalCenter: parent.verticalCenter
            anchors.right: parent.right
            spacing: 6

            IconButton {
                symbol: "chevron.left"
                label: qsTr("Older briefing")
                enabled: card.presenter.canGoOlder
                onClicked: card.presenter.older()
            }
            IconButton {
                symbol: "chevron.right"
                label: qsTr("Newer briefing")
                enabled: card.presenter.canGoNewer
                onClicked: card.presenter.newer()
            }
            IconButton {
                symbol: "gearshape"
                label: qsTr("Settings")
                onClicked: card.presenter.openSettings()
            }
        }
    }

    // Comes down from under the header and fades in.
    Item {
        id: schedule
        readonly property bool shown: card.presenter.hasMeeting
        property real shownPart: shown ? 1 : 0
        x: Style.margin
        anchors.top: header.bottom
        anchors.topMargin: Style.margin
        width: card.briefWidth
        height: (strip.implicitHeight + Style.gap) * shownPart
        visible: shownPart > 0
        clip: shownPart < 1
        opacity: shownPart

        Behavior on shownPart {
            enabled: card.presenter.expanded
            NumberAnimation {
                duration: Style.motion(card.presenter.scheduleSpring)
                easing: card.presenter.scheduleSpring.curve
            }
        }
        ScheduleBento {
            id: strip
            presenter: card.presenter
            width: parent.width
            height: implicitHeight
            y: parent.height - height - Style.gap
        }
    }

    BriefColumn {
        id: column
        presenter: card.presenter
        x: Style.margin
        anchors.top: schedule.bottom
        // As high as its content, so that what plays stands right below it.
        height: playing.shown && card.presenter.hasBriefing ? Math.min(contentHeight, room) : room
        readonly property real room: parent.height - y - Style.margin - playing.height
        width: card.briefWidth
        menu: menu
        sheet: sheet
        onAnnounced: (text) => announcer.announce(text)
    }

    Item {
        id: playing
        readonly property bool shown: card.presenter.nowPlaying.hasTrack
        property real shownPart: shown ? 1 : 0
        x: Style.margin
        y: column.y + column.height
        width: card.briefWidth
        height: (playingStrip.implicitHeight + Style.gap) * shownPart
        visible: shownPart > 0
        opacity: shownPart

        Behavior on shownPart {
            enabled: card.presenter.expanded
            NumberAnimation {
                duration: Style.motion(card.presenter.nowPlaying.spring)
                easing: card.presenter.nowPlaying.spring.curve
            }
        }
        NowPlayingStrip {
            id: playingStrip
            track: card.presenter.nowPlaying
            width: parent.width
            y: Style.gap
            height: implicitHeight
        }
    }

    TodoColumn {
        id: todos
        presenter: card.presenter.todos
        panelMenu: menu
        reminderSheet: sheet
        speaker: announcer
        anchors.top: header.bottom
        anchors.topMargin: Style.margin
        anchors.right: parent.right
        anchors.rightMargin: Style.margin
        width: card.todoWidth
        height: parent.height - y - Style.margin
    }

    ReminderMenu {
        id: menu
        presenter: card.presenter
    }
    ReminderSheet {
        id: sheet
        presenter: card.presenter
    }
    Announcer {
        id: announcer
    }

    // Takes the keyboard from one column to the other.
    function switchColumn() {
        if (asks)
            return;
        if (todos.hasFocus)
            column.nextItemInFocusChain(true).forceActiveFocus(Qt.TabFocusReason);
        else
            todos.takeFocus();
    }

    function reveal(item) {
        column.reveal(item);
    }
    function settle() {
        return column.settle();
    }
}
