import QtQuick

// A colour, by its number or by hue, saturation and brightness.
Column {
    id: choice

    required property string text
    required property color value
    signal picked(color value)

    // Kept apart from the colour: grey has no hue, and black no saturation either.
    property real hue: 0
    property real saturation: 0
    property real brightness: 0

    width: parent ? parent.width : 0
    spacing: Style.gap

    function pick(h, s, v) {
        hue = h;
        saturation = s;
        brightness = v;
        picked(Qt.hsva(h, s, v, 1));
    }
    function follow() {
        if (Qt.colorEqual(value, Qt.hsva(hue, saturation, brightness, 1)))
            return;
        if (value.hsvHue >= 0)
            hue = value.hsvHue;
        saturation = value.hsvSaturation;
        brightness = value.hsvValue;
    }
    onValueChanged: {
        // What was just picked comes back rounded to whole steps of each component.
        const own = Qt.hsva(hue, saturation, brightness, 1);
        const far = (a, b) => Math.abs(a - b) > 2 / 255;
        if (far(own.r, value.r) || far(own.g, value.g) || far(own.b, value.b))
            follow();
    }
    Component.onCompleted: follow()

    Item {
        width: parent.width
        height: 30

        Text {
            anchors.verticalCenter: parent.verticalCenter
            text: choice.text
            color: Style.text
            font.family: Style.family
            font.pixelSize: Style.bodySize
            font.weight: Font.DemiBold
        }
        Rectangle {
            anchors.right: number.left
            anchors.rightMargin: Style.gap
            width: 44
            height: 30
            radius: 8
            color: choice.value
            border.color: Qt.rgba(1, 1, 1, 0.25)
        }
        TextEntry {
            id: number
            anchors.right: parent.right
            width: 92
            label: qsTr("%1 color as a number").arg(choice.text)
            maximumLength: 7
            validator: RegularExpressionValidator { regularExpression: /#?[0-9a-fA-F]{6}/ }
            onSubmitted: choice.picked("#" + text.replace("#", ""))
            onFocusedChanged: text = Qt.binding(() => choice.value.toString())
            text: choice.value.toString()
        }
    }
    SettingSlider {
        text: qsTr("Hue")
        Accessible.name: qsTr("%1 hue").arg(choice.text)
        value: choice.hue
        stepSize: 1 / 72
        colors: [0, 1, 2, 3, 4, 5, 6].map((sixth) => Qt.hsva(sixth / 6, 1, 1, 1))
        onMoved: (value) => choice.pick(value, choice.saturation, choice.brightness)
    }
    SettingSlider {
        text: qsTr("Saturation")
        Accessible.name: qsTr("%1 saturation").arg(choice.text)
        value: choice.saturation
        colors: [Qt.hsva(choice.hue, 0, choice.brightness, 1), Qt.hsva(choice.hue, 1, choice.brightness, 1)]
        onMoved: (value) => choice.pick(choice.hue, value, choice.brightness)
    }
    SettingSlider {
        text: qsTr("Brightness")
        Accessible.name: qsTr("%1 brightness").arg(choice.text)
        value: choice.brightness
        colors: ["#000000", Qt.hsva(choice.hue, choice.saturation, 1, 1)]
        onMoved: (value) => choice.pick(choice.hue, choice.saturation, value)
    }
}
