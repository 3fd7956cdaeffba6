import QtQuick
import Sunpane

// One card. A drag sideways swipes it, holding it offers reminders, a drag over the todos takes it there.
Item {
    id: card

    required property int index
    required property string markup
    required property string spoken
    required property string key
    required property bool priority
    required property bool cleared
    required property bool joinable
    required property bool imminent
    required property int sectionId
    // Whether it is there only as long as it has priority.
    required property bool missed
    // The column that shows the card; it knows the menus.
    required property var host
    readonly property var cards: host.presenter.cards
    readonly property bool inColumn: true

    // How far the card is swiped, and where it is on its way there.
    readonly property real swipeX: cards.swipedKey === key ? cards.swipeX : 0
    property real shownX: swipeX

    implicitHeight: Math.max(label.implicitHeight + 17, joinable ? join.height + 12 : 0)
    activeFocusOnTab: true
    clip: shownX !== 0

    Behavior on shownX {
        enabled: !card.cards.inHand
        NumberAnimation {
            duration: Style.motion(card.cards.spring)
            easing: card.cards.spring.curve
        }
    }

    Accessible.role: Accessible.ListItem
    Accessible.name: spoken
    Accessible.description: cleared ? qsTr("cleared") : priority ? qsTr("priority") : ""
    Accessible.focusable: true
    Accessible.onPressAction: openMenu()
    Accessible.onIncreaseAction: flag()
    Accessible.onDecreaseAction: dismiss()

    function openMenu() {
        host.openCardMenu(card, Style.inset, height, true);
    }
    function flag() {
        if (missed)
            handOn();
        cards.flag(sectionId, index);
    }
    function dismiss() {
        if (missed || cleared)
            handOn();
        cards.dismiss(sectionId, index);
    }
    // A card that goes hands the keyboard on to what follows it.
    function handOn() {
        if (!activeFocus)
            return;
        let next = nextItemInFocusChain(true);
        if (next === join)
            next = join.nextItemInFocusChain(true);
        next.forceActiveFocus(Qt.OtherFocusReason);
    }

    Keys.onMenuPressed: openMenu()
    Keys.onPressed: (event) => {
        const action = actionOf(event.key, event.modifiers);
        event.accepted = action !== null;
        // Held down, the key that clears a card would remove it next.
        if (action && !event.isAutoRepeat)
            action();
    }
    function actionOf(key, modifiers) {
        const plain = modifiers === Qt.NoModifier;
        const shifted = modifiers === Qt.ShiftModifier;
        if (shifted && key === Qt.Key_Right)
            return flag;
        if (shifted && key === Qt.Key_Left)
            return dismiss;
        if (key === Qt.Key_Return || key === Qt.Key_Enter || plain && key === Qt.Key_M || shifted && key === Qt.Key_F10)
            return openMenu;
        if (plain && key === Qt.Key_R)
            return () => host.openReminderMenu(card, Style.inset, true);
        if (plain && key === Qt.Key_O)
            return () => host.openLinks(card);
        return null;
    }

    SwipeHint {
        anchors.fill: parent
        offset: card.shownX
        removes: card.cleared
        flagged: card.priority
        inHand: card.cards.inHand
    }

    Rectangle {
        id: face
        x: card.shownX
        width: parent.width
        height: parent.height
        radius: Style.cardRadius
        color: card.priority ? Style.priorityCard : Style.card
        border.color: card.priority ? Style.priorityEdge : "transparent"

        // Off its place it covers most of the hint's colour, so that its words stay readable.
        Rectangle {
            anchors.fill: parent
            z: -1
            radius: parent.radius
            color: Style.lifted
            visible: card.shownX !== 0
        }
        Rectangle {
            anchors.fill: parent
            radius: parent.radius
            color: hand.pressed ? Style.pressed : Style.hover
            visible: hover.hovered || hand.pressed
        }
        Text {
            id: label
            x: 10
            y: 9
            width: parent.width - 20 - (card.joinable ? join.width + Style.gap : 0)
            text: card.markup
            textFormat: Text.StyledText
            wrapMode: Text.Wrap
            color: card.cleared ? Style.tertiaryText : Style.text
            linkColor: card.cleared ? Style.tertiaryText : Style.link
            font.strikeout: card.cleared
            font.family: Style.family
            font.pixelSize: Style.bodySize
            lineHeight: 1.15
        }
        FocusRing {
            control: card
            radius: face.radius
        }
        CardHand {
            id: hand
            anchors.fill: parent
            card: card
            label: label
            ring: ring
        }
        JoinCapsule {
            id: join
            anchors.right: parent.right
            anchors.rightMargin: Style.gap
            y: 6
            visible: card.joinable
            meeting: card.spoken
            imminent: card.imminent
            onClicked: card.cards.join(card.sectionId, card.index)
        }
        HoldRing {
            id: ring
            x: Math.max(4, Math.min(hand.start.x - width / 2, parent.width - width - 4))
            y: Math.max(4, Math.min(hand.start.y - height - 10, parent.height - height - 4))
            onHeld: card.host.openReminderMenu(card, Math.max(0, hand.start.x - 40), false)
        }
    }

    // Hidden, folded away or no longer in the file, perhaps under the pointer or in its hand.
    Component.onDestruction: {
        if (cards)
            cards.cardGone(key);
    }

    HoverHandler {
        id: hover
        onHoveredChanged: {
            if (hovered)
                card.cards.pointerEntered(card.sectionId, card.index);
            else
                card.cards.pointerLeft(card.key);
        }
    }
}
