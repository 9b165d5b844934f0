// Tells that services of the phone do not run, and starts them again.
import QtQuick
import QtQuick.Layouts

Rectangle {
    id: bar

    objectName: "serviceBar"
    visible: Services.fault !== ""
    implicitHeight: row.implicitHeight + Theme.gap
    color: Theme.warning
    Accessible.role: Accessible.AlertMessage
    Accessible.name: Services.fault

    RowLayout {
        id: row

        anchors.fill: parent
        anchors.leftMargin: Theme.margin
        anchors.rightMargin: Theme.gap

        PhoneText {
            Layout.fillWidth: true
            wrapMode: Text.Wrap
            font.pixelSize: Theme.small
            color: Theme.onTone
            text: Services.fault
        }
        PhoneButton {
            objectName: "restartButton"
            font.pixelSize: Theme.small
            tone: PhoneButton.Soft
            text: qsTr("Start again")
            onClicked: Services.start()
        }
    }
}
