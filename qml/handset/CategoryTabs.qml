// The lists of calls, one of which is shown.
pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import ZynPhone

RowLayout {
    id: tabs

    property int category: RecentCallsModel.All
    signal chosen(int category)

    readonly property var kinds: [
        {"category": RecentCallsModel.All, "name": "allTab", "text": qsTr("All")},
        {"category": RecentCallsModel.Answered, "name": "answeredTab", "text": qsTr("Answered")},
        {"category": RecentCallsModel.Missed, "name": "missedTab", "text": qsTr("Missed")},
        {"category": RecentCallsModel.Dialed, "name": "dialedTab", "text": qsTr("Dialed")}
    ]

    spacing: Theme.gap / 2
    Accessible.role: Accessible.PageTabList
    Accessible.name: qsTr("Lists of calls")

    Repeater {
        model: tabs.kinds

        PhoneButton {
            required property var modelData

            readonly property bool isChosen: tabs.category === modelData.category

            objectName: modelData.name
            Layout.fillWidth: true
            leftPadding: Theme.gap
            implicitHeight: Theme.base * 3
            font.pixelSize: Theme.small
            tone: isChosen ? PhoneButton.Accent : PhoneButton.Soft
            text: modelData.text
            Accessible.role: Accessible.PageTab
            Accessible.selected: isChosen
            onClicked: tabs.chosen(modelData.category)
        }
    }
}
