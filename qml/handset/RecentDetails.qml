// The rest of what is known of a call that was, and what else can be done with it.
import QtQuick
import QtQuick.Layouts

ColumnLayout {
    id: details

    property string number
    property int category
    property date start
    property int duration
    property bool isPushToTalk: false
    signal deleted

    readonly property var facts: [
        [qsTr("Number"), number || Phrases.unknownParty],
        [qsTr("Kind"), isPushToTalk ? qsTr("%1, push-to-talk").arg(Phrases.category(category))
            : Phrases.category(category)],
        [qsTr("Time"), qsTr("%1, %2").arg(start.toLocaleDateString(Qt.locale(), Locale.LongFormat))
            .arg(Clock.timeOf(start))],
        [qsTr("Duration"), Phrases.duration(duration)]
    ]

    objectName: "recentDetails"
    spacing: Theme.gap / 2

    Repeater {
        model: details.facts

        RowLayout {
            required property var modelData

            spacing: Theme.gap

            PhoneText {
                Layout.preferredWidth: Theme.base * 7
                color: Theme.soft
                font.pixelSize: Theme.small
                text: parent.modelData[0]
            }
            PhoneText {
                Layout.fillWidth: true
                font.pixelSize: Theme.small
                wrapMode: Text.Wrap
                text: parent.modelData[1]
            }
        }
    }
    Flow {
        Layout.fillWidth: true
        Layout.topMargin: Theme.gap
        spacing: Theme.gap

        PhoneButton {
            objectName: "makeFavouriteButton"
            tone: PhoneButton.Soft
            font.pixelSize: Theme.small
            symbol: "star"
            symbolSize: Theme.base * 1.5
            text: qsTr("Favourite")
            enabled: details.number !== ""
            onClicked: Navigation.go("favourites", {"number": details.number})
        }
        PhoneButton {
            objectName: "editNumberButton"
            tone: PhoneButton.Soft
            font.pixelSize: Theme.small
            symbol: "edit"
            symbolSize: Theme.base * 1.5
            text: qsTr("Edit")
            enabled: details.number !== ""
            Accessible.name: qsTr("Edit the number before calling it")
            onClicked: Navigation.go("dialer", {"number": details.number})
        }
        PhoneButton {
            objectName: "deleteButton"
            tone: PhoneButton.Soft
            font.pixelSize: Theme.small
            symbol: "delete"
            symbolSize: Theme.base * 1.5
            text: qsTr("Delete")
            Accessible.name: qsTr("Delete this call from the list")
            onClicked: details.deleted()
        }
    }
}
