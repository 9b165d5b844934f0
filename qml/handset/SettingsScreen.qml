// The settings: how recent calls are shown, what the lists may hold, speed dial, and the look.
pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import ZynPhone

PhoneScreen {
    id: screen

    objectName: "settingsScreen"
    title: qsTr("Settings")
    nested: true
    Component.onCompleted: RecentCallSettings.reload()

    readonly property var limits: [
        [qsTr("Answered calls"), RecentCallSettings.maxAnswered],
        [qsTr("Missed calls"), RecentCallSettings.maxMissed],
        [qsTr("Dialed calls"), RecentCallSettings.maxDialed],
        [qsTr("All calls"), RecentCallSettings.maxTotal],
        [qsTr("Entries of a favourite"), RecentCallSettings.maxActivities]
    ]
    readonly property var looks: [
        {"choice": "", "text": qsTr("System")},
        {"choice": "light", "text": qsTr("Light")},
        {"choice": "dark", "text": qsTr("Dark")}
    ]

    Connections {
        target: RecentCallSettings

        function onFailed(reason) {
            Navigation.say(reason)
        }
    }
    SpeedDialModel {
        id: speedDial

        onFailed: reason => Navigation.say(reason)
    }

    component SectionTitle: PhoneText {
        Layout.fillWidth: true
        Layout.topMargin: Theme.margin
        Layout.leftMargin: Theme.gap
        font.pixelSize: Theme.small
        font.weight: Font.DemiBold
        color: Theme.soft
        Accessible.role: Accessible.Heading
    }

    Flickable {
        anchors.fill: parent
        contentHeight: column.implicitHeight + Theme.margin
        clip: true
        ScrollBar.vertical: ScrollBar {}

        ColumnLayout {
            id: column

            x: Theme.margin
            width: parent.width - 2 * Theme.margin
            spacing: Theme.gap

            SectionTitle { text: qsTr("Recent calls") }
            Card {
                Layout.fillWidth: true
                contentItem: ColumnLayout {
                    spacing: Theme.gap

                    PhoneText {
                        Layout.fillWidth: true
                        visible: text !== ""
                        wrapMode: Text.Wrap
                        color: Theme.warning
                        text: RecentCallSettings.error
                    }
                    PhoneSwitch {
                        objectName: "twoLineSwitch"
                        Layout.fillWidth: true
                        text: qsTr("Two lines for each call")
                        checked: RecentCallSettings.twoLineView
                        enabled: RecentCallSettings.loaded
                        onToggled: RecentCallSettings.twoLineView = checked
                    }
                    PhoneSwitch {
                        objectName: "prependSwitch"
                        Layout.fillWidth: true
                        text: qsTr("Put the prefix before numbers that are called")
                        checked: RecentCallSettings.prepend
                        enabled: RecentCallSettings.loaded
                        onToggled: RecentCallSettings.prepend = checked
                    }
                }
            }
            SectionTitle { text: qsTr("How many are kept") }
            Card {
                Layout.fillWidth: true
                contentItem: ColumnLayout {
                    spacing: Theme.gap

                    Repeater {
                        model: screen.limits

                        RowLayout {
                            required property var modelData

                            PhoneText {
                                Layout.fillWidth: true
                                wrapMode: Text.Wrap
                                text: parent.modelData[0]
                            }
                            PhoneText {
                                color: Theme.soft
                                text: RecentCallSettings.loaded ? parent.modelData[1] : qsTr("–")
                            }
                        }
                    }
                }
            }
            SectionTitle { text: qsTr("Speed dial: hold the key to call") }
            Card {
                Layout.fillWidth: true
                contentItem: ColumnLayout {
                    spacing: 0

                    Repeater {
                        model: speedDial

                        SpeedDialRow {
                            Layout.fillWidth: true
                            onStored: number => speedDial.set(key, number)
                            onCleared: speedDial.clear(key)
                        }
                    }
                }
            }
            SectionTitle { text: qsTr("Look") }
            RowLayout {
                Layout.fillWidth: true
                spacing: Theme.gap

                Repeater {
                    model: screen.looks

                    PhoneButton {
                        required property var modelData

                        objectName: "look" + modelData.choice
                        Layout.fillWidth: true
                        Layout.preferredWidth: 1
                        tone: Theme.choice === modelData.choice ? PhoneButton.Accent : PhoneButton.Soft
                        text: modelData.text
                        Accessible.role: Accessible.RadioButton
                        Accessible.checked: Theme.choice === modelData.choice
                        onClicked: Theme.choice = modelData.choice
                    }
                }
            }
        }
    }
}
