// A message that goes away by itself, or when it is tapped. A new one takes the place of the old one.
import QtQuick
import QtQuick.Controls.Basic

AbstractButton {
    id: bar

    function show(message) {
        text = message
        timer.restart()
    }

    objectName: "messageBar"
    visible: text !== ""
    padding: Theme.margin
    focusPolicy: Qt.NoFocus
    Accessible.role: Accessible.AlertMessage
    Accessible.name: text
    Accessible.onPressAction: bar.clicked()
    onClicked: text = ""

    contentItem: PhoneText {
        wrapMode: Text.Wrap
        color: Theme.background
        text: bar.text
        Accessible.ignored: true
    }
    background: Rectangle {
        radius: Theme.radius
        color: Theme.text
    }

    Timer {
        id: timer

        interval: Theme.messageTime
        onTriggered: bar.text = ""
    }
}
