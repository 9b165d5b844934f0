// Plays the network to a phone server on a desk.
import QtQuick
import QtQuick.Controls.Basic
import ZynPhone

Column {
    enabled: DeskNetwork.available

    Button {
        text: "Anna calls"
        onClicked: DeskNetwork.incoming("0301234567", "Anna")
    }
    Button {
        text: "She hangs up"
        onClicked: DeskNetwork.hangUp()
    }
    Slider {
        to: 5
        stepSize: 1
        onMoved: DeskNetwork.status("signal-quality", [value])
    }
    Switch {
        text: "Keypad locked"
        checked: DeskNetwork.keypadLocked
        onToggled: DeskNetwork.keypadLocked = checked
    }
    Text {
        id: refusal
    }
    Connections {
        target: DeskNetwork
        function onRefused(reason) { refusal.text = reason }
    }
}
