import QtQuick

// The settings: a list of pages, and the page that is chosen.
ProgramWindow {
    id: settings

    required property var presenter
    property int tab: 0
    readonly property var pages: [
        { label: qsTr("Appearance"), symbol: "paintpalette", component: appearance },
        { label: qsTr("General"), symbol: "gearshape", component: general },
        { label: qsTr("Briefings"), symbol: "folder", component: briefings },
        { label: qsTr("AI Setup"), symbol: "sparkles", component: ai }
    ]

    // Smaller only where the screen is, as one with large letters.
    width: Math.min(680, mostWidth)
    height: Math.min(520, mostHeight)
    minimumWidth: width
    maximumWidth: width
    minimumHeight: height
    maximumHeight: height
    leastTop: 28

    Component {
        id: appearance
        SettingsAppearance { presenter: settings.presenter }
    }
    Component {
        id: general
        SettingsGeneral { presenter: settings.presenter }
    }
    Component {
        id: briefings
        SettingsBriefings { presenter: settings.presenter }
    }
    Component {
        id: ai
        SettingsAi { presenter: settings.presenter }
    }

    Rectangle {
        id: sidebar
        width: 168
        height: parent.height
        color: Qt.rgba(0, 0, 0, 0.25)

        Column {
            x: 10
            y: 14
            width: parent.width - 20
            spacing: 2
            Accessible.role: Accessible.PageTabList
            Accessible.name: qsTr("Settings")

            Repeater {
                model: settings.pages.length
                SidebarEntry {
                    required property int index
                    text: settings.pages[index].label
                    symbol: settings.pages[index].symbol
                    page: true
                    selected: settings.tab === index
                    onClicked: settings.tab = index
                }
            }
        }
        Column {
            x: 10
            anchors.bottom: parent.bottom
            anchors.bottomMargin: 14
            width: parent.width - 20
            spacing: 2

            SidebarEntry {
                text: qsTr("Welcome Tour")
                symbol: "hand.wave"
                onClicked: settings.presenter.showTour()
            }
            SidebarEntry {
                text: qsTr("Quit Dawnly")
                symbol: "power"
                onClicked: settings.presenter.quit()
            }
        }
        Rectangle {
            anchors.right: parent.right
            width: 1
            height: parent.height
            color: Style.hairline
        }
    }
    Loader {
        anchors.left: sidebar.right
        anchors.right: parent.right
        height: parent.height
        sourceComponent: settings.pages[settings.tab].component
    }
}
