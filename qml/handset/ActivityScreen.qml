// What happened with one favourite: its calls and messages, the newest first.
import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import ZynPhone

PhoneScreen {
    id: screen

    property string number
    property string dialNumber: number
    readonly property string partyName: Parties.nameOf(dialNumber)

    objectName: "activityScreen"
    title: partyName || dialNumber
    nested: true

    actions: PhoneButton {
        objectName: "activityCall"
        bare: true
        symbol: "call"
        text: qsTr("Call %1").arg(screen.title)
        onClicked: Dialing.call(screen.dialNumber, screen.partyName)
    }

    ActivityLogModel {
        id: log

        number: screen.number
        onFailed: reason => Navigation.say(reason)
    }

    ListView {
        objectName: "activityList"
        anchors.fill: parent
        anchors.leftMargin: Theme.margin
        anchors.rightMargin: Theme.margin
        clip: true
        focus: true
        spacing: Theme.margin
        model: log
        ScrollBar.vertical: ScrollBar {}
        Accessible.role: Accessible.List
        Accessible.name: qsTr("What happened with %1").arg(screen.title)

        delegate: RowLayout {
            id: entry

            required property date start
            required property int duration
            required property int category
            required property bool isRead
            required property bool isMessage
            required property string message

            readonly property string kind: isMessage ? qsTr("Message") : Phrases.category(category)
            readonly property bool missed: !isMessage && category === RecentCallsModel.Missed

            width: ListView.view.width
            spacing: Theme.margin
            Accessible.role: Accessible.ListItem
            Accessible.name: Phrases.listing([kind, Phrases.moment(start, Clock.now), message])

            Icon {
                Layout.alignment: Qt.AlignTop
                name: entry.isMessage ? "message" : Phrases.categorySymbol(entry.category)
                size: Theme.base * 1.6
                color: entry.missed ? Theme.bad : Theme.soft
            }
            ColumnLayout {
                spacing: 2

                PhoneText {
                    Layout.fillWidth: true
                    font.weight: entry.isRead ? Font.Normal : Font.Bold
                    wrapMode: Text.Wrap
                    text: entry.isMessage && entry.message ? entry.message : entry.kind
                    Accessible.ignored: true
                }
                PhoneText {
                    Layout.fillWidth: true
                    color: Theme.soft
                    font.pixelSize: Theme.small
                    text: Phrases.moment(entry.start, Clock.now)
                        + (entry.duration > 0 ? " · " + Phrases.duration(entry.duration) : "")
                    Accessible.ignored: true
                }
            }
        }
    }
    ListPlaceholder {
        anchors.centerIn: parent
        width: parent.width - 4 * Theme.margin
        visible: log.count === 0 && !log.busy && (log.loaded || log.error !== "")
        symbol: log.error === "" ? "clock" : "warning"
        title: log.error === "" ? qsTr("Nothing yet") : qsTr("The log cannot be shown")
        text: log.error === "" ? qsTr("Calls and messages with this favourite appear here.") : log.error
        action: log.error === "" ? "" : qsTr("Try again")
        onActed: log.reload()
    }
}
