// The dialer: a number is typed by keypad or keyboard, and called. Holding 1 to 9 is speed dial.
import QtQuick
import QtQuick.Layouts
import ZynPhone

PhoneScreen {
    id: screen

    /// A number to begin with, as when its first digit was typed elsewhere.
    property string number
    /// The key whose place of speed dial is to be decided; 0 without one.
    property int storeKey: 0

    readonly property bool refused: Dialing.restricted && emergency.verdict !== EmergencyNumber.Empty
        && !emergency.emergency

    objectName: "dialerScreen"
    title: qsTr("Keypad")
    Component.onCompleted: field.text = number
    Keys.onCallPressed: event => {
        if (!event.isAutoRepeat)
            call()
    }

    function call() {
        if (field.text === "" && recents.lastDialed)
            field.text = recents.lastDialed
        else if (field.text !== "" && Dialing.call(field.text))
            field.clear()
    }

    function type(sign) {
        field.forceActiveFocus()
        field.insert(field.cursorPosition, sign)
    }

    function hold(digit) {
        const key = Number(digit)
        if (digit === "0") {
            field.insert(field.cursorPosition, "+")
            return
        }
        if (!(key >= 1)) {
            field.insert(field.cursorPosition, digit)
            return
        }
        const stored = speedDial.numberFor(key)
        if (field.text !== "")
            storeKey = key
        else if (stored)
            Dialing.call(stored)
        else
            Navigation.say(qsTr("Key %1 has no number yet. Type the number, then hold the key.").arg(key))
    }

    SpeedDialModel {
        id: speedDial

        onFailed: reason => Navigation.say(reason)
    }
    RecentCallsModel {
        id: recents

        category: RecentCallsModel.Dialed
    }
    Connections {
        target: Dialing

        function onRestrictedChanged() {
            emergency.refresh()
        }
    }
    EmergencyNumber {
        id: emergency

        text: field.text
    }

    ColumnLayout {
        anchors.fill: parent
        anchors.margins: Theme.margin
        anchors.topMargin: 0
        spacing: Theme.gap

        PhoneField {
            id: field

            objectName: "numberField"
            Layout.fillWidth: true
            implicitHeight: Theme.base * 4.5
            dialable: true
            focus: true
            font.pixelSize: Math.min(Theme.large, Theme.large * 15 / Math.max(15, text.length))
            horizontalAlignment: TextInput.AlignHCenter
            placeholderText: qsTr("Number")
            onTextChanged: screen.storeKey = 0
            onAccepted: screen.call()
        }
        PhoneText {
            objectName: "verdict"
            Layout.fillWidth: true
            horizontalAlignment: Text.AlignHCenter
            wrapMode: Text.Wrap
            font.pixelSize: Theme.small
            readonly property bool matters: emergency.verdict === EmergencyNumber.Emergency
                || emergency.verdict === EmergencyNumber.Possible || screen.refused
            color: emergency.emergency || screen.refused ? Theme.bad : Theme.soft
            text: matters ? emergency.reason : " "
            Accessible.ignored: !matters
        }
        ConfirmBar {
            objectName: "storeOffer"
            Layout.fillWidth: true
            visible: screen.storeKey > 0
            question: speedDial.numberFor(screen.storeKey)
                ? qsTr("Key %1 calls %2. Have it call %3?").arg(screen.storeKey)
                    .arg(speedDial.numberFor(screen.storeKey)).arg(field.text)
                : qsTr("Have key %1 call %2?").arg(screen.storeKey).arg(field.text)
            action: qsTr("Store")
            destructive: false
            onConfirmed: {
                speedDial.set(screen.storeKey, field.text)
                Navigation.say(qsTr("Hold %1 to call %2.").arg(screen.storeKey).arg(field.text))
                screen.storeKey = 0
            }
            onDeclined: screen.storeKey = 0
        }
        Keypad {
            Layout.fillWidth: true
            Layout.fillHeight: true
            Layout.maximumHeight: Theme.base * 24
            onPressed: digit => field.insert(field.cursorPosition, digit)
            onHeld: digit => screen.hold(digit)
        }
        RowLayout {
            Layout.fillWidth: true
            Layout.topMargin: Theme.gap
            spacing: Theme.gap

            PhoneButton {
                objectName: "favouriteButton"
                Layout.fillWidth: true
                Layout.preferredWidth: 1
                bare: true
                symbol: "star"
                text: qsTr("Make it a favourite")
                enabled: field.text !== ""
                onClicked: Navigation.go("favourites", {"number": field.text})
            }
            PhoneButton {
                objectName: "callButton"
                Layout.fillWidth: true
                Layout.preferredWidth: 1
                implicitHeight: Theme.base * 4.6
                bare: true
                tone: PhoneButton.Good
                symbol: "call"
                symbolSize: Theme.base * 2.4
                text: field.text === "" ? qsTr("Fetch the last number dialed") : qsTr("Call")
                enabled: !screen.refused && (field.text !== "" || Boolean(recents.lastDialed))
                onClicked: screen.call()
            }
            PhoneButton {
                objectName: "backspaceButton"
                Layout.fillWidth: true
                Layout.preferredWidth: 1
                bare: true
                symbol: "clear"
                text: qsTr("Take back the last digit")
                Accessible.description: qsTr("Hold to clear the number.")
                enabled: field.text !== ""
                onClicked: field.remove(Math.max(0, field.cursorPosition - 1), field.cursorPosition)
                onPressAndHold: field.clear()
            }
        }
    }
}
