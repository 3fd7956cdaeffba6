import QtQuick
import Sunpane

// The panel: the black notch when folded, a card that springs open under it when unfolded.
FocusScope {
    id: root

    required property var presenter
    required property var background

    // From 0, folded, to 1, open; the spring takes it a little past either end.
    property real unfolding: 0
    readonly property bool open: presenter.expanded
    readonly property bool folded: !open && unfolding === 0
    property real openHeight: presenter.expandedHeight
    readonly property real cardWidth: between(presenter.notchWidth, presenter.cardWidth)
    readonly property real cardHeight: between(foldedHeight, openHeight)
    // What is drawn in the notch itself would be behind the camera on a laptop that has one, so the light for a new
    // briefing hangs below.
    readonly property real foldedHeight: presenter.notchHeight + (presenter.hasUnread ? 12 : 0)

    signal contentGivenUp()

    focus: true
    // A panel that is made anew while it is open, because the screens changed, is open at once.
    Component.onCompleted: {
        if (open) {
            content.make();
            unfolding = 1;
        }
    }

    Shortcut {
        sequence: "Ctrl+Q"
        enabled: root.open
        onActivated: root.presenter.quit()
    }

    function between(from, to) {
        return from + (to - from) * unfolding;
    }

    onOpenChanged: {
        motion.stop();
        start.stop();
        const spring = open ? presenter.unfoldSpring : presenter.foldSpring;
        motion.to = open ? 1 : 0;
        motion.duration = Style.motion(spring);
        motion.easing = spring.curve;
        content.make();
        // A briefing that was never laid out tells its height now, so that the panel goes straight to it.
        if (open && content.item.settle())
            start.start();
        else
            motion.start();
    }
    // A frame later that height has arrived.
    Timer {
        id: start
        interval: 16
        onTriggered: motion.start()
    }

    Binding {
        target: root.background
        property: "shown"
        value: !root.folded
    }
    Binding {
        target: Style
        property: "reducedMotion"
        value: root.presenter.reducedMotion
    }
    Binding {
        target: Style
        property: "scrim"
        value: root.background.scrim
    }

    NumberAnimation {
        id: motion
        target: root
        property: "unfolding"
    }
    Behavior on openHeight {
        enabled: root.open && root.unfolding > 0
        NumberAnimation {
            duration: Style.motion(root.presenter.accordionSpring)
            easing: root.presenter.accordionSpring.curve
        }
    }

    NotchOutline {
        id: outline
        width: parent.width
        // Drawn into an image of its own; a folded notch needs only a small one.
        height: root.folded ? root.foldedHeight : parent.height
        cardWidth: root.cardWidth
        cardHeight: root.cardHeight
        bottomRadius: root.between(8, 22)
        topRadius: root.between(6, 10)
        notchHeight: root.presenter.notchHeight
        headerBottom: root.presenter.notchHeight + Style.gap + root.presenter.headerHeight
        // The black of the notch opens into the background well before the panel is open.
        openness: root.folded ? 0 : Math.max(0, Math.min(1, root.unfolding / 0.6))
        background: root.background
    }

    Item {
        anchors.horizontalCenter: parent.horizontalCenter
        width: root.cardWidth
        height: root.cardHeight
        clip: true
        visible: !root.folded

        Loader {
            id: content
            anchors.horizontalCenter: parent.horizontalCenter
            width: root.presenter.cardWidth
            height: root.openHeight
            asynchronous: false
            opacity: Math.max(0, Math.min(1, (root.unfolding - 0.25) / 0.6))
            // A panel that is open at once lets its content fade in.
            Behavior on opacity {
                enabled: Style.reducedMotion && root.open
                NumberAnimation {
                    duration: 150
                }
            }
            // By its file: a component in here would keep all that the content is made of loaded.
            function make() {
                if (!item)
                    setSource("BriefingCard.qml", { presenter: root.presenter });
            }
            function giveUp() {
                source = "";
            }
        }
    }

    UnreadIndicator {
        visible: root.presenter.hasUnread
        x: Math.round((root.width - width) / 2)
        y: root.foldedHeight - height - 4
    }

    // A folded panel holds no content: it is made when the pointer comes near, so that unfolding need not wait for it,
    // and given up when the panel was left alone for a while.
    function makeContent() {
        content.make();
        content.item.settle();
        // The pointer may also come near while the panel still folds; then the time begins when it has folded.
        if (folded)
            idle.restart();
    }
    Timer {
        id: idle
        interval: 30000
        running: root.folded && content.item !== null
        onTriggered: {
            if (!root.folded)
                return;
            if (content.item.holdsText) {
                restart();
            } else {
                content.giveUp();
                root.contentGivenUp();
            }
        }
    }

    function moveFocus(forward) {
        const from = Window.activeFocusItem ?? root;
        const next = from.nextItemInFocusChain(forward);
        if (!next)
            return;
        next.forceActiveFocus(forward ? Qt.TabFocusReason : Qt.BacktabFocusReason);
    }
    Keys.onEscapePressed: presenter.collapse()
    Keys.onPressed: (event) => {
        const menu = event.key === Qt.Key_Menu || event.key === Qt.Key_F10 && event.modifiers === Qt.ShiftModifier;
        event.accepted = content.item !== null && (menu || event.key === Qt.Key_F6);
        if (!event.accepted)
            return;
        if (menu)
            content.item.openMenuFromKeyboard(Window.activeFocusItem);
        else
            content.item.switchColumn();
    }
    Keys.onDownPressed: moveFocus(true)
    Keys.onUpPressed: moveFocus(false)
    // With another key held they mean something else, or nothing.
    function leafs(event) {
        event.accepted = open && (event.modifiers & ~Qt.KeypadModifier) === 0;
        return event.accepted;
    }
    Keys.onLeftPressed: (event) => {
        if (leafs(event))
            presenter.older();
    }
    Keys.onRightPressed: (event) => {
        if (leafs(event))
            presenter.newer();
    }

    Connections {
        target: root.Window.window
        function onActiveFocusItemChanged() {
            const item = root.Window.activeFocusItem;
            if (item && item.inColumn && content.item)
                content.item.reveal(item);
        }
    }
}
