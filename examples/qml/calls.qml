// A dialer, and the calls on the line.
import QtQuick
import QtQuick.Controls.Basic
import ZynPhone

Column {
    Row {
        TextField {
            id: number
            placeholderText: "Number"
        }
        Button {
            text: "Call"
            enabled: number.text !== ""
            onClicked: PhoneCalls.dial(number.text)
        }
        Button {
            text: "Hang up"
            onClicked: PhoneCalls.hangUp()
        }
    }
    Text {
        id: problem
        text: PhoneCalls.available ? "" : "No phone server"
    }
    Repeater {
        model: PhoneCalls.calls
        delegate: Button {
            required property int callId
            required property string number
            required property int state
            text: number + (state === PhoneCalls.Ringing ? " calls" : "")
            onClicked: PhoneCalls.answer(callId)
        }
    }
    Connections {
        target: PhoneCalls
        function onFailed(reason) { problem.text = reason }
    }
}
