// The way to the main screens.
pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Controls.Basic
import ZynPhone

Row {
    id: bar

    readonly property var tabs: [
        {"name": "idle", "symbol": "home", "text": qsTr("Home")},
        {"name": "recents", "symbol": "clock", "text": qsTr("Recents")},
        {"name": "dialer", "symbol": "keypad", "text": qsTr("Keypad")},
        {"name": "favourites", "symbol": "star", "text": qsTr("Favourites")},
        {"name": "pushToTalk", "symbol": "talk", "text": qsTr("Talk")}
    ]

    height: Theme.base * 4.6
    Accessible.role: Accessible.PageTabList
    Accessible.name: qsTr("Screens")

    Repeater {
        model: bar.tabs

        AbstractButton {
            id: tab

            required property var modelData

            readonly property bool isCurrent: Navigation.tab === modelData.name

            objectName: "tab_" + modelData.name
            width: bar.width / bar.tabs.length
            height: bar.height
            text: modelData.text
            focusPolicy: Qt.TabFocus
            Accessible.role: Accessible.PageTab
            Accessible.name: text
            Accessible.selected: isCurrent
            Accessible.onPressAction: tab.clicked()
            Keys.onReturnPressed: tab.clicked()
            onClicked: Navigation.go(modelData.name)

            contentItem: Item {
                Column {
                    anchors.centerIn: parent
                    spacing: 2

                    Rectangle {
                        anchors.horizontalCenter: parent.horizontalCenter
                        width: Theme.base * 4.4
                        height: Theme.base * 2.3
                        radius: height / 2
                        color: tab.isCurrent ? Qt.alpha(Theme.accent, 0.2) : "transparent"
                        border.width: tab.visualFocus ? 2 : 0
                        border.color: Theme.accent

                        Icon {
                            anchors.centerIn: parent
                            name: tab.modelData.symbol
                            color: tab.isCurrent ? Theme.accent : Theme.soft
                        }
                        Badge {
                            anchors.right: parent.right
                            anchors.top: parent.top
                            anchors.topMargin: -2
                            count: tab.modelData.name === "recents" ? MissedCalls.unread : 0
                        }
                    }
                    PhoneText {
                        anchors.horizontalCenter: parent.horizontalCenter
                        width: Math.min(implicitWidth, tab.width)
                        font.pixelSize: Theme.small * 0.9
                        color: tab.isCurrent ? Theme.accent : Theme.soft
                        text: tab.text
                        Accessible.ignored: true
                    }
                }
            }
        }
    }
}
