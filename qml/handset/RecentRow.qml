// A call that was: who, when and how it went. Opened, it has its details and what can be done with it.
import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import ZynPhone

ItemDelegate {
    id: row

    required property int index
    required property string number
    required property string name
    required property date start
    required property int duration
    required property int category
    required property int callType
    required property bool isRead
    property bool opened: false
    property bool twoLines: true
    /// A number is looked for: a tap chooses the call's, and nothing else can be done with it.
    property bool picking: false
    signal calledBack
    signal deleted

    readonly property bool isMissed: category === RecentCallsModel.Missed
    readonly property string party: Phrases.party(name, number)
    readonly property string when: Phrases.moment(start, Clock.now)
    readonly property bool isPushToTalk: callType === RecentCallsModel.PushToTalk
        || callType === RecentCallsModel.PushToTalkGroup

    objectName: "recent" + index
    padding: Theme.gap
    leftPadding: Theme.margin
    focusPolicy: Qt.StrongFocus
    Accessible.role: Accessible.ListItem
    Accessible.name: Phrases.listing([party, Phrases.category(category), when,
        isMissed && !isRead ? qsTr("unread") : ""])
    Accessible.onPressAction: row.clicked()
    Keys.onReturnPressed: clicked()
    Keys.onDeletePressed: if (!picking) deleted()

    background: Rectangle {
        radius: Theme.radius
        color: row.opened || row.down ? Theme.surface : Qt.alpha(Theme.surface, row.hovered ? 0.6 : 0)
        border.width: row.visualFocus ? 2 : 0
        border.color: Theme.accent
    }
    contentItem: ColumnLayout {
        spacing: Theme.gap

        RowLayout {
            spacing: Theme.margin

            Icon {
                name: Phrases.categorySymbol(row.category)
                size: Theme.base * 1.6
                color: row.isMissed ? Theme.bad : Theme.soft
            }
            ColumnLayout {
                spacing: 2

                PhoneText {
                    Layout.fillWidth: true
                    font.weight: row.isMissed && !row.isRead ? Font.Bold : Font.Normal
                    color: row.isMissed ? Theme.bad : Theme.text
                    text: row.party
                    Accessible.ignored: true
                }
                PhoneText {
                    Layout.fillWidth: true
                    visible: row.twoLines || row.opened
                    font.pixelSize: Theme.small
                    color: Theme.soft
                    text: row.when + (row.duration > 0 ? " · " + Phrases.duration(row.duration) : "")
                    Accessible.ignored: true
                }
            }
            Rectangle {
                visible: row.isMissed && !row.isRead
                implicitWidth: Theme.gap
                implicitHeight: Theme.gap
                radius: width / 2
                color: Theme.bad
            }
            Icon {
                visible: row.isPushToTalk
                name: "talk"
                size: Theme.base * 1.4
                color: Theme.soft
            }
            PhoneButton {
                objectName: "callBackButton"
                visible: !row.picking
                bare: true
                symbol: "call"
                text: qsTr("Call %1").arg(row.party)
                enabled: row.number !== ""
                onClicked: row.calledBack()
            }
        }
        RecentDetails {
            Layout.fillWidth: true
            visible: row.opened
            number: row.number
            category: row.category
            start: row.start
            duration: row.duration
            isPushToTalk: row.isPushToTalk
            onDeleted: row.deleted()
        }
    }
}
