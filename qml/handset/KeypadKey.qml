// A key of the keypad: its digit and its letters. Holding it has a meaning of its own.
import QtQuick
import QtQuick.Controls.Basic

AbstractButton {
    id: key

    property string digit
    property string letters

    objectName: "key" + digit
    text: digit
    focusPolicy: Qt.TabFocus
    onVisibleChanged: if (!visible) focus = false
    Accessible.role: Accessible.Button
    Accessible.name: digit === "*" ? qsTr("Star") : digit === "#" ? qsTr("Hash") : digit
    Accessible.description: letters
    Accessible.onPressAction: key.clicked()
    Keys.onReturnPressed: key.clicked()
    Keys.onMenuPressed: key.pressAndHold()

    contentItem: Item {
        Column {
            anchors.centerIn: parent

            PhoneText {
                anchors.horizontalCenter: parent.horizontalCenter
                font.pixelSize: Math.min(Theme.large, key.height * 0.5)
                text: key.digit
                Accessible.ignored: true
            }
            PhoneText {
                anchors.horizontalCenter: parent.horizontalCenter
                visible: key.letters !== ""
                font.pixelSize: Math.min(Theme.small * 0.9, key.height * 0.24)
                font.letterSpacing: 1
                color: Theme.soft
                text: key.letters
                Accessible.ignored: true
            }
        }
    }
    background: Rectangle {
        radius: Theme.radius * 1.6
        color: key.down ? Qt.tint(Theme.surface, Qt.alpha(Theme.accent, 0.35)) : Theme.surface
        border.width: key.visualFocus ? 2 : Theme.dark ? 0 : 1
        border.color: key.visualFocus ? Theme.accent : Theme.line
    }
}
