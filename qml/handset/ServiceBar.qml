// Tells that services of the phone do not run, and starts them again.
import QtQuick
import QtQuick.Layouts
import ZynPhone.Handset

Rectangle {
    id: bar

    property Services services: null
    readonly property string fault: services?.fault ?? ""

    objectName: "serviceBar"
    visible: fault !== ""
    implicitHeight: row.implicitHeight + Theme.gap
    color: Theme.warning
    Accessible.role: Accessible.AlertMessage
    Accessible.name: fault

    // Others may start them.
    Timer {
        interval: 3000
        repeat: true
        running: bar.visible
        onTriggered: bar.services.check()
    }
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
            text: bar.fault
        }
        PhoneButton {
            objectName: "restartButton"
            font.pixelSize: Theme.small
            tone: PhoneButton.Soft
            text: qsTr("Start again")
            onClicked: bar.services.start()
        }
    }
}
