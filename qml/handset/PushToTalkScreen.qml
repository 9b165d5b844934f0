// Push-to-talk: one or several numbers are chosen, called together, and dropped.
pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import ZynPhone

PhoneScreen {
    id: screen

    property var chosen: []
    /// A call was asked for here, and is not over yet.
    property bool talking: false

    objectName: "pushToTalkScreen"
    title: qsTr("Push-to-talk")

    function toggle(number) {
        chosen = chosen.includes(number) ? chosen.filter(other => other !== number) : chosen.concat(number)
    }

    function add() {
        if (field.text !== "" && !chosen.includes(field.text))
            chosen = chosen.concat(field.text)
        field.clear()
    }

    function call() {
        talking = PushToTalk.call(chosen.map(number => favouriteOf(number)?.dialNumber ?? number))
    }

    Connections {
        target: PushToTalk

        function onFailed(reason) {
            Navigation.say(reason)
        }
    }

    component NumberChip: PhoneButton {
        required property string number
        required property string dialNumber

        readonly property bool isChosen: screen.chosen.includes(number)

        objectName: "chip" + number
        visible: number !== ""
        implicitHeight: Theme.base * 3
        font.pixelSize: Theme.small
        symbol: isChosen ? "check" : "plus"
        symbolSize: Theme.base * 1.3
        tone: isChosen ? PhoneButton.Accent : PhoneButton.Soft
        text: Parties.nameOf(dialNumber) || dialNumber
        Accessible.role: Accessible.CheckBox
        Accessible.checked: isChosen
        onClicked: screen.toggle(number)
    }

    ColumnLayout {
        anchors.fill: parent
        anchors.margins: Theme.margin
        anchors.topMargin: 0
        spacing: Theme.margin

        PhoneText {
            Layout.fillWidth: true
            wrapMode: Text.Wrap
            color: Theme.soft
            text: qsTr("Choose whom to talk to. Several are called together.")
        }
        Flow {
            Layout.fillWidth: true
            spacing: Theme.gap

            Repeater {
                model: Parties.favourites

                NumberChip {}
            }
            Repeater {
                // Those that were typed: a favourite has its chip already.
                model: screen.chosen.filter(number => !screen.favouriteOf(number))

                NumberChip {
                    required property string modelData

                    number: modelData
                    dialNumber: modelData
                }
            }
        }
        RowLayout {
            spacing: Theme.gap

            PhoneField {
                id: field

                objectName: "talkNumber"
                Layout.fillWidth: true
                focus: true
                dialable: true
                placeholderText: qsTr("Another number")
                onAccepted: screen.add()
            }
            PhoneButton {
                objectName: "talkAdd"
                tone: PhoneButton.Soft
                bare: true
                symbol: "plus"
                text: qsTr("Add the number")
                enabled: field.text !== ""
                onClicked: screen.add()
            }
        }
        Item {
            Layout.fillHeight: true
        }
        PhoneButton {
            objectName: "talkButton"
            Layout.alignment: Qt.AlignHCenter
            implicitWidth: Theme.base * 12
            implicitHeight: implicitWidth
            bare: true
            tone: screen.talking ? PhoneButton.Bad : PhoneButton.Good
            symbol: screen.talking ? "stop" : "talk"
            symbolSize: Theme.base * 5
            text: screen.talking ? qsTr("Drop the call") : qsTr("Talk")
            enabled: screen.talking || screen.chosen.length > 0
            onClicked: {
                if (screen.talking) {
                    PushToTalk.drop()
                    screen.talking = false
                } else {
                    screen.call()
                }
            }
        }
        PhoneText {
            Layout.fillWidth: true
            horizontalAlignment: Text.AlignHCenter
            color: Theme.soft
            text: screen.talking ? qsTr("Press to drop the call")
                : screen.chosen.length > 0 ? qsTr("Talk to %n party(ies)", "", screen.chosen.length)
                : qsTr("Nobody is chosen")
        }
        Item {
            Layout.fillHeight: true
        }
    }

    // The call may be dropped elsewhere.
    Instantiator {
        model: PhoneCalls.calls
        onObjectRemoved: (index, object) => {
            if ((object as LineCall).type === "ptt")
                screen.talking = false
        }

        LineCall {}
    }
    Instantiator {
        id: known

        model: Parties.favourites

        QtObject {
            required property string number
            required property string dialNumber
        }
    }

    function favouriteOf(number) {
        for (let index = 0; index < known.count; ++index) {
            const favourite = known.objectAt(index)
            if (favourite?.number === number)
                return favourite
        }
        return null
    }
}
