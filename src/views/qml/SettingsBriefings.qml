import QtQuick
import Sunpane

// Where the briefings are.
PageScroll {
    id: page

    required property var presenter

    SettingsGroup {
        title: qsTr("Folder")

        Row {
            width: parent.width
            spacing: 10

            SymbolIcon {
                width: 18
                height: 18
                symbol: "folder"
                color: Style.priority
            }
            Text {
                width: parent.width - 28
                text: page.presenter.watchedFolder
                textFormat: Text.PlainText
                wrapMode: Text.WrapAnywhere
                color: Style.text
                font.family: Style.family
                font.pixelSize: Style.bodySize
                Accessible.role: Accessible.StaticText
                Accessible.name: qsTr("Briefings folder: %1").arg(text)
            }
        }
        Flow {
            width: parent.width
            spacing: Style.gap

            LabelButton {
                text: qsTr("Choose Folder…")
                onClicked: page.presenter.pickFolder()
            }
            LabelButton {
                text: qsTr("Open in Finder")
                onClicked: page.presenter.openFolder()
            }
            LabelButton {
                text: qsTr("Reset to Default")
                visible: !page.presenter.usesDefaultFolder
                onClicked: page.presenter.resetFolder()
            }
        }
        BodyText {
            width: parent.width
            visible: page.presenter.otherStoresFolder.length > 0
            text: qsTr("Your todos and flags are still in %1. From the next start on Dawnly keeps them, and its feedback for your AI, in the folder above; copy todos.json and itemflags.json there to take them along.").arg(page.presenter.otherStoresFolder)
        }
        BodyText {
            width: parent.width
            caption: true
            text: qsTr("The notch mirrors this folder — point it anywhere your briefing task can write (one YYYY-MM-DD.md per day).")
        }
        BodyText {
            width: parent.width
            caption: true
            text: qsTr("💡 A local folder is the safest and fastest option: nothing ever leaves your Mac. Use an iCloud folder only if you want device sync. Either way Dawnly keeps itself tiny — 30 days of briefings, stale flags auto-expire; a year of use is a few hundred KB.")
        }
    }
}
