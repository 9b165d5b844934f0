// Plays the other party: calls, answers, hangs up, gives up.
import QtQuick
import QtQuick.Layouts
import ZynPhone

PanelSection {
    id: panel

    title: qsTr("The other party")

    component Deed: PhoneButton {
        Layout.fillWidth: true
        Layout.preferredWidth: 1
        tone: PhoneButton.Soft
        font.pixelSize: Theme.small
        leftPadding: Theme.gap
    }

    function callIn() {
        if (number.text !== "")
            DeskNetwork.incoming(number.text, name.text)
    }

    PhoneField {
        id: number

        objectName: "panelNumber"
        Layout.fillWidth: true
        dialable: true
        placeholderText: qsTr("Number of the caller")
        text: "0301112222"
        onAccepted: panel.callIn()
    }
    PhoneField {
        id: name

        objectName: "panelName"
        Layout.fillWidth: true
        placeholderText: qsTr("Name, if the network tells it")
        onAccepted: panel.callIn()
    }
    RowLayout {
        spacing: Theme.gap

        Deed {
            objectName: "panelCallIn"
            tone: PhoneButton.Accent
            text: qsTr("Call in")
            enabled: number.text !== ""
            onClicked: panel.callIn()
        }
        Deed {
            objectName: "panelMissed"
            text: qsTr("Give up")
            onClicked: DeskNetwork.missed()
        }
    }
    RowLayout {
        spacing: Theme.gap

        Deed {
            objectName: "panelAnswer"
            text: qsTr("Answer")
            onClicked: DeskNetwork.answer()
        }
        Deed {
            objectName: "panelHangUp"
            text: qsTr("Hang up")
            onClicked: DeskNetwork.hangUp()
        }
        Deed {
            objectName: "panelFail"
            text: qsTr("Not reached")
            onClicked: DeskNetwork.fail()
        }
    }
}
