// Talks to several people at once.
import QtQuick
import QtQuick.Controls.Basic
import ZynPhone

Column {
    TextField {
        id: numbers
        placeholderText: "Numbers, with blanks between"
    }
    Button {
        text: "Talk"
        enabled: numbers.text.trim() !== ""
        onClicked: PushToTalk.call(numbers.text.trim().split(/ +/))
    }
    Button {
        text: "End"
        onClicked: PushToTalk.drop()
    }
}
