// A count on a corner, hidden while there is none.
import QtQuick

Rectangle {
    id: badge

    property int count
    property color ink: Theme.onTone

    visible: count > 0
    implicitHeight: Theme.base * 1.6
    implicitWidth: Math.max(implicitHeight, label.implicitWidth + Theme.gap)
    radius: height / 2
    color: Theme.bad

    PhoneText {
        id: label

        anchors.centerIn: parent
        text: badge.count > 99 ? qsTr("99+") : badge.count
        color: badge.ink
        font.pixelSize: Theme.small
        font.bold: true
        Accessible.ignored: true
    }
}
