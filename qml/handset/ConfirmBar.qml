// A question that is asked where it arises, in the place of a dialog.
import QtQuick
import QtQuick.Layouts

Card {
    id: bar

    property string question
    property string action
    property bool destructive: true
    signal confirmed
    signal declined

    padding: Theme.gap
    Accessible.role: Accessible.AlertMessage
    Accessible.name: question

    contentItem: RowLayout {
        spacing: Theme.gap

        PhoneText {
            Layout.fillWidth: true
            Layout.leftMargin: Theme.gap
            wrapMode: Text.Wrap
            font.pixelSize: Theme.small
            text: bar.question
        }
        PhoneButton {
            objectName: "declineButton"
            font.pixelSize: Theme.small
            leftPadding: Theme.gap
            tone: PhoneButton.Plain
            text: bar.destructive ? qsTr("Keep") : qsTr("Cancel")
            onClicked: bar.declined()
        }
        PhoneButton {
            objectName: "confirmButton"
            font.pixelSize: Theme.small
            tone: bar.destructive ? PhoneButton.Bad : PhoneButton.Accent
            text: bar.action
            onClicked: bar.confirmed()
        }
    }
}
