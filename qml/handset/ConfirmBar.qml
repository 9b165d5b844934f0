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

    contentItem: ColumnLayout {
        spacing: Theme.gap / 2

        PhoneText {
            Layout.fillWidth: true
            Layout.leftMargin: Theme.gap
            Layout.rightMargin: Theme.gap
            wrapMode: Text.Wrap
            text: bar.question
        }
        RowLayout {
            Layout.alignment: Qt.AlignRight
            spacing: Theme.gap

            PhoneButton {
                objectName: "declineButton"
                tone: PhoneButton.Plain
                text: bar.destructive ? qsTr("Keep") : qsTr("Cancel")
                onClicked: bar.declined()
            }
            PhoneButton {
                objectName: "confirmButton"
                tone: bar.destructive ? PhoneButton.Bad : PhoneButton.Accent
                text: bar.action
                onClicked: bar.confirmed()
            }
        }
    }
}
