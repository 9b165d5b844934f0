// A state that is one of a few: each has a button, that of the present one is marked.
pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts

Flow {
    id: choices

    property string title
    /// Of each: value and text.
    property var options: []
    property int value: -1
    signal chosen(int value)

    Layout.fillWidth: true
    spacing: Theme.gap / 2
    Accessible.role: Accessible.Grouping
    Accessible.name: title

    PhoneText {
        height: Theme.base * 2.8
        rightPadding: Theme.gap
        verticalAlignment: Text.AlignVCenter
        text: choices.title
    }
    Repeater {
        model: choices.options

        PhoneButton {
            required property var modelData

            readonly property bool isCurrent: modelData.value === choices.value

            implicitHeight: Theme.base * 2.8
            leftPadding: Theme.gap * 1.3
            font.pixelSize: Theme.small
            tone: isCurrent ? PhoneButton.Accent : PhoneButton.Soft
            text: modelData.text
            Accessible.name: qsTr("%1: %2").arg(choices.title).arg(modelData.text)
            Accessible.role: Accessible.RadioButton
            Accessible.checked: isCurrent
            onClicked: choices.chosen(modelData.value)
        }
    }
}
