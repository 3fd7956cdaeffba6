import QtQuick

// The second step: the task for the assistant.
Column {
    id: connect

    required property var tour

    spacing: 16

    TourTitle {
        text: qsTr("Connect your AI")
    }
    BodyText {
        width: parent.width
        text: qsTr("Dawnly renders whatever your AI writes into its folder. One copy-paste and you are done.")
    }
    ChoiceBar {
        width: parent.width
        activeFocusOnTab: true
        label: qsTr("Your brief")
        choices: [qsTr("I already have a brief"), qsTr("Set one up for me")]
        current: connect.tour.haveBrief ? 0 : 1
        onChosen: (index) => connect.tour.choosePath(index)
    }
    BodyText {
        width: parent.width
        text: connect.tour.haveBrief
            ? qsTr("Paste this delivery block at the end of your existing scheduled task. It teaches your AI where and how to drop the brief.")
            : qsTr("Two ready-made tasks: the morning brief (start here) and an optional evening recap. Paste each into its own scheduled AI task.")
    }
    ChoiceBar {
        width: parent.width
        visible: !connect.tour.haveBrief
        activeFocusOnTab: true
        label: qsTr("Task")
        choices: [qsTr("Morning brief"), qsTr("Evening recap")]
        current: connect.tour.briefTab
        onChosen: (index) => connect.tour.chooseBriefTab(index)
    }
    TaskBox {
        width: parent.width
        height: connect.tour.haveBrief ? 230 : 184
        label: qsTr("Prompt")
        text: connect.tour.prompt
    }
    LabelButton {
        text: connect.tour.haveBrief ? qsTr("Copy Delivery Block")
            : connect.tour.briefTab === 0 ? qsTr("Copy Morning Task") : qsTr("Copy Evening Task")
        symbol: connect.tour.copied ? "checkmark" : "doc.on.doc"
        Accessible.description: connect.tour.copied ? qsTr("Copied") : ""
        onClicked: connect.tour.copy()
    }
}
