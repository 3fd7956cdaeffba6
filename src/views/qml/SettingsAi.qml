import QtQuick

// The tasks for the assistant that writes the briefings.
PageScroll {
    id: page

    required property var presenter

    BodyText {
        width: parent.width
        text: qsTr("Two ready-made tasks: schedule each in your AI (Claude, ChatGPT, any agent) with one paste. The morning brief is the heart of Dawnly; the evening recap is the optional second half.")
    }
    SettingsGroup {
        title: qsTr("1 · Morning brief")

        TaskBox {
            width: parent.width
            label: qsTr("Morning brief task")
            text: page.presenter.morningTask
        }
        CopyButton {
            text: qsTr("Copy Task Prompt")
            onCopy: page.presenter.copyMorningTask()
        }
    }
    SettingsGroup {
        title: qsTr("2 · Evening recap (optional)")

        TaskBox {
            width: parent.width
            label: qsTr("Evening recap task")
            text: page.presenter.eveningTask
        }
        CopyButton {
            text: qsTr("Copy Task Prompt")
            onCopy: page.presenter.copyEveningTask()
        }
    }
    SettingsGroup {
        BodyText {
            width: parent.width
            text: qsTr("Already have a brief task? The short delivery block from the Welcome Tour is all it needs.")
        }
        CopyButton {
            text: qsTr("Copy Delivery Block")
            onCopy: page.presenter.copyDeliveryBlock()
        }
    }
}
