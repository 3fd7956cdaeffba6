import QtQuick
import Sunpane

// A section of the briefing: a header, and when it is open, its introduction and its cards. A recap has no header of
// its own and stays open.
Item {
    id: section

    required property string title
    required property string spokenTitle
    required property string intro
    required property string spokenIntro
    required property int sectionId
    required property var cards
    required property int itemCount
    required property bool recap
    // Priorities that the briefing does not mention.
    required property bool missed
    required property bool isOpen
    required property var spring
    property bool animated: false
    // The column that shows the section.
    required property var host
    signal toggled

    readonly property bool unfolded: recap || isOpen
    readonly property real headerHeight: recap ? Style.inset : 38
    // What the section takes once its motion has ended.
    readonly property real targetHeight: headerHeight + (unfolded && body.item ? body.item.implicitHeight : 0)
    property real shownHeight: targetHeight

    height: shownHeight
    implicitHeight: targetHeight
    clip: true

    function settle() {
        if (body.item)
            body.item.settle();
    }

    // Priorities that the briefing misses come in where everything else stands.
    Component.onCompleted: {
        if (missed && animated)
            appearing.start();
    }
    ParallelAnimation {
        id: appearing
        NumberAnimation {
            target: section
            property: "opacity"
            from: 0
            to: 1
            duration: section.spring.duration
        }
        NumberAnimation {
            target: section
            property: "scale"
            from: 0.92
            to: 1
            duration: Style.motion(section.spring)
            easing: section.spring.curve
        }
    }

    Behavior on shownHeight {
        enabled: section.animated
        NumberAnimation {
            duration: Style.motion(section.spring)
            easing: section.spring.curve
        }
    }

    Rectangle {
        anchors.fill: parent
        radius: Style.sectionRadius
        color: Style.section
        border.color: Style.hairline
    }

    Pressable {
        id: header
        readonly property bool inColumn: true
        width: parent.width
        height: section.headerHeight
        visible: !section.recap

        Accessible.name: section.spokenTitle + ", " + Style.counted(section.itemCount, qsTr("1 card"), qsTr("%1 cards"))
        Accessible.description: section.isOpen ? qsTr("expanded") : qsTr("collapsed")
        onClicked: section.toggled()

        Rectangle {
            anchors.fill: parent
            radius: Style.sectionRadius
            color: area.pressed ? Style.pressed : Style.hover
            visible: area.containsMouse
        }
        Text {
            anchors.verticalCenter: parent.verticalCenter
            anchors.left: parent.left
            anchors.leftMargin: Style.inset
            anchors.right: count.left
            anchors.rightMargin: Style.gap
            text: section.title
            textFormat: Text.StyledText
            elide: Text.ElideRight
            maximumLineCount: 1
            color: section.missed ? Style.priority : Style.text
            font.family: Style.family
            font.pixelSize: Style.bodySize
            font.weight: Font.DemiBold
        }
        Text {
            id: count
            anchors.verticalCenter: parent.verticalCenter
            anchors.right: chevron.left
            anchors.rightMargin: Style.gap
            text: section.itemCount
            visible: !section.isOpen && section.itemCount > 0
            color: Style.secondaryText
            font.family: Style.family
            font.pixelSize: Style.bodySize
        }
        SymbolIcon {
            id: chevron
            anchors.verticalCenter: parent.verticalCenter
            anchors.right: parent.right
            anchors.rightMargin: Style.inset
            width: 11
            height: 11
            symbol: "chevron.down"
            color: Style.secondaryText
            rotation: section.isOpen ? 0 : -90
            Behavior on rotation {
                enabled: section.animated
                NumberAnimation {
                    duration: Style.motion(section.spring)
                    easing: section.spring.curve
                }
            }
        }
        FocusRing {
            control: header
            radius: Style.sectionRadius
        }
        MouseArea {
            id: area
            anchors.fill: parent
            hoverEnabled: true
            onClicked: section.toggled()
        }
    }

    Loader {
        id: body
        y: section.headerHeight
        width: parent.width
        // Stays until the section has folded over it.
        active: section.unfolded || section.shownHeight > section.headerHeight + 0.5

        sourceComponent: Item {
            implicitHeight: stack.y + stack.height + Style.inset
            function settle() {
                stack.forceLayout();
            }
            opacity: section.unfolded ? 1 : 0
            Behavior on opacity {
                enabled: section.animated
                NumberAnimation { duration: 140 }
            }

            Text {
                id: introText
                // What the column asks of whatever has links: its section, and which card; this is none.
                readonly property int sectionId: section.sectionId
                readonly property int index: -1
                readonly property bool inColumn: true
                readonly property bool hasLinks: section.intro.includes("<a href")

                activeFocusOnTab: hasLinks
                Keys.onPressed: (event) => {
                    event.accepted = event.key === Qt.Key_Return || event.key === Qt.Key_Enter
                        || event.key === Qt.Key_O && event.modifiers === Qt.NoModifier;
                    if (event.accepted && !event.isAutoRepeat)
                        section.host.openLinks(introText);
                }
                onLinkActivated: (link) => section.host.cards.openLink(sectionId, index, parseInt(link))

                Accessible.role: Accessible.StaticText
                Accessible.name: section.spokenIntro
                Accessible.focusable: hasLinks
                Accessible.onPressAction: section.host.openLinks(introText)

                HoverHandler {
                    cursorShape: introText.linkAt(point.position.x, point.position.y).length > 0 ? Qt.PointingHandCursor : Qt.ArrowCursor
                }
                FocusRing {
                    control: introText
                    radius: 4
                }
                linkColor: Style.link
                x: Style.inset
                width: parent.width - 2 * Style.inset
                visible: text.length > 0
                text: section.intro
                textFormat: Text.StyledText
                wrapMode: Text.Wrap
                color: Style.secondaryText
                font.family: Style.family
                font.pixelSize: Style.bodySize
                lineHeight: 1.15
            }
            Column {
                id: stack
                x: Style.inset
                y: section.intro.length > 0 ? introText.implicitHeight + Style.gap : 0
                width: parent.width - 2 * Style.inset
                spacing: 6
                Repeater {
                    id: shownCards
                    model: section.cards
                    ItemBento {
                        width: stack.width
                        sectionId: section.sectionId
                        missed: section.missed
                        host: section.host
                    }
                }
                Text {
                    visible: section.itemCount > shownCards.count
                    text: qsTr("%1 more in the file").arg(section.itemCount - shownCards.count)
                    color: Style.tertiaryText
                    font.family: Style.family
                    font.pixelSize: Style.captionSize
                    Accessible.role: Accessible.StaticText
                    Accessible.name: text
                }
            }
        }
    }
}
