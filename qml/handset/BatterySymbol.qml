// The battery: how full it is, whether it is being charged, and whether it needs to be.
import QtQuick

Row {
    id: battery

    /// In percent; less than 0 is unknown.
    property int capacity: -1
    /// Shows the picture alone.
    property bool compact: false
    property bool charging: false
    property bool low: false

    spacing: Theme.gap / 3
    Accessible.role: Accessible.Indicator
    Accessible.name: capacity < 0 ? qsTr("Battery: unknown")
        : charging ? qsTr("Battery: %1 %, charging").arg(capacity) : qsTr("Battery: %1 %").arg(capacity)

    PhoneText {
        anchors.verticalCenter: parent.verticalCenter
        visible: battery.capacity >= 0 && !battery.compact
        font.pixelSize: Theme.small
        text: qsTr("%1 %").arg(battery.capacity)
        Accessible.ignored: true
    }
    Item {
        anchors.verticalCenter: parent.verticalCenter
        width: Theme.base * 1.9
        height: Theme.base

        Rectangle {
            id: shell

            width: parent.width - 3
            height: parent.height
            radius: 3
            color: "transparent"
            border.width: 1.5
            border.color: battery.low ? Theme.bad : Theme.text

            Rectangle {
                x: 3
                y: 3
                height: parent.height - 6
                width: (parent.width - 6) * Math.max(0, Math.min(100, battery.capacity)) / 100
                radius: 1
                color: battery.low ? Theme.bad : battery.charging ? Theme.good : Theme.text
            }
        }
        Rectangle {
            anchors.left: shell.right
            anchors.verticalCenter: shell.verticalCenter
            width: 2
            height: parent.height / 2
            radius: 1
            color: shell.border.color
        }
    }
    Icon {
        anchors.verticalCenter: parent.verticalCenter
        visible: battery.charging
        name: "bolt"
        size: Theme.base
        color: Theme.good
    }
}
