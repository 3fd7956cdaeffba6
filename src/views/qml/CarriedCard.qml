import QtQuick

// What other windows and the todo column get of a card that is dragged out of its column. It is the column's: the card
// may go while it is carried, when the briefing changes.
Item {
    id: carried

    property url picture
    // Between the decision to carry and the beginning of the drag.
    property bool waiting: false

    Drag.dragType: Drag.Automatic
    Drag.supportedActions: Qt.CopyAction
    Drag.imageSource: picture

    // Makes the picture that goes with the pointer.
    function prepare(card) {
        picture = "";
        card.grabToImage((result) => picture = result.url);
    }
    // Carries the data (texts by their types) from the next moment on, unless the hand lets go before.
    function carry(data, hotSpot) {
        Drag.mimeData = data;
        Drag.hotSpot = hotSpot;
        waiting = true;
        // The toolkit lets nobody die whose handler runs, and the drag runs until the card is dropped.
        Qt.callLater(start);
    }
    function letGo() {
        waiting = false;
    }
    function start() {
        if (!waiting)
            return;
        waiting = false;
        // Returns once the card was dropped somewhere.
        Drag.active = true;
        Drag.active = false;
    }
}
