// What the phone shows while nothing happens: time and date, missed calls, and the favourites.
import QtQuick
import QtQuick.Layouts
import ZynPhone

PhoneScreen {
    id: screen

    objectName: "idleScreen"
    Accessible.name: qsTr("Home")

    actions: [
        PhoneButton {
            objectName: "settingsButton"
            bare: true
            symbol: "settings"
            text: qsTr("Settings")
            onClicked: Navigation.open("settings")
        },
        PhoneButton {
            objectName: "lockButton"
            bare: true
            symbol: "lock"
            text: qsTr("Lock the keypad")
            onClicked: DeskNetwork.keypadLocked = true
        }
    ]

    ColumnLayout {
        anchors.fill: parent
        anchors.margins: Theme.margin
        spacing: Theme.margin

        Item {
            Layout.fillHeight: true
            Layout.preferredHeight: 2
        }
        PhoneText {
            objectName: "clock"
            Layout.fillWidth: true
            horizontalAlignment: Text.AlignHCenter
            fontSizeMode: Text.HorizontalFit
            font.pixelSize: Theme.clock
            font.weight: Font.Light
            text: Clock.time
        }
        PhoneText {
            Layout.fillWidth: true
            horizontalAlignment: Text.AlignHCenter
            wrapMode: Text.Wrap
            color: Theme.soft
            text: Clock.day
        }
        PhoneText {
            objectName: "simText"
            Layout.fillWidth: true
            horizontalAlignment: Text.AlignHCenter
            visible: text !== ""
            color: Theme.warning
            text: Phrases.simFault(PhoneStatus.simCard, PhoneStatus.pin)
        }
        Item {
            Layout.fillHeight: true
            Layout.preferredHeight: 3
        }
        MissedCard {
            objectName: "missedCard"
            Layout.fillWidth: true
            visible: MissedCalls.unread > 0
            onClicked: Navigation.go("recents", {"category": RecentCallsModel.Missed})
        }
        PhoneText {
            Layout.fillWidth: true
            visible: MissedCalls.error !== ""
            wrapMode: Text.Wrap
            horizontalAlignment: Text.AlignHCenter
            color: Theme.warning
            text: MissedCalls.error
        }
        RowLayout {
            Layout.fillWidth: true
            Layout.topMargin: Theme.gap
            Layout.bottomMargin: Theme.gap
            spacing: Theme.gap

            Repeater {
                model: Parties.favourites

                FavouriteTile {
                    Layout.fillWidth: true
                    Layout.preferredWidth: 1
                    Layout.alignment: Qt.AlignTop
                    onCalled: Dialing.call(dialNumber, partyName)
                    onOpened: {
                        if (taken)
                            Navigation.open("activity", {"number": number, "dialNumber": dialNumber})
                        else
                            Navigation.go("favourites")
                    }
                }
            }
        }
    }
}
