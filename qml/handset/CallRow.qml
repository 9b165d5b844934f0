// A call beside the one that is shown large: who it is, its state, and what can be done with it.
import QtQuick
import QtQuick.Layouts
import ZynPhone

Card {
    id: row

    required property LineCall call
    readonly property string party: Phrases.party(call?.name, call?.number)
    readonly property bool waits: call?.state === PhoneCalls.Waiting || call?.state === PhoneCalls.Ringing

    padding: Theme.gap

    contentItem: RowLayout {
        spacing: Theme.gap

        ColumnLayout {
            Layout.fillWidth: true
            Layout.leftMargin: Theme.gap
            spacing: 0

            PhoneText {
                Layout.fillWidth: true
                font.weight: Font.DemiBold
                text: row.party
            }
            PhoneText {
                Layout.fillWidth: true
                font.pixelSize: Theme.small
                color: Theme.soft
                text: Phrases.callState(row.call?.state)
            }
        }
        PhoneButton {
            objectName: "rowAnswerButton"
            visible: row.waits
            bare: true
            tone: PhoneButton.Good
            symbol: "call"
            text: qsTr("Answer %1").arg(row.party)
            onClicked: PhoneCalls.answer(row.call.callId)
        }
        PhoneButton {
            objectName: "rowEndButton"
            bare: true
            tone: PhoneButton.Bad
            symbol: "hangup"
            text: row.waits ? qsTr("Reject %1").arg(row.party) : qsTr("End the call with %1").arg(row.party)
            onClicked: PhoneCalls.end(row.call.callId)
        }
    }
}
