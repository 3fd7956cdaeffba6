import QtQuick
import Sunpane

// Fills while the button is held, and tells when it was held long enough. Whoever uses it places it, calls `begin` when
// the button goes down and `cancel` when it comes up or moves away.
Item {
    id: ring

    readonly property bool holding: hold.running
    signal held

    implicitWidth: 20
    implicitHeight: 20
    visible: arc.progress > 0

    function begin() {
        emptying.stop();
        hold.restart();
        filling.restart();
    }
    // Does nothing once the hold is over.
    function cancel() {
        if (!hold.running)
            return;
        hold.stop();
        filling.stop();
        emptying.pause = 0;
        emptying.length = 180;
        emptying.restart();
    }

    Timer {
        id: hold
        interval: 450
        onTriggered: {
            emptying.pause = 200;
            emptying.length = 300;
            ring.held();
            emptying.restart();
        }
    }
    NumberAnimation {
        id: filling
        target: arc
        property: "progress"
        from: 0
        to: 1
        duration: hold.interval
    }
    SequentialAnimation {
        id: emptying
        property int pause: 0
        property int length: 180
        PauseAnimation {
            duration: emptying.pause
        }
        NumberAnimation {
            target: arc
            property: "progress"
            to: 0
            duration: emptying.length
            easing.type: Easing.OutQuad
        }
    }
    ProgressArc {
        id: arc
        anchors.fill: parent
        color: Style.text
        trackColor: Qt.rgba(1, 1, 1, 0.15)
    }
}
