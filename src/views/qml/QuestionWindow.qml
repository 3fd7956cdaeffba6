import QtQuick
import Sunpane

// Asks something: what it is about, which scrolls where the screen has no room for all of it, and below it the answers,
// which are given as children.
ProgramWindow {
    id: question

    property string symbol: ""
    required property string message
    required property string informativeText
    default property alias answers: answers.data
    // Escape, or the window's own button.
    signal dismissed

    width: Math.min(420, mostWidth)
    height: Math.min(page.needed + answers.implicitHeight + answers.anchors.bottomMargin, mostHeight)
    minimumWidth: width
    maximumWidth: width
    minimumHeight: height
    maximumHeight: height
    flags: Qt.Dialog | Qt.CustomizeWindowHint | Qt.WindowTitleHint | Qt.WindowSystemMenuHint | Qt.WindowCloseButtonHint
        | Qt.WindowStaysOnTopHint
    lift: 1 / 3
    leastTop: 28

    // The window's size must be known before it is shown.
    Component.onCompleted: {
        words.forceLayout();
        answers.forceLayout();
        place();
    }
    onClosing: dismissed()

    FocusScope {
        anchors.fill: parent
        focus: true
        Accessible.role: Accessible.AlertMessage
        Accessible.name: question.message
        Keys.onEscapePressed: question.dismissed()
        Keys.onDownPressed: question.moveFocus(true)
        Keys.onUpPressed: question.moveFocus(false)

        PageScroll {
            id: page
            readonly property real needed: words.implicitHeight + 2 * padding + 4
            // The window's: its content gets its own only when it is shown.
            width: question.width
            anchors.top: parent.top
            anchors.bottom: answers.top
            anchors.bottomMargin: 4

            Column {
                id: words
                width: parent.width
                spacing: Style.inset

                SymbolIcon {
                    visible: question.symbol.length > 0
                    width: 34
                    height: 34
                    symbol: question.symbol
                    color: Style.priority
                }
                Text {
                    width: parent.width
                    wrapMode: Text.Wrap
                    text: question.message
                    color: Style.text
                    font.family: Style.family
                    font.pixelSize: Style.titleSize
                    font.weight: Font.DemiBold
                    Accessible.role: Accessible.Heading
                    Accessible.name: text
                }
                BodyText {
                    width: parent.width
                    text: question.informativeText
                }
            }
        }
        Column {
            id: answers
            x: 24
            width: question.width - 48
            anchors.bottom: parent.bottom
            anchors.bottomMargin: 24
            spacing: Style.inset
        }
    }

    function moveFocus(forward) {
        const next = (activeFocusItem ?? answers).nextItemInFocusChain(forward);
        if (next)
            next.forceActiveFocus(forward ? Qt.TabFocusReason : Qt.BacktabFocusReason);
    }
}
