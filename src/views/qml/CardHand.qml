import QtQuick

// What the mouse does with a card: a click on a link opens it, a drag sideways swipes the card and, once it is over the
// todos, carries it there; holding the card still opens the reminder menu, whose rows the same press then chooses from.
MouseArea {
    id: hand

    required property Item card
    required property Text label
    required property HoldRing ring
    property point start
    enum Doing { Nothing, Pressing, Swiping, Choosing, Ignoring }
    property int doing: CardHand.Nothing

    acceptedButtons: Qt.LeftButton | Qt.RightButton
    // Nor does a drag up or down scroll the column.
    preventStealing: true
    hoverEnabled: true
    cursorShape: hoveredLink.length > 0 ? Qt.PointingHandCursor : Qt.ArrowCursor
    property string hoveredLink

    function linkAt(x, y) {
        const at = mapToItem(label, x, y);
        return label.linkAt(at.x, at.y);
    }
    function finish() {
        ring.cancel();
        card.host.carried.letGo();
        doing = CardHand.Nothing;
    }
    function carry() {
        doing = CardHand.Ignoring;
        card.cards.cancelDrag();
        card.host.carried.carry(card.cards.dragData(card.sectionId, card.index), start);
    }

    onPressed: (mouse) => {
        if (mouse.buttons !== mouse.button) {
            // Another button is down already: whatever that one began ends with nothing done.
            ring.cancel();
            card.cards.cancelDrag();
            doing = CardHand.Ignoring;
            return;
        }
        if (mouse.button === Qt.RightButton) {
            doing = CardHand.Ignoring;
            card.host.openCardMenu(card, mouse.x, mouse.y, false);
            return;
        }
        start = Qt.point(mouse.x, mouse.y);
        doing = CardHand.Pressing;
        ring.begin();
    }
    onPositionChanged: (mouse) => {
        if (!pressed) {
            hoveredLink = linkAt(mouse.x, mouse.y);
            return;
        }
        // The card moves under the pointer; what counts is where it was.
        const at = mapToItem(card, mouse.x, mouse.y);
        const dx = at.x - start.x;
        const dy = at.y - start.y;
        if (doing === CardHand.Pressing && Style.isMeant(dx, dy)) {
            ring.cancel();
            doing = Math.abs(dx) > Math.abs(dy) ? CardHand.Swiping : CardHand.Ignoring;
            if (doing === CardHand.Swiping)
                card.host.carried.prepare(card);
        }
        if (doing === CardHand.Choosing)
            card.host.menu.track(card, at.x, at.y);
        else if (doing === CardHand.Swiping && card.host.isBeside(card, at.x))
            carry();
        else if (doing === CardHand.Swiping)
            card.cards.dragTo(card.sectionId, card.index, dx);
    }
    onReleased: (mouse) => {
        const at = mapToItem(card, mouse.x, mouse.y);
        const did = doing;
        if (pressed)
            return;
        finish();
        if (did === CardHand.Swiping)
            card.cards.drop();
        else if (did === CardHand.Choosing)
            card.host.menu.release(card, at.x, at.y);
        else if (did === CardHand.Pressing && linkAt(mouse.x, mouse.y).length > 0)
            card.cards.openLink(card.sectionId, card.index, parseInt(linkAt(mouse.x, mouse.y)));
    }
    onCanceled: {
        finish();
        card.cards.cancelDrag();
    }

    Connections {
        target: hand.ring
        function onHeld() {
            hand.doing = CardHand.Choosing;
        }
    }
}
