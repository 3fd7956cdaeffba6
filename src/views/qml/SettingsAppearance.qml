import QtQuick

// How the panel looks. What is chosen shows in it at once.
PageScroll {
    id: page

    required property var presenter
    readonly property var theme: presenter.theme

    SettingsGroup {
        title: qsTr("Theme")

        Flow {
            width: parent.width
            spacing: 14
            Accessible.role: Accessible.Grouping
            Accessible.name: qsTr("Theme")

            Repeater {
                // By number: the list is a new one after every change, the swatches are not.
                model: page.theme.themes.length
                ThemeSwatch {
                    required property int index
                    readonly property var entry: page.theme.themes[index]
                    label: entry.label
                    fill: entry.fill
                    selected: page.theme.theme === entry.name
                    onClicked: page.theme.theme = entry.name
                }
            }
        }
    }
    SettingsGroup {
        SettingSlider {
            text: qsTr("Translucency")
            lowLabel: qsTr("Solid")
            highLabel: qsTr("Clear")
            value: page.theme.translucency
            onMoved: (value) => page.theme.translucency = value
        }
    }
    SettingsGroup {
        visible: page.theme.theme === "custom"
        title: qsTr("Custom colors")

        ColorChoice {
            text: qsTr("Top")
            value: page.theme.customTop
            onPicked: (value) => page.theme.customTop = value
        }
        Rectangle {
            width: parent.width
            height: 1
            color: Style.hairline
        }
        ColorChoice {
            text: qsTr("Bottom")
            value: page.theme.customBottom
            onPicked: (value) => page.theme.customBottom = value
        }
        Rectangle {
            width: parent.width
            height: 1
            color: Style.hairline
        }
        SettingSlider {
            text: qsTr("Strength")
            lowLabel: qsTr("Sheer")
            highLabel: qsTr("Bold")
            minimumValue: 0.15
            maximumValue: 0.9
            value: page.theme.customStrength
            onMoved: (value) => page.theme.customStrength = value
        }
        BodyText {
            width: parent.width
            caption: true
            text: qsTr("Pick two colors — same color twice for a solid tint. The wash sits over the glass.")
        }
    }
}
