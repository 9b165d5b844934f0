// A place of the favourites: the number with its counters and what can be done with it, or an empty place.
import QtQuick
import QtQuick.Layouts

Card {
    id: row

    required property int index
    required property string number
    required property string dialNumber
    required property bool taken
    required property int missedCalls
    required property int unreadMessages
    /// "" shows the place; "edit" and "remove" ask about it.
    property string asking
    property string proposal
    signal stored(string number, string name)
    signal removed

    readonly property string partyName: Parties.nameOf(dialNumber)
    readonly property string partyText: partyName || dialNumber
    readonly property string summary: Phrases.unread(missedCalls, unreadMessages)

    objectName: "favouriteRow" + index
    // What was asked was about the one before.
    onNumberChanged: asking = ""
    padding: Theme.gap

    contentItem: ColumnLayout {
        spacing: Theme.gap

        RowLayout {
            visible: row.asking === ""
            spacing: 0

            PhoneText {
                Layout.preferredWidth: Theme.base * 2.2
                horizontalAlignment: Text.AlignHCenter
                color: Theme.soft
                text: row.index + 1
                Accessible.ignored: true
            }
            ColumnLayout {
                spacing: 0

                PhoneText {
                    Layout.fillWidth: true
                    elide: row.partyName === "" ? Text.ElideLeft : Text.ElideRight
                    color: row.taken ? Theme.text : Theme.soft
                    text: row.taken ? row.partyText : qsTr("Empty place")
                }
                PhoneText {
                    Layout.fillWidth: true
                    visible: text !== ""
                    font.pixelSize: Theme.small
                    color: Theme.bad
                    text: row.summary
                }
            }
            PhoneButton {
                objectName: "addButton"
                visible: !row.taken
                bare: true
                symbol: "plus"
                text: qsTr("Add a number on place %1").arg(row.index + 1)
                onClicked: row.asking = "edit"
            }
            Repeater {
                model: row.taken ? row.deeds : []

                PhoneButton {
                    required property var modelData

                    objectName: modelData.name
                    bare: true
                    padding: Theme.gap / 2
                    implicitWidth: Theme.base * 3
                    symbol: modelData.symbol
                    symbolSize: Theme.base * 1.6
                    text: modelData.text
                    onClicked: modelData.act()
                }
            }
        }
        NumberEditor {
            Layout.fillWidth: true
            visible: row.asking === "edit"
            number: row.proposal
            onStored: (number, name) => {
                row.asking = ""
                row.stored(number, name)
            }
            onCancelled: row.asking = ""
        }
        ConfirmBar {
            Layout.fillWidth: true
            visible: row.asking === "remove"
            background: null
            question: qsTr("Remove %1? What is logged of it goes, too.").arg(row.partyText)
            action: qsTr("Remove")
            onConfirmed: {
                row.asking = ""
                row.removed()
            }
            onDeclined: row.asking = ""
        }
    }

    readonly property var deeds: [
        {"name": "favouriteCall", "symbol": "call", "text": qsTr("Call %1").arg(partyText),
            "act": () => Dialing.call(dialNumber, partyName)},
        {"name": "favouriteLog", "symbol": "clock", "text": qsTr("What happened with %1").arg(partyText),
            "act": () => Navigation.open("activity", {"number": number, "dialNumber": dialNumber})},
        {"name": "favouriteReplace", "symbol": "edit", "text": qsTr("Replace %1").arg(partyText),
            "act": () => { asking = "edit" }},
        {"name": "favouriteRemove", "symbol": "delete", "text": qsTr("Remove %1").arg(partyText),
            "act": () => { asking = "remove" }}
    ]
}
