// The locked phone: the time, an emergency dialer that takes nothing else, and the way to unlock it.
import QtQuick
import QtQuick.Layouts
import ZynPhone

FocusScope {
    id: screen

    property bool dialing: false

    objectName: "lockScreen"
    Accessible.role: Accessible.Pane
    Accessible.name: qsTr("Locked")
    onVisibleChanged: {
        dialing = false
        emergency.text = ""
        if (visible)
            forceActiveFocus()
    }
    Keys.onEscapePressed: dialing = false
    Keys.onPressed: event => {
        if (event.key === Qt.Key_Backspace)
            emergency.text = emergency.text.slice(0, -1)
        else if ([Qt.Key_Return, Qt.Key_Enter, Qt.Key_Call].includes(event.key) && emergency.emergency)
            call()
        else if (/^[0-9*#+]$/.test(event.text))
            press(event.text)
        else
            return
        event.accepted = true
    }

    // A digit after which no emergency number is possible any more is not taken.
    function press(digit) {
        dialing = true
        trial.text = emergency.text + digit
        if (trial.verdict === EmergencyNumber.Refused)
            refusal.text = trial.reason
        else
            emergency.text = trial.text
        trial.text = ""
    }

    function call() {
        if (PhoneCalls.dial(emergency.text))
            emergency.text = ""
    }

    EmergencyNumber {
        id: emergency

        onTextChanged: refusal.text = ""
    }
    EmergencyNumber {
        id: trial
    }
    Rectangle {
        anchors.fill: parent
        color: Theme.background
    }
    // What is under it is not to be reached.
    MouseArea {
        anchors.fill: parent
        Accessible.ignored: true
    }

    ColumnLayout {
        anchors.fill: parent
        anchors.margins: Theme.margin
        spacing: Theme.gap

        Item {
            Layout.fillHeight: true
            visible: !screen.dialing
        }
        Icon {
            Layout.alignment: Qt.AlignHCenter
            Layout.topMargin: Theme.margin
            visible: !screen.dialing
            name: "lock"
            size: Theme.base * 3
            color: Theme.soft
        }
        PhoneText {
            Layout.fillWidth: true
            visible: !screen.dialing
            horizontalAlignment: Text.AlignHCenter
            fontSizeMode: Text.HorizontalFit
            font.pixelSize: Theme.clock
            font.weight: Font.Light
            text: Clock.time
        }
        PhoneText {
            Layout.fillWidth: true
            visible: !screen.dialing
            horizontalAlignment: Text.AlignHCenter
            color: Theme.soft
            wrapMode: Text.Wrap
            text: Clock.day
        }
        PhoneText {
            Layout.fillWidth: true
            Layout.topMargin: Theme.margin
            visible: MissedCalls.unread > 0 && !screen.dialing
            horizontalAlignment: Text.AlignHCenter
            color: Theme.bad
            text: qsTr("%n missed call(s)", "", MissedCalls.unread)
        }
        PhoneText {
            objectName: "emergencyText"
            Layout.fillWidth: true
            Layout.topMargin: Theme.margin
            visible: screen.dialing
            horizontalAlignment: Text.AlignHCenter
            font.pixelSize: Theme.large
            text: emergency.text || " "
        }
        PhoneText {
            id: refusal

            objectName: "emergencyReason"
            Layout.fillWidth: true
            visible: screen.dialing && text !== ""
            horizontalAlignment: Text.AlignHCenter
            wrapMode: Text.Wrap
            color: Theme.bad
        }
        PhoneText {
            Layout.fillWidth: true
            visible: screen.dialing && refusal.text === ""
            horizontalAlignment: Text.AlignHCenter
            wrapMode: Text.Wrap
            color: Theme.soft
            text: emergency.text === "" ? qsTr("Only emergency numbers can be called.") : emergency.reason
        }
        Keypad {
            Layout.fillWidth: true
            Layout.fillHeight: true
            Layout.maximumHeight: Theme.base * 22
            visible: screen.dialing
            onPressed: digit => screen.press(digit)
            onHeld: digit => screen.press(digit)
        }
        Item {
            Layout.fillHeight: true
            visible: !screen.dialing
        }
        RowLayout {
            Layout.fillWidth: true
            Layout.topMargin: Theme.gap
            Layout.bottomMargin: Theme.margin
            spacing: Theme.gap

            PhoneButton {
                objectName: "emergencyButton"
                Layout.fillWidth: true
                Layout.preferredWidth: 1
                visible: !screen.dialing
                tone: PhoneButton.Bad
                text: qsTr("Emergency")
                Accessible.name: qsTr("Emergency call")
                onClicked: screen.dialing = true
            }
            PhoneButton {
                objectName: "emergencyBack"
                Layout.fillWidth: true
                Layout.preferredWidth: 1
                visible: screen.dialing
                // Return calls what is typed after it was tapped.
                focusPolicy: Qt.TabFocus
                tone: PhoneButton.Soft
                text: emergency.text === "" ? qsTr("Back") : qsTr("Clear")
                onClicked: {
                    if (emergency.text === "")
                        screen.dialing = false
                    emergency.text = ""
                }
            }
            PhoneButton {
                objectName: "emergencyCall"
                Layout.fillWidth: true
                Layout.preferredWidth: 1
                visible: screen.dialing
                tone: PhoneButton.Good
                symbol: "call"
                text: qsTr("Call")
                enabled: emergency.emergency
                onClicked: screen.call()
            }
            PhoneButton {
                objectName: "unlockButton"
                Layout.fillWidth: true
                Layout.preferredWidth: 1
                visible: !screen.dialing
                tone: PhoneButton.Soft
                text: qsTr("Unlock")
                onClicked: DeskNetwork.keypadLocked = false
            }
        }
    }
}
