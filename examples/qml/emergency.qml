// What a locked phone allows to dial, told while it is typed.
import QtQuick
import QtQuick.Controls.Basic
import ZynPhone

Column {
    TextField {
        id: field
        placeholderText: "Emergency number"
    }
    Text {
        text: number.reason
        color: number.verdict === EmergencyNumber.Refused ? "red" : "black"
    }
    EmergencyNumber {
        id: number
        text: field.text
    }
}
