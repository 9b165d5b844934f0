// One of the five favourites on the idle screen, with its counters. A tap calls, holding it opens its log.
import QtQuick
import QtQuick.Controls.Basic

AbstractButton {
    id: tile

    required property int index
    required property string number
    required property string dialNumber
    required property bool taken
    required property int missedCalls
    required property int unreadMessages
    signal called
    signal opened

    readonly property string partyName: Parties.nameOf(dialNumber)
    readonly property string partyText: partyName || dialNumber
    objectName: "favourite" + index
    implicitHeight: implicitContentHeight
    focusPolicy: Qt.StrongFocus
    text: taken ? partyText : qsTr("Add")
    Accessible.role: Accessible.Button
    Accessible.name: taken ? qsTr("Favourite %1").arg(partyText) : qsTr("Add a favourite")
    Accessible.description: taken ? Phrases.listing([Phrases.unread(missedCalls, unreadMessages),
        qsTr("hold to see what happened with this number")]) : ""
    Accessible.onPressAction: tile.activate()
    Keys.onReturnPressed: activate()
    Keys.onMenuPressed: opened()

    onClicked: activate()
    onPressAndHold: opened()

    function activate() {
        if (taken)
            called()
        else
            opened()
    }

    contentItem: Column {
        spacing: Theme.gap / 2

        Rectangle {
            anchors.horizontalCenter: parent.horizontalCenter
            width: Math.min(tile.width - 4, Theme.base * 4.4)
            height: width
            radius: width / 2
            // Each number keeps its own colour, by which it is found.
            color: tile.taken ? Qt.hsla((Number(tile.number.replace(/\D/g, "")) * 0.618) % 1, 0.5,
                Theme.dark ? 0.34 : 0.86, 1) : "transparent"
            border.width: tile.visualFocus ? 2 : tile.taken ? 0 : 1
            border.color: tile.visualFocus ? Theme.accent : Theme.line
            opacity: tile.down ? 0.7 : 1

            Icon {
                anchors.centerIn: parent
                name: tile.taken ? "person" : "plus"
                size: parent.width * 0.46
                color: tile.taken ? Theme.text : Theme.soft
            }
            Badge {
                objectName: "missedBadge"
                anchors.right: parent.right
                anchors.top: parent.top
                anchors.margins: -3
                count: tile.missedCalls
            }
            Badge {
                objectName: "messageBadge"
                anchors.right: parent.right
                anchors.bottom: parent.bottom
                anchors.margins: -3
                color: Theme.accent
                count: tile.unreadMessages
            }
        }
        PhoneText {
            width: parent.width
            horizontalAlignment: Text.AlignHCenter
            elide: tile.partyName === "" ? Text.ElideLeft : Text.ElideRight
            font.pixelSize: Theme.small
            color: tile.taken ? Theme.text : Theme.soft
            text: tile.text
            Accessible.ignored: true
        }
    }
}
