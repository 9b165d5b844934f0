// What stands where a list would be: that there is nothing, or why nothing is known, and what to do about it.
import QtQuick
import QtQuick.Layouts

ColumnLayout {
    id: placeholder

    property string symbol
    property string title
    property string text
    property string action
    signal acted

    spacing: Theme.gap

    Rectangle {
        Layout.alignment: Qt.AlignHCenter
        implicitWidth: Theme.base * 6
        implicitHeight: implicitWidth
        radius: width / 2
        color: Theme.raised

        Icon {
            anchors.centerIn: parent
            name: placeholder.symbol
            size: Theme.base * 3
            color: Theme.soft
        }
    }
    PhoneText {
        Layout.fillWidth: true
        Layout.topMargin: Theme.gap
        horizontalAlignment: Text.AlignHCenter
        wrapMode: Text.Wrap
        font.pixelSize: Theme.title
        text: placeholder.title
    }
    PhoneText {
        Layout.fillWidth: true
        horizontalAlignment: Text.AlignHCenter
        wrapMode: Text.Wrap
        color: Theme.soft
        visible: text !== ""
        text: placeholder.text
    }
    PhoneButton {
        objectName: "placeholderAction"
        Layout.alignment: Qt.AlignHCenter
        visible: text !== ""
        tone: PhoneButton.Soft
        text: placeholder.action
        onClicked: placeholder.acted()
    }
}
