pragma Singleton
import QtQuick

// The panel's look in one place: every colour, size, font and measure that more than one view uses.
QtObject {
    readonly property string family: "Inter"
    readonly property int titleSize: 16
    readonly property int bodySize: 13
    readonly property int captionSize: 11

    readonly property color text: Qt.rgba(1, 1, 1, 0.92)
    readonly property color secondaryText: Qt.rgba(1, 1, 1, 0.55)
    readonly property color tertiaryText: Qt.rgba(1, 1, 1, 0.40)

    // How strongly the panel's surfaces darken what is behind them, from 0 to 1; the root view sets it, so that text
    // on them stays readable in every theme.
    property real scrim: 0

    // Whether things come and go without moving; the root view sets it.
    property bool reducedMotion: false

    readonly property color panelBottom: "#1f1b1d"
    readonly property color section: onScrim(1, 1, 1, 0.06)
    readonly property color hairline: Qt.rgba(1, 1, 1, 0.07)
    readonly property color card: Qt.rgba(1, 1, 1, 0.04)
    readonly property color hover: Qt.rgba(1, 1, 1, 0.04)
    // A card on its way over a colour.
    readonly property color lifted: "#e61c1a1b"
    readonly property color pressed: Qt.rgba(1, 1, 1, 0.08)

    // The same in windows that nothing shines through.
    readonly property color windowSection: Qt.rgba(1, 1, 1, 0.06)
    readonly property color windowMeeting: Qt.rgba(0.188, 0.82, 0.345, 0.11)

    readonly property color priority: "#ff9f0a"
    readonly property color clear: "#30d158"
    readonly property color remove: "#ff453a"
    readonly property color focus: "#0a84ff"
    readonly property color link: "#64b0ff"

    readonly property color meeting: onScrim(0.188, 0.82, 0.345, 0.11)
    readonly property color meetingEdge: Qt.rgba(0.188, 0.82, 0.345, 0.30)
    readonly property color joinQuiet: Qt.rgba(0.188, 0.82, 0.345, 0.14)
    readonly property color joinEdge: Qt.rgba(0.188, 0.82, 0.345, 0.45)
    // Words on an accent's own colour.
    readonly property color onAccent: "#0b1f10"
    readonly property color starInk: "#2b1a00"

    readonly property color priorityCard: Qt.rgba(1, 0.624, 0.039, 0.17)
    readonly property color priorityEdge: Qt.rgba(1, 0.624, 0.039, 0.55)

    readonly property int panelRadius: 22
    readonly property int sectionRadius: 14
    readonly property int cardRadius: 10
    readonly property int gap: 8
    readonly property int inset: 12
    readonly property int margin: 20

    // Whether the pointer moved further (points) than a hand does that holds something still.
    function isMeant(dx, dy) {
        return Math.hypot(dx, dy) > 8;
    }
    // A layer of a colour above the scrim, as one colour.
    function onScrim(red, green, blue, opacity) {
        const whole = 1 - (1 - scrim) * (1 - opacity);
        const part = opacity / whole;
        return Qt.rgba(red * part, green * part, blue * part, whole);
    }
    // How long what a spring drives is on its way (ms). Fades do not ask: they move nothing.
    function motion(spring) {
        return reducedMotion ? 0 : spring.duration;
    }
    function counted(count, one, many) {
        return count === 1 ? one : many.arg(count);
    }
}
