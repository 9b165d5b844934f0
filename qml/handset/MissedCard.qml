// The missed calls that nobody has looked at: how many, and the last one. Leads to their list.
import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import ZynPhone

AbstractButton {
    id: card

    readonly property var last: MissedCalls.last
    readonly property string summary: qsTr("%n missed call(s)", "", MissedCalls.unread)
    readonly property string lastText: last ? qsTr("%1 – %2").arg(Phrases.party(last.name, last.number))
        .arg(Phrases.moment(last.start, Clock.now)) : ""

    padding: Theme.margin
    focusPolicy: Qt.StrongFocus
    text: summary
    Accessible.role: Accessible.Button
    Accessible.name: summary + ", " + lastText
    Accessible.onPressAction: card.clicked()
    Keys.onReturnPressed: card.clicked()

    background: Rectangle {
        radius: Theme.radius
        color: card.down ? Theme.raised : Theme.surface
        border.width: card.visualFocus ? 2 : Theme.dark ? 0 : 1
        border.color: card.visualFocus ? Theme.accent : Theme.line
    }
    contentItem: RowLayout {
        spacing: Theme.margin

        Rectangle {
            implicitWidth: Theme.touch
            implicitHeight: Theme.touch
            radius: width / 2
            color: Qt.alpha(Theme.bad, 0.16)

            Icon {
                anchors.centerIn: parent
                name: "missed"
                color: Theme.bad
            }
        }
        ColumnLayout {
            spacing: 2

            PhoneText {
                Layout.fillWidth: true
                font.weight: Font.DemiBold
                text: card.summary
                Accessible.ignored: true
            }
            PhoneText {
                Layout.fillWidth: true
                color: Theme.soft
                font.pixelSize: Theme.small
                text: card.lastText
                Accessible.ignored: true
            }
        }
    }
}
